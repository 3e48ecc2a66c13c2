// Runs a fuzz target once over every file named on the command line, or found below a folder named there.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size);

namespace {

void Replay(const std::filesystem::path& File) {
  std::ifstream Stream(File, std::ios::binary);
  if (!Stream) throw std::runtime_error("cannot read " + File.string());
  const std::vector<char> Bytes{std::istreambuf_iterator<char>(Stream), std::istreambuf_iterator<char>()};
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(Bytes.data()), Bytes.size());
}

}  // namespace

int main(int Count, char** Arguments) {
  std::size_t Replayed = 0;
  std::string Current;
  try {
    for (int Index = 1; Index < Count; ++Index) {
      std::vector<std::filesystem::path> Files;
      if (std::filesystem::is_directory(Arguments[Index])) {
        for (const auto& Entry : std::filesystem::recursive_directory_iterator(Arguments[Index])) {
          if (Entry.is_regular_file()) Files.push_back(Entry.path());
        }
      } else {
        Files.emplace_back(Arguments[Index]);
      }
      for (const auto& File : Files) {
        Current = File.string();
        Replay(File);
        ++Replayed;
      }
    }
  } catch (const std::exception& Error) {
    std::fprintf(stderr, "%s: %s\n", Current.c_str(), Error.what());
    return 1;
  }
  std::printf("%zu inputs replayed\n", Replayed);
  return Replayed == 0 ? 1 : 0;
}

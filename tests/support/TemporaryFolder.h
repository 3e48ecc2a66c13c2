#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

namespace velkrund::tests {

/// A folder of its own, gone with the object.
class TTemporaryFolder {
 public:
  TTemporaryFolder() {
    std::string Pattern = (std::filesystem::temp_directory_path() / "velkrund-XXXXXX").string();
    if (!mkdtemp(Pattern.data())) throw std::runtime_error("no temporary folder");
    FPath = Pattern;
  }
  TTemporaryFolder(const TTemporaryFolder&) = delete;
  TTemporaryFolder& operator=(const TTemporaryFolder&) = delete;
  ~TTemporaryFolder() {
    std::error_code Ignored;
    std::filesystem::remove_all(FPath, Ignored);
  }

  std::string operator/(const std::string& Name) const { return (FPath / Name).string(); }

  std::string Write(const std::string& Name, const std::string& Content) const {
    std::ofstream(*this / Name, std::ios::binary) << Content;
    return *this / Name;
  }
  std::string Read(const std::string& Name) const {
    std::ifstream File(*this / Name, std::ios::binary);
    std::ostringstream Content;  // takes blocks; an iterator goes from byte to byte, and through a checker's hands
    Content << File.rdbuf();
    return std::move(Content).str();
  }

 private:
  std::filesystem::path FPath;
};

}  // namespace velkrund::tests

// Any bytes as a gettext catalogue: an error, or entries that are written and come back as the same. The file does not
// change what is read: it is the same through a stream that hands out few bytes at a time.

#include <vector>

#include "fuzz/FuzzPlatform.h"
#include "jobs/resources/PoReader.h"
#include "jobs/resources/PoWriter.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

/// What lies ready is at most so much.
class TChopped final : public TMemoryStream {
 public:
  explicit TChopped(std::size_t Most) : FMost(Most) {}
  std::string_view Peek() override { return TMemoryStream::Peek().substr(0, FMost); }

 private:
  const std::size_t FMost;
};

std::vector<TPoEntry> Read(std::string_view Bytes, std::size_t Most, std::string& Error) {
  TChopped Stream(Most);
  Stream.Write(Bytes);
  Stream.SetPosition(0);
  std::vector<TPoEntry> Result;
  try {
    TPoReader Reader(Stream, "f");
    for (TPoEntry Entry; Reader.Next(Entry);) Result.push_back(Entry);
  } catch (const EPoError& Fault) {
    Require(Fault.Info().Line > 0 && IsStrictUtf8(Fault.what()));
    Error = Fault.what();
  }
  return Result;
}

}  // namespace
}  // namespace velkrund

// The first byte is how much lies ready at a time.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace velkrund;
  if (Size == 0) return 0;
  const std::string_view Bytes(reinterpret_cast<const char*>(Data) + 1, Size - 1);
  std::string Error, Chopped;
  const std::vector<TPoEntry> Entries = Read(Bytes, Bytes.size() + 1, Error);
  Require(Read(Bytes, std::size_t{1} + Data[0], Chopped).size() == Entries.size() && Chopped == Error);
  TMemoryStream Written;
  TPoWriter Writer(Written);
  Writer.WriteHeader("T", "S");
  for (const TPoEntry& Entry : Entries)
    Writer.WriteEntry(Entry.Section, Entry.Context.value_or("none"), Entry.Id, Entry.Text);
  const std::vector<TPoEntry> Again = Read(Written.Memory(), Size, Error = {});
  Require(Error.empty() && Again.size() == Entries.size());
  for (std::size_t I = 0; I < Again.size(); ++I) {
    Require(Again[I].Context == Entries[I].Context.value_or("none") && Again[I].Id == Entries[I].Id);
    Require(Again[I].Text == Entries[I].Text && Again[I].Section == Entries[I].Section);
  }
  return 0;
}

#include "jobs/files/SectionRemoval.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

/// Read and written while it is in the processor's cache, both the block and the system's copies of it: a larger one
/// takes three times as long.
constexpr std::int64_t BlockSize = 64 * 1024;

/// A copy of a stream, each byte of it read and written once.
class TCopy {
 public:
  TCopy(TStream& From, TFile& To, const std::function<bool()>& Canceled) : FFrom(From), FTo(To), FCanceled(Canceled) {}

  void Add(std::int64_t Start, std::int64_t End) {
    FFrom.SetPosition(Start);
    while (Start < End) {
      if (FCanceled && FCanceled()) throw EAbort("Cancelled while sections were removed");
      const auto Wanted = static_cast<std::size_t>(std::min<std::int64_t>(End - Start, BlockSize));
      const std::size_t Got = FFrom.Read(FBlock.get(), Wanted);
      if (Got == 0) throw EReadError(Format("The file ends at %d and was longer: it was changed meanwhile", Start));
      FTo.WriteAt(FWritten, {FBlock.get(), Got});
      Start += static_cast<std::int64_t>(Got);
      FWritten += static_cast<std::int64_t>(Got);
    }
  }

 private:
  TStream& FFrom;
  TFile& FTo;
  const std::function<bool()>& FCanceled;
  const std::unique_ptr<char[]> FBlock = std::make_unique_for_overwrite<char[]>(BlockSize);
  std::int64_t FWritten = 0;
};

/// Where in the copy stands what stands at Position in the file.
std::int64_t PlaceInCopy(std::int64_t Position, const std::vector<TEISource::TCut>& Cuts) {
  std::int64_t Result = Position;
  for (const TEISource::TCut& Cut : Cuts)
    if (Cut.End <= Position) Result -= Cut.End - Cut.Start;
  return Result;
}

}  // namespace

void RemoveSections(TFileSystem& Files, TEIFile& File, const std::vector<int>& Indexes,
                    const std::function<bool()>& Canceled) {
  WriteWithout(*Files.MakeInPlaceOf(File.FileName()), File, Indexes, Canceled);
}

void WriteWithout(TFileInMaking& Copy, TEIFile& File, const std::vector<int>& Indexes,
                  const std::function<bool()>& Canceled) {
  const std::vector<TEISource::TCut> Cuts = File.CutsOf(Indexes);
  TCopy Bytes(File.Stream(), Copy.File(), Canceled);
  std::int64_t Kept = 0;
  for (const TEISource::TCut& Cut : Cuts) Bytes.Add(std::exchange(Kept, Cut.End), Cut.Start);
  Bytes.Add(Kept, File.Stream().Size());
  for (const std::int64_t Start : File.Held()) Copy.File().WriteAt(PlaceInCopy(Start, Cuts), "[");
  if (Canceled && Canceled()) throw EAbort("Cancelled while sections were removed");
  Copy.Put();
}

}  // namespace velkrund

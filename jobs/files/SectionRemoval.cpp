#include "jobs/files/SectionRemoval.h"

#include <algorithm>
#include <memory>

#include "jobs/files/LentFile.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

namespace {

constexpr std::size_t BlockSize = 1024 * 1024;

/// From a position of the stream on, to the end of the file.
void AddBytes(TStream& From, std::int64_t Start, TFile& To, const std::function<bool()>& Canceled) {
  const auto Block = std::make_unique<char[]>(BlockSize);
  std::int64_t Position = To.Size();
  From.SetPosition(Start);
  while (const std::size_t Got = From.Read(Block.get(), BlockSize)) {
    if (Canceled && Canceled()) throw EAbort("Cancelled while sections were removed");
    To.WriteAt(Position, {Block.get(), Got});
    Position += static_cast<std::int64_t>(Got);
  }
}

TStringList IndexTexts(const std::vector<int>& Indexes) {
  TStringList Result;
  for (const int Index : Indexes) Result.Add(std::to_string(Index));
  return Result;
}

}  // namespace

void RemoveSections(TFileSystem& Files, TEIFile& File, const std::vector<int>& Indexes,
                    const std::function<bool()>& Canceled) {
  WriteWithout(*Files.MakeInPlaceOf(File.FileName()), File, Indexes, Canceled);
}

void WriteWithout(TFileInMaking& Copy, TEIFile& File, const std::vector<int>& Indexes,
                  const std::function<bool()>& Canceled) {
  AddBytes(File.Stream(), 0, Copy.File(), Canceled);
  for (const std::int64_t Start : File.Held()) Copy.File().WriteAt(Start, "[");
  {
    TLentFile Lent(Copy.File(), true);
    TEIFile Shortened(Lent);
    Shortened.SetStrictText(false);  // texts are not touched
    Shortened.SetFileName(File.FileName());
    Shortened.Open();
    Shortened.DeleteSections(IndexTexts(Indexes));
  }
  // With the last section all that follows it was cut off.
  const int Last = File.Sections().Count() - 1;
  if (std::find(Indexes.begin(), Indexes.end(), Last) != Indexes.end())
    AddBytes(File.Stream(), File.EndOfSection(File.Sections()[Last]), Copy.File(), Canceled);
  if (Canceled && Canceled()) throw EAbort("Cancelled while sections were removed");
  Copy.Put();
}

}  // namespace velkrund

#include "jobs/files/SectionRemoval.h"

#include <filesystem>

#include "jobs/files/FileBeside.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

namespace {

constexpr std::size_t BlockSize = 1024 * 1024;

void CopyBytes(TFile& From, TFile& To, const std::function<bool()>& Canceled) {
  std::string Block(BlockSize, '\0');
  std::int64_t Position = 0;
  while (const std::size_t Got = From.ReadAt(Position, Block.data(), Block.size())) {
    if (Canceled && Canceled()) throw EAbort("Cancelled while sections were removed");
    To.WriteAt(Position, std::string_view(Block.data(), Got));
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
  // A link stays one: it is the file behind it that is replaced.
  const std::string Path = std::filesystem::canonical(File.FileName()).string();
  RemoveLeftBeside(Files, File.FileName());
  TFileBeside Beside(Files, Path);
  {
    const std::unique_ptr<TFile> From = Files.Open(Path, TFileMode::Read);
    CopyBytes(*From, *Files.Open(Beside.Path(), TFileMode::ReadWrite), Canceled);
  }
  {
    TEIFile Copy(Files);
    Copy.SetStrictText(false);  // texts are not touched
    Copy.SetFileName(Beside.Path());
    Copy.Open();
    Copy.DeleteSections(IndexTexts(Indexes));
    Copy.Sync();
  }
  if (Canceled && Canceled()) throw EAbort("Cancelled while sections were removed");
  Beside.PutAt(Path);
}

}  // namespace velkrund

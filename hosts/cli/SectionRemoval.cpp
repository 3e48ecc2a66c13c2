#include "hosts/cli/SectionRemoval.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::size_t BlockSize = 1024 * 1024;

[[noreturn]] void RaiseSystemError(const char* What, const std::string& Path) {
  throw EWriteError(Format("Can not %s '%s': %s", What, Path, std::generic_category().message(errno)));
}

/// A new file beside another, with the same permissions; removed again unless it was released.
class TCopyBeside {
 public:
  TCopyBeside(TFileSystem& Files, const std::string& Original) : FFiles(Files), FPath(Original + ".velkrund-XXXXXX") {
    const int Descriptor = mkstemp(FPath.data());
    if (Descriptor < 0) RaiseSystemError("create a copy", FPath);
    struct stat Status;
    const bool Known = stat(Original.c_str(), &Status) == 0;
    // The owner first, since changing it may take permissions away; only a privileged user can.
    if (Known && fchown(Descriptor, Status.st_uid, Status.st_gid) != 0) errno = 0;
    const bool Permitted = Known && fchmod(Descriptor, Status.st_mode & 07777) == 0;
    close(Descriptor);
    if (Permitted) return;
    unlink(FPath.c_str());
    RaiseSystemError("copy the permissions of", Original);
  }
  TCopyBeside(const TCopyBeside&) = delete;
  TCopyBeside& operator=(const TCopyBeside&) = delete;
  ~TCopyBeside() {
    if (!FReleased) unlink(FPath.c_str());
  }

  const std::string& Path() const { return FPath; }
  void PutInPlaceOf(const std::string& Original) {
    FFiles.Replace(FPath, Original);
    FReleased = true;
  }

 private:
  TFileSystem& FFiles;
  std::string FPath;
  bool FReleased = false;
};

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
  TCopyBeside Beside(Files, Path);
  {
    const std::unique_ptr<TFile> From = Files.Open(Path, TFileMode::Read);
    CopyBytes(*From, *Files.Open(Beside.Path(), TFileMode::ReadWrite), Canceled);
  }
  {
    TEIFile Copy(Files);
    Copy.SetFileName(Beside.Path());
    Copy.Open();
    Copy.DeleteSections(IndexTexts(Indexes));
    Copy.Sync();
  }
  if (Canceled && Canceled()) throw EAbort("Cancelled while sections were removed");
  Beside.PutInPlaceOf(Path);
}

}  // namespace velkrund

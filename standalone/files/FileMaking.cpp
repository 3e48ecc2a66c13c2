#include "standalone/files/FileMaking.h"

#include <stdio.h>
#include <sys/stat.h>

#include <optional>

#include "standalone/files/FilePlace.h"
#include "standalone/files/FileRights.h"
#include "standalone/files/PosixFile.h"

namespace velkrund {

namespace {

constexpr mode_t OwnerAlone = 0600;  // until it has its rights

std::string PathOfDescriptor(int Number) { return Format("/proc/self/fd/%d", Number); }

/// Without a name; a negative number where there can be none of the kind here, or none at all.
TDescriptor OpenUnnamed(const TFilePlace& Place, mode_t Mode) {
  TDescriptor Result(
      Uninterrupted([&] { return openat(Place.Folder.Number(), ".", O_RDWR | O_TMPFILE | O_CLOEXEC, Mode); }));
  // It is to get its name that way.
  if (Result.Number() >= 0 && faccessat(AT_FDCWD, PathOfDescriptor(Result.Number()).c_str(), F_OK, AT_EACCESS) != 0)
    return TDescriptor(-1);
  return Result;
}

/// The file that is to be replaced, and is open elsewhere: another one that was put in its place meanwhile is spared.
struct TOldFile {
  dev_t Device = 0;
  ino_t Number = 0;

  bool IsAt(const TFilePlace& Place) const {
    const struct stat Now = Place.Status(Place.Name);
    return Now.st_nlink > 0 && Now.st_dev == Device && Now.st_ino == Number;
  }
};

[[noreturn]] void RaiseTaken(const std::string& Path) {
  RaiseFileError<EWriteError>("replace", Path,
                              "it is gone, or another file was put in its place meanwhile. Run it again",
                              TErrorCode::FileInUse);
}

/// Whether nobody has the file there open for writing. The caller has, unless it is another one by now.
bool IsUnlocked(const TFilePlace& Place) {
  const TDescriptor Found(Uninterrupted(
      [&] { return openat(Place.Folder.Number(), Place.Name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC); }));
  return Found.Number() >= 0 && LockForWriting(Found.Number());
}

class TPosixFileInMaking final : public TFileInMaking {
 public:
  /// Path: for messages. Old: what is at the place; nothing: nothing is.
  TPosixFileInMaking(const std::string& Path, TFilePlace Place, std::optional<TOldFile> Old, mode_t Mode)
      : FPath(Path), FPlace(std::move(Place)), FReplaces(Old), FOld(Old.value_or(TOldFile())) {
    FPlace.RemoveLeft();
    FFile.emplace(Make(Mode), FPath, false);
  }
  ~TPosixFileInMaking() override { RemoveName(); }

  TFile& File() override { return *FFile; }
  int Descriptor() const { return FFile->Descriptor(); }

  void Put() override {
    FFile->Sync();
    if (FName.empty() && !FReplaces) {
      if (!Link(FPlace.Name)) RaiseNotMade();
    } else {
      if (FName.empty()) FName = FPlace.TakeName([this](const std::string& Name) { return Link(Name); });
      if (FName.empty() || !Rename()) RaiseNotMade();
      FName.clear();
    }
    try {
      SyncFolder(FPlace.Path);
    } catch (...) {
      // Where nothing was before, nothing is left by what has failed.
      if (!FReplaces) unlinkat(FPlace.Folder.Number(), FPlace.Name.c_str(), 0);
      throw;
    }
  }

 private:
  [[noreturn]] void RaiseNotMade() const {
    const int Error = errno;
    if (FReplaces) RaiseFileError<EWriteError>("replace", FPath, SystemReason(Error), FileErrorCode(Error));
    if (Error == EEXIST)
      RaiseFileError<EFCreateError>("create", FPath,
                                    "another program has made it meanwhile. Run it again to add to that one",
                                    TErrorCode::FileInUse);
    RaiseFileError<EFCreateError>("create", FPath, SystemReason(Error), FileErrorCode(Error));
  }
  [[noreturn]] void RaiseNoRoom() const {
    const int Error = errno;
    if (FReplaces)
      RaiseFileError<EWriteError>("replace", FPath, "its folder takes no new file: " + SystemReason(Error),
                                  FileErrorCode(Error));
    errno = Error;
    RaiseNotMade();
  }

  TDescriptor Make(mode_t Mode) {
    TDescriptor Unnamed = OpenUnnamed(FPlace, Mode);
    if (Unnamed.Number() >= 0) {
      if (!LockForWriting(Unnamed.Number())) RaiseNotMade();
      return Unnamed;
    }
    for (;;) {
      int Number = -1;
      FName = FPlace.TakeName([&](const std::string& Name) {
        Number = Uninterrupted(
            [&] { return openat(FPlace.Folder.Number(), Name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, Mode); });
        return Number >= 0;
      });
      if (FName.empty()) RaiseNoRoom();
      TDescriptor Named(Number);
      struct stat Made;
      if (!LockForWriting(Number) || fstat(Number, &Made) != 0) {
        const int Error = errno;
        RemoveName();
        errno = Error;
        RaiseNotMade();
      }
      // Until it was locked it could be taken for one that was left.
      if (Made.st_nlink > 0) return Named;
    }
  }

  bool Link(const std::string& Name) const {
    return linkat(AT_FDCWD, PathOfDescriptor(Descriptor()).c_str(), FPlace.Folder.Number(), Name.c_str(),
                  AT_SYMLINK_FOLLOW) == 0;
  }

  bool Rename() const {
    const int Folder = FPlace.Folder.Number();
    if (FReplaces) {
      if (!FOld.IsAt(FPlace)) RaiseTaken(FPath);
      return renameat(Folder, FName.c_str(), Folder, FPlace.Name.c_str()) == 0;
    }
    if (renameat2(Folder, FName.c_str(), Folder, FPlace.Name.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    // A file system that does not know how to spare what is there.
    if (linkat(Folder, FName.c_str(), Folder, FPlace.Name.c_str(), 0) == 0) {
      unlinkat(Folder, FName.c_str(), 0);  // otherwise the next writer does
      return true;
    }
    if (errno != EPERM && errno != EOPNOTSUPP) return false;
    // Nor hard links: that nobody makes it in this very moment has to be hoped.
    errno = EEXIST;
    return FPlace.Status(FPlace.Name).st_nlink == 0 &&
           renameat(Folder, FName.c_str(), Folder, FPlace.Name.c_str()) == 0;
  }

  void RemoveName() {
    if (!FName.empty()) unlinkat(FPlace.Folder.Number(), FName.c_str(), 0);
    FName.clear();
  }

  const std::string FPath;
  const TFilePlace FPlace;
  const bool FReplaces;
  const TOldFile FOld;
  std::string FName;  // the one that it has for the time being; empty: none, or its own
  std::optional<TPosixFile> FFile;
};

[[noreturn]] void RaiseNotReplaced(const std::string& Path, const std::string& Why) {
  RaiseFileError<EWriteError>("replace", Path, Why, TErrorCode::FileAccess);
}

/// Whether something is mounted on the file itself: nothing can be put there.
bool IsMountPoint(const TFilePlace& Place) {
#ifdef STATX_ATTR_MOUNT_ROOT
  struct statx Status;
  return statx(Place.Folder.Number(), Place.Name.c_str(), AT_SYMLINK_NOFOLLOW, STATX_TYPE, &Status) == 0 &&
         (Status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
#else
  return false;
#endif
}

/// In a folder such as /tmp everybody may make files, but not take those of others away.
bool SparesFilesOfOthers(const TFilePlace& Place, const struct stat& File) {
  struct stat Folder;
  const uid_t User = geteuid();
  return fstat(Place.Folder.Number(), &Folder) == 0 && (Folder.st_mode & S_ISVTX) != 0 && User != 0 &&
         User != Folder.st_uid && User != File.st_uid;
}

/// A dangling link is told as what it is.
void RefuseTaken(const std::string& Path) {
  struct stat Status;
  if (lstat(Path.c_str(), &Status) != 0) return;
  if (!S_ISLNK(Status.st_mode) || stat(Path.c_str(), &Status) == 0) {
    errno = EEXIST;
    RaiseSystemError<EFCreateError>("create", Path);
  }
  if (errno == ELOOP) RaiseFileError<EFCreateError>("create", Path, "it is a link that leads back to itself");
  std::string Target(static_cast<std::size_t>(Status.st_size) + 1, '\0');
  const ssize_t Length = readlink(Path.c_str(), Target.data(), Target.size());
  Target.resize(Length < 0 ? 0 : static_cast<std::size_t>(Length));
  RaiseFileError<EFCreateError>(
      "create", Path, Format("it is a link to '%s', where there is no file. Make that one, or remove the link", Target),
      TErrorCode::FileMissing);
}

/// The folder and its file are there, but not what is to be made.
[[noreturn]] void RaiseNoFolder(const std::string& Path) {
  const int Error = errno;
  const std::string Folder = FolderOf(Path);
  RaiseFileError<EFCreateError>(
      "create", Path,
      Error == ENOENT ? Format("there is no folder '%s'", Folder.substr(0, Folder.find_last_not_of('/') + 1))
                      : SystemReason(Error),
      FileErrorCode(Error));
}

}  // namespace

std::unique_ptr<TFileInMaking> MakeFileInPlaceOf(const std::string& Path) {
  TFilePlace Place = PlaceOfFile(Path);
  if (Place.Folder.Number() < 0) RaiseSystemError<EWriteError>("replace", Path);
  const struct stat Old = Place.Status(Place.Name);
  if (Old.st_nlink == 0 || IsUnlocked(Place)) RaiseTaken(Path);
  if (Old.st_nlink > 1)
    RaiseNotReplaced(Path, Format("it has %d names (hard links), and the others would keep leading to the old file. "
                                  "Remove them, or work on a copy",
                                  Old.st_nlink));
  if (IsMountPoint(Place)) RaiseNotReplaced(Path, "it is mounted there by itself. Mount its folder instead");
  if (SparesFilesOfOthers(Place, Old))
    RaiseNotReplaced(Path, "it belongs to another user, and its folder lets nobody else take it away");
  auto Result =
      std::make_unique<TPosixFileInMaking>(Path, std::move(Place), TOldFile{Old.st_dev, Old.st_ino}, OwnerAlone);
  KeepRights(Path, Result->Descriptor());
  return Result;
}

std::unique_ptr<TFileInMaking> MakeNewFile(const std::string& Path, const std::string& Like) {
  if (Path.find('\0') != std::string::npos)
    RaiseFileError<EFCreateError>("create", Path, "the name holds a character U+0000", TErrorCode::FileMissing);
  RefuseTaken(Path);
  TFilePlace Place = PlaceOfFile(Path);
  if (Place.Folder.Number() < 0) RaiseNoFolder(Path);
  auto Result = std::make_unique<TPosixFileInMaking>(Path, std::move(Place), std::nullopt,
                                                     Like.empty() ? NewFileRights : OwnerAlone);
  if (!Like.empty()) KeepRights(Like, Result->Descriptor());
  return Result;
}

void RemoveLeftInMaking(const std::string& Path) {
  const TFilePlace Place = PlaceOfFile(Path);
  if (Place.Folder.Number() >= 0) Place.RemoveLeft();
}

}  // namespace velkrund

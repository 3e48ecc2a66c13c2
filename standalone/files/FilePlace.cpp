#include "standalone/files/FilePlace.h"

#include <stdio.h>
#include <stdlib.h>

namespace velkrund {

namespace {

/// The path behind links; the same where there is none, or where it leads to nothing.
std::string Resolved(const std::string& Path) {
  struct stat Status;
  if (lstat(Path.c_str(), &Status) != 0 || !S_ISLNK(Status.st_mode)) return Path;
  char* const Real = realpath(Path.c_str(), nullptr);
  if (!Real) return Path;
  std::string Result(Real);
  free(Real);
  return Result;
}

/// Removes what has that name if it is one of ours that was left.
void RemoveIfLeft(const TFilePlace& Place, const std::string& Name) {
  // One that has its own name already has this one still where the run ended between the two.
  const auto IsOurs = [&Place](const struct stat& Status) {
    const struct stat Own = Place.Status(Place.Name);
    const bool IsOwn = Own.st_nlink == 2 && Own.st_dev == Status.st_dev && Own.st_ino == Status.st_ino;
    return S_ISREG(Status.st_mode) && (Status.st_nlink == 1 || (Status.st_nlink == 2 && IsOwn));
  };
  if (!IsOurs(Place.Status(Name))) return;
  const TDescriptor Found(Uninterrupted(
      [&] { return openat(Place.Folder.Number(), Name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC); }));
  struct stat Opened;
  if (Found.Number() < 0 || !LockForWriting(Found.Number()) || fstat(Found.Number(), &Opened) != 0) return;
  // It may have got another name, or have been removed and made anew, before it was locked.
  const struct stat Now = Place.Status(Name);
  if (!IsOurs(Now) || Now.st_dev != Opened.st_dev || Now.st_ino != Opened.st_ino) return;
  unlinkat(Place.Folder.Number(), Name.c_str(), 0);
}

}  // namespace

struct stat TFilePlace::Status(const std::string& Entry) const {
  struct stat Result = {};
  if (fstatat(Folder.Number(), Entry.c_str(), &Result, AT_SYMLINK_NOFOLLOW) != 0) Result.st_nlink = 0;
  return Result;
}

/// With FNV-1a of 64 bits: the name may be as long as the file system allows, and this one must not be longer.
std::string TFilePlace::NameInMaking(int Number) const {
  std::uint64_t Hash = 0xcbf29ce484222325;
  for (const char Byte : Name) Hash = (Hash ^ static_cast<unsigned char>(Byte)) * 0x100000001b3;
  char Text[sizeof ".velkrund-0123456789abcdef-0"];
  snprintf(Text, sizeof Text, ".velkrund-%016llx-%d", static_cast<unsigned long long>(Hash), Number);
  return Text;
}

void TFilePlace::RemoveLeft() const {
  for (int Number = 0; Number < MostNames; ++Number) RemoveIfLeft(*this, NameInMaking(Number));
}

TFilePlace PlaceOfFile(const std::string& Path) {
  std::string Behind = Resolved(Path);
  const std::string Folder = FolderOf(Behind);
  std::string Name = Behind.substr(Behind.rfind('/') + 1);
  TDescriptor Opened(Uninterrupted([&] { return open(Folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC); }));
  return {std::move(Behind), std::move(Opened), std::move(Name)};
}

}  // namespace velkrund

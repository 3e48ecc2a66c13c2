#include "standalone/files/FileRights.h"

#include <sys/stat.h>
#include <sys/xattr.h>

#include <optional>
#include <vector>

#include "standalone/files/PosixFile.h"

namespace velkrund {

namespace {

constexpr const char* AccessList = "system.posix_acl_access";
constexpr mode_t AllRights = 07777;

[[noreturn]] void RaiseNotKept(const std::string& File, const std::string& What) {
  RaiseFileError<EWriteError>("replace", File, What + ". Work on a copy of the file", TErrorCode::FileAccess);
}

[[noreturn]] void RaiseNotKept(const std::string& File, const std::string& What, int Error) {
  RaiseNotKept(File, Format("its %s cannot be kept: %s", What, SystemReason(Error)));
}

/// Where the file system knows no such thing, there is none.
bool IsAbsent(int Error) { return Error == ENODATA || Error == ENOTSUP; }

/// Nothing: the file has no such attribute.
std::optional<std::string> AttributeOf(const std::string& File, const char* Name) {
  for (;;) {
    const ssize_t Size = getxattr(File.c_str(), Name, nullptr, 0);
    if (Size < 0 && IsAbsent(errno)) return std::nullopt;
    if (Size < 0) RaiseNotKept(File, Format("attribute %s", Name), errno);
    std::string Value(static_cast<std::size_t>(Size), '\0');
    const ssize_t Got = getxattr(File.c_str(), Name, Value.data(), Value.size());
    if (Got < 0 && errno == ERANGE) continue;  // it has grown meanwhile
    if (Got < 0) RaiseNotKept(File, Format("attribute %s", Name), errno);
    Value.resize(static_cast<std::size_t>(Got));
    return Value;
  }
}

std::vector<std::string> AttributeNames(const std::string& File) {
  std::string Names;
  for (;;) {
    const ssize_t Size = listxattr(File.c_str(), nullptr, 0);
    if (Size <= 0 && (Size == 0 || IsAbsent(errno))) return {};
    if (Size < 0) RaiseNotKept(File, "attributes", errno);
    Names.resize(static_cast<std::size_t>(Size));
    const ssize_t Got = listxattr(File.c_str(), Names.data(), Names.size());
    if (Got < 0 && errno == ERANGE) continue;
    if (Got < 0) RaiseNotKept(File, "attributes", errno);
    Names.resize(static_cast<std::size_t>(Got));
    break;
  }
  std::vector<std::string> Result;
  for (std::size_t At = 0; At < Names.size(); At = Names.find('\0', At) + 1) Result.emplace_back(Names.c_str() + At);
  return Result;
}

/// A class of people that loses its place is among all others then, and one that takes it has its rights.
void KeepOwner(const std::string& From, const struct stat& Old, bool HasList, int To) {
  if (fchown(To, Old.st_uid, Old.st_gid) == 0) return;
  struct stat New;
  // A member of the group can still give it the group.
  static_cast<void>(fchown(To, static_cast<uid_t>(-1), Old.st_gid) == 0);
  if (fstat(To, &New) != 0) RaiseNotKept(From, "owner", errno);
  if (New.st_uid != Old.st_uid && (Old.st_mode & S_ISUID) != 0)
    RaiseNotKept(From, "its owner cannot be kept, as whom it runs");
  const mode_t OfGroup = (Old.st_mode >> 3) & 7, OfOthers = Old.st_mode & 7;
  if (New.st_gid != Old.st_gid && (HasList || OfGroup != OfOthers || (Old.st_mode & S_ISGID) != 0))
    RaiseNotKept(From, "its group cannot be kept, and others would get rights: only a member of the group can do that");
}

/// A folder may give new files a list that the old one does not have.
void KeepAccessList(const std::string& From, const std::optional<std::string>& List, int To) {
  if (List && fsetxattr(To, AccessList, List->data(), List->size(), 0) != 0) RaiseNotKept(From, "access list", errno);
  if (!List && fremovexattr(To, AccessList) != 0 && !IsAbsent(errno)) RaiseNotKept(From, "access rights", errno);
}

}  // namespace

void KeepRights(const std::string& From, int To) {
  struct stat Old, New;
  if (stat(From.c_str(), &Old) != 0) RaiseNotKept(From, "rights", errno);
  const std::optional<std::string> List = AttributeOf(From, AccessList);
  // Before the mode, some of which it may take away.
  KeepOwner(From, Old, List.has_value(), To);
  KeepAccessList(From, List, To);
  for (const std::string& Name : AttributeNames(From)) {
    if (!Name.starts_with("user.")) continue;
    const std::optional<std::string> Value = AttributeOf(From, Name.c_str());
    if (Value && fsetxattr(To, Name.c_str(), Value->data(), Value->size(), 0) != 0)
      RaiseNotKept(From, Format("attribute %s", Name), errno);
  }
  if (fstat(To, &New) != 0) RaiseNotKept(From, "mode", errno);
  if (((New.st_mode ^ Old.st_mode) & AllRights) != 0 && fchmod(To, Old.st_mode & AllRights) != 0)
    RaiseNotKept(From, "mode", errno);
  // The system takes some away without a word.
  if (fstat(To, &New) != 0 || ((New.st_mode ^ Old.st_mode) & AllRights) != 0) RaiseNotKept(From, "mode", EPERM);
}

}  // namespace velkrund

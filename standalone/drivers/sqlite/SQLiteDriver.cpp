#include "standalone/drivers/sqlite/SQLiteDriver.h"

#include <sys/stat.h>

#include <filesystem>

#include "standalone/drivers/sqlite/SQLiteConnection.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr std::string_view InMemory = ":memory:";

/// Always absolute, so that no path is taken for one of the engine's own "file:" addresses.
std::string PathOf(const TDatabaseUrl& Url, const TConnectOptions& Options) {
  if (Url.Rest.empty()) throw EDatabaseError("The database address 'sqlite:' names no file");
  if (Url.Rest.find('\0') != std::string::npos) throw EDatabaseError("A database address holds a character U+0000");
  if (Url.Rest == InMemory) return Url.Rest;
  return std::filesystem::absolute(std::filesystem::path(Options.BaseFolder) / Url.Rest).string();
}

void CheckFile(const std::string& Path, bool CreateMissing) {
  std::error_code Error;
  const std::filesystem::file_status Status = std::filesystem::status(Path, Error);
  if (std::filesystem::is_directory(Status))
    throw EDatabaseError(Format("The database '%s' is a folder", Path), {.Code = TErrorCode::DatabaseName});
  if (Status.type() == std::filesystem::file_type::not_found && !CreateMissing)
    throw EDatabaseError(Format("The database file '%s' does not exist", Path), {.Code = TErrorCode::DatabaseMissing});
}

}  // namespace

std::string TSQLiteDriver::Identity(const TDatabaseUrl& Url, const TConnectOptions& Options) const {
  std::string Path = PathOf(Url, Options);
  if (Path == InMemory) return Path;
  // Of a file with several names none is the right one.
  struct stat File {};
  if (stat(Path.c_str(), &File) == 0 && File.st_nlink > 1) return Format("%d/%d", File.st_dev, File.st_ino);
  std::error_code Error;
  const std::filesystem::path Canonical = std::filesystem::weakly_canonical(Path, Error);
  return Error ? Path : Canonical.string();
}

std::unique_ptr<TConnection> TSQLiteDriver::Connect(const TDatabaseUrl& Url, const TConnectOptions& Options) const {
  const std::string Path = PathOf(Url, Options);
  if (Path != InMemory) CheckFile(Path, Options.CreateMissing);
  return std::make_unique<TSQLiteConnection>(Path, Options);
}

}  // namespace velkrund

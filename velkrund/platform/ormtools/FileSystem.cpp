// What a file system does that holds the files of others to be read, or a single one: it makes none.

#include "velkrund/platform/ormtools/FileSystem.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

std::unique_ptr<TFileInMaking> TFileSystem::MakeInPlaceOf(const std::string& Path) {
  throw EWriteError(Format("Cannot replace '%s' here", Path), {.File = Path});
}

std::unique_ptr<TFileInMaking> TFileSystem::MakeNew(const std::string& Path, const std::string&) {
  throw EFCreateError(Format("Cannot create '%s' here", Path), {.File = Path});
}

void TFileSystem::RemoveLeft(const std::string&) {}

}  // namespace velkrund

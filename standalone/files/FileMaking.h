#pragma once

#include <memory>
#include <string>

#include "velkrund/platform/ormtools/FileSystem.h"

namespace velkrund {

/// What TFileSystem says of MakeInPlaceOf, MakeNew and RemoveLeft.
///
/// A file in the making has no name where the file system can do that (O_TMPFILE): a killed process leaves nothing of
/// it. Elsewhere, and for the moment in which it takes another's place, it is called .velkrund-HASH-N in the folder of
/// the file that it is for: HASH is that of this file's name, so that names of any length work, N the first number that
/// is free. Whoever makes it holds a lock on it.
std::unique_ptr<TFileInMaking> MakeFileInPlaceOf(const std::string& Path);
std::unique_ptr<TFileInMaking> MakeNewFile(const std::string& Path, const std::string& Like);
/// Removes regular files of such a name that have no other and that nobody has locked.
void RemoveLeftInMaking(const std::string& Path);

}  // namespace velkrund

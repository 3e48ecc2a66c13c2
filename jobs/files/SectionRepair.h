#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/FileSystem.h"

namespace velkrund {

/// What a repair did.
struct TSectionRepair {
  std::int64_t Position = -1;             // where the file was cut; -1: there was nothing to repair
  std::int64_t Bytes = 0;                 // how many were cut off
  std::string CutFile = {};               // where they are now
  std::optional<TErrorFacts> Fault = {};  // why the file could not be read; nothing: a beginning that is no section yet
  int SectionsLeft = 0;
  std::int64_t LineFeeds = 0;  // that ended lines alone and have a carriage return in front of them now
};

/// Makes lines whole that end with a line feed alone (MendLineFeeds), then cuts off what a writer that was stopped has
/// left at the end of a file: unfinished sections, a section without its "[END]" line, or the beginning of one that is
/// too short to be known as such (a piece of the "[SECTION]" line, or of the byte-order mark in an otherwise empty
/// file), which no reader minds but which later sections would stand behind. What is cut off goes into a new file
/// beside it, FILE.cut or FILE.cut-2 and so on, with the same rights; it is on the disk before the file is shortened.
/// One that holds the very same already, from a repair that was killed in between, is used again.
///
/// The file is locked against other writers meanwhile. A fault of any other kind, one with a "[SECTION]" or "[END]"
/// line behind it above all, is an EEIError with its text, and so is a hidden section. Canceled: true raises EAbort.
/// After an error lines are whole or as they were, nothing is cut off, and the new file is gone; only when the
/// shortened file cannot be synced are both left.
TSectionRepair RepairFile(TFileSystem& Files, const std::string& Path, const std::function<bool()>& Canceled);

}  // namespace velkrund

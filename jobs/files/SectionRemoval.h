#pragma once

#include <functional>
#include <vector>

#include "velkrund/eif/EIFile.h"

namespace velkrund {

/// Takes sections out of a file so that whatever happens the old file is there or the new one, whole: works on a copy
/// that is then put in the file's place, with its rights. Everything else stays byte for byte. File: opened for
/// writing, so that it keeps other writers away meanwhile; stale afterwards. Canceled: true raises EAbort, and the file
/// is as it was.
void RemoveSections(TFileSystem& Files, TEIFile& File, const std::vector<int>& Indexes,
                    const std::function<bool()>& Canceled);

/// The same into a copy that was begun. Sections of the file that are held back are finished in it.
void WriteWithout(TFileInMaking& Copy, TEIFile& File, const std::vector<int>& Indexes,
                  const std::function<bool()>& Canceled);

}  // namespace velkrund

#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "velkrund/eif/EIFile.h"

namespace velkrund {

// Lines of an export/import file end with a carriage return. Tools for texts, version control above all, may leave a
// line feed alone of it, which ends no line: the sections that stand so are read by nobody.

/// A part of a file, in bytes.
struct TFileRange {
  std::int64_t From, To;
};

/// Whether a line of the part that is a marker ends with a line feed alone, or with the part behind one. Moves the
/// stream.
bool HasLineFeedMarkers(TStream& Stream, const TFileRange& Part);

/// The parts in which a line feed alone is no data: hidden sections, what is behind a faulty header where markers stand
/// so, records and trees. In header values and remarks it is data. In their order. Moves the file's stream. File:
/// opened, as far as it could be.
std::vector<TFileRange> LineFeedParts(TEIFile& File);

/// Writes carriage return and line feed for every line feed alone in these parts, and every other byte as it is, beside
/// the file, and then puts that in its place, so that whatever happens the old file is there or the new one, whole.
/// Returns how many there were. File: opened for writing; stale afterwards. Canceled: true raises EAbort, and the file
/// is as it was.
std::int64_t MendLineFeeds(TFileSystem& Files, TEIFile& File, const std::vector<TFileRange>& Parts,
                           const std::function<bool()>& Canceled);

}  // namespace velkrund

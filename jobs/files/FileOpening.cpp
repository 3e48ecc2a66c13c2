#include "jobs/files/FileOpening.h"

#include <sys/stat.h>

#include "jobs/files/LineFeeds.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

bool IsPipe(const std::string& Name) {
  struct stat Status;
  return Name == "-" || (stat(Name.c_str(), &Status) == 0 && !S_ISREG(Status.st_mode) && !S_ISDIR(Status.st_mode));
}

void OpenPlainly(TEIFile& File) {
  try {
    File.Open();
  } catch (const std::nested_exception& Decorated) {
    try {
      Decorated.rethrow_nested();
    } catch (const EFOpenError&) {
      throw;
    } catch (const std::exception&) {
      // Told with all that is known about the place, below.
    }
    throw;
  }
}

void OpenForSections(TEIFile& File) {
  try {
    OpenPlainly(File);
  } catch (const EEIError&) {
    const std::int64_t From = File.UnreadPosition();
    if (From < 0 || !HasLineFeedMarkers(File.Stream(), {From, File.Stream().Size()})) throw;
    throw EEIError(Format("'%s' has a section (Position:%d) that cannot be read, or that hides others: lines of it end "
                          "with a line feed alone",
                          File.FileName(), From),
                   {.Code = TErrorCode::LineFeeds, .File = File.FileName()});
  }
}

}  // namespace velkrund

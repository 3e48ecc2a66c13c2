#include "jobs/files/FileOpening.h"

#include <sys/stat.h>

#include "velkrund/platform/ormtools/Exceptions.h"

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

}  // namespace velkrund

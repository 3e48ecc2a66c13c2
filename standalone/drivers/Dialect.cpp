#include "standalone/drivers/Dialect.h"

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

std::string QuoteStandardName(std::string_view Name) {
  std::string Result = "\"";
  for (const char C : Name) {
    if (C == '"') Result += '"';
    Result += C;
  }
  return Result += '"';
}

std::string SavepointName(int Number) { return Format("velkrund_%d", Number); }

}  // namespace velkrund

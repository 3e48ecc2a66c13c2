#include "standalone/drivers/Dialect.h"

namespace velkrund {

std::string QuoteStandardName(std::string_view Name) {
  std::string Result = "\"";
  for (const char C : Name) {
    if (C == '"') Result += '"';
    Result += C;
  }
  return Result += '"';
}

}  // namespace velkrund

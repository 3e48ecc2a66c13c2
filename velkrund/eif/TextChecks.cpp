#include "velkrund/eif/TextChecks.h"

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::int64_t ExcerptUnits = 60;

}  // namespace

void RefuseTextRead(std::int64_t Position) {
  throw EEIError(
      Format("The text is not valid UTF-8 (Position:%d). Allow losses to read it with replacement characters",
             Position),
      {.Code = TErrorCode::Text});
}

void RefuseTextWritten(std::string_view Text, std::int64_t Position) {
  std::string Excerpt = Shortened(Text, ExcerptUnits);
  RepairUtf8(Excerpt);
  if (FindMalformedUtf8(Text) != std::string_view::npos)
    throw EEIError(
        Format("The text '%s' is not valid UTF-8 (Position:%d). Allow losses to write it with replacement characters",
               Excerpt, Position),
        {.Code = TErrorCode::Text});
  throw EEIError(Format("The text '%s' has characters that code page %d lacks (Position:%d). Write the file in UTF-8, "
                        "or allow losses",
                        Excerpt, WorkSettings().AnsiCodePage->Number(), Position),
                 {.Code = TErrorCode::Text});
}

}  // namespace velkrund

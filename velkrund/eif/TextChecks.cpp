#include "velkrund/eif/TextChecks.h"

#include "velkrund/platform/database/Platform.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::size_t ExcerptBytes = 60;

}  // namespace

void CheckTextRead(std::int64_t Position) {
  if (!WorkSettings().StrictText) return;
  throw EEIError(Format(
      "The text is not valid UTF-8 (Position:%d). Allow losses to read it with replacement characters", Position));
}

void CheckTextWritten(std::string_view Text, std::int64_t Position) {
  if (!WorkSettings().StrictText) return;
  throw EEIError(Format(
      "The text '%s' has characters that code page %d lacks (Position:%d). Write the file in UTF-8, or allow losses",
      Text.substr(0, ExcerptBytes), WorkSettings().AnsiCodePage->Number(), Position));
}

}  // namespace velkrund

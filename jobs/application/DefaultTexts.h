#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// A file of texts that is not as it has to be; the message names the line.
VELKRUND_EXCEPTION(ETextsError, Exception);

/// The texts of message keys, one per language, from the "LocalizedResource" sections of an export/import file:
///
///   SectionID = ST         header; Type = LocalizedResource, Version = 200, Encoding = UTF8
///    [LANGUAGES]           body; the blanks count
///     English
///    [STRINGS]
///     YES:                 the key is ST_YES
///      English = '&Yes'    control characters and "#" as "#" and the four hexadecimal digits of a UTF-16 unit
///
/// Lines continued with "@" are refused. Constant once made, so that threads may share it.
class TDefaultTexts {
 public:
  /// Raises ETextsError.
  explicit TDefaultTexts(std::string_view File);
  /// Those that are built into the program; read on first use.
  static const TDefaultTexts& Own();

  /// The text of a key, whose case does not matter, in that language ("Russian"); in English when it has none; nothing
  /// when it has neither.
  std::optional<std::string> Find(std::string_view Key, std::string_view Language) const;

 private:
  class TReader;

  std::map<std::pair<std::string, std::string>, std::string> FTexts;  // by key and language, both in lower case
};

/// The language of the user's texts, as they name it. Setting: as the configuration has it, such as "ru"; empty: the
/// environment's (LC_ALL, LC_MESSAGES, LANG). All that is not Russian is English.
std::string TextLanguage(const std::string& Setting);

}  // namespace velkrund

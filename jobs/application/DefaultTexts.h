#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "velkrund/eif/EISource.h"
#include "velkrund/platform/localization/LSection.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// A file of texts that is not as it has to be; the message names the line.
VELKRUND_EXCEPTION(ETextsError, Exception);

/// The texts of message keys, one per language, from the "LocalizedResource" sections of an export/import file, all of
/// version 200 and in UTF-8. A key is the string's ID: the section's, "_" and the name. Constant once made, so that
/// threads may share it.
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
  void ReadSection(TEISource& Source, int Index);

  TLSection FTexts;  // by key
};

inline constexpr std::string_view EnglishTexts = "English";

/// The language of the user's texts, as they name it. Setting: as the configuration has it, such as "ru"; empty: the
/// environment's (LC_ALL, LC_MESSAGES, LANG). All that is not Russian is English.
std::string TextLanguage(const std::string& Setting);

}  // namespace velkrund

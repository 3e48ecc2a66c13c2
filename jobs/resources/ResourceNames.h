#pragma once

#include <string>
#include <vector>

#include "velkrund/eif/EIFile.h"
#include "velkrund/platform/localization/LContainer.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// What a name is of, for messages: "language".
enum class TResourceName { Section, String, Language, LanguageText };

/// Raises EResourceName for a name that the lines of a section would not bring back: one with control characters, or
/// blanks at its ends; of a language with blanks, "=" or "#" anywhere too. All but the texts may not be empty.
void RequireKept(TResourceName What, const std::string& Name);
/// The same of all that is said of a language.
void RequireKept(const std::string& Language, const TOneLanguage& Record);

/// The same of all names in a section's header and in its list of languages; nothing where it is of another kind. The
/// section can be read.
void RequireKeptNames(TEIFile& File, int Index);

VELKRUND_EXCEPTION(EResourceName, Exception);
VELKRUND_EXCEPTION(ELanguageMissing, EDatabaseError);

/// Those of a database under their stored names, or of its languages those in the list, each once and in the list's
/// order. Raises ELanguageMissing for one that is not there, which says what is. DatabaseText: for messages.
TStringList LanguagesOf(const std::string& DatabaseName, const std::string& DatabaseText,
                        const std::vector<std::string>& Wanted);
/// Whether a list has the name, ignoring case.
bool HasLanguage(const TStringList& Languages, const std::string& Name);

}  // namespace velkrund

#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/Definitions.h"

namespace velkrund {

/// The objects that people name, the exact name first, else ignoring case; all when Names is empty. Raises
/// EDatabaseError for a name that is none, for names that structures cannot tell apart or sections cannot hold, and for
/// a table that would be taken for the inside of another one's field. Database: for messages.
std::vector<TDefinedObject> ChosenObjects(std::vector<TDefinedObject> All, const std::vector<std::string>& Names,
                                          const std::string& Database);

/// Raises EDatabaseError for names that structures cannot tell apart or sections cannot hold.
void RefuseNames(const std::vector<TDefinedObject>& Objects);

/// "table", "view", "generator", "procedure".
std::string_view KindText(TDefinedKind Kind);

}  // namespace velkrund

#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/Definitions.h"
#include "standalone/drivers/SchemaReader.h"

namespace velkrund {

/// The objects that people name, the exact name first, else ignoring case; all when Names is empty. Raises
/// EDatabaseError for a name that is none, for names that structures cannot tell apart or sections cannot hold, and for
/// a table that would be taken for the inside of another one's field. Database: for messages.
std::vector<TDefinedObject> ChosenObjects(std::vector<TDefinedObject> All, const std::vector<std::string>& Names,
                                          const std::string& Database);

/// Raises EDatabaseError for names that structures cannot tell apart or sections cannot hold.
void RefuseNames(const std::vector<TDefinedObject>& Objects);

/// Raises EDatabaseError for a table 'T.F' beside a table 'T' with a field 'F' of bytes: its structure would be taken
/// for that of what such a field may hold inside. Schema: of the database, whose objects are All.
void RefuseInsides(TSchemaReader& Schema, const std::vector<TDefinedObject>& Objects,
                   const std::vector<TDefinedObject>& All);

/// "table", "view", "generator", "procedure".
std::string_view KindText(TDefinedKind Kind);

}  // namespace velkrund

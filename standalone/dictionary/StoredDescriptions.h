#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "standalone/drivers/Definitions.h"
#include "velkrund/platform/dictionary/ObjectDescriptions.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

/// The name of the structure that describes an object: its own, in upper case.
std::string StructureName(std::string_view FullName);
/// The object type of structures of that kind.
int ObjectTypeOf(TDefinedKind Kind);

/// The tree of a structure in the installed container; nothing when there is none of that name, in any case. Raises
/// EDSPError for one that is damaged.
std::unique_ptr<TDSPFormManager> LoadStructure(const std::string& DatabaseName, const std::string& Name,
                                               int ObjectType);

// What a structure describes; nothing when there is none of that name. Raises EDSPError, which names the structure,
// where its tree describes no such object.
std::optional<TDicTableDescription> StoredTable(const std::string& DatabaseName, const std::string& Name);
std::optional<TDicViewDescription> StoredView(const std::string& DatabaseName, const std::string& Name);
std::optional<TDicGeneratorDescription> StoredGenerator(const std::string& DatabaseName, const std::string& Name);
std::optional<TDicProcedureDescription> StoredProcedure(const std::string& DatabaseName, const std::string& Name,
                                                        bool Selects);

/// A copy of a structure may have another name than the object that it was made of: gives the object the structure's
/// name.
void NameAfter(TDicObjectDescription& Object, const std::string& Structure);

// Stores a description as the tree of its structure, whose properties stay; one that is not there is made, with the
// object's full name as the name of its table.
void StoreDescription(const std::string& DatabaseName, const TDicTableDescription& Table);
void StoreDescription(const std::string& DatabaseName, const TDicViewDescription& View);
void StoreDescription(const std::string& DatabaseName, const TDicGeneratorDescription& Generator);
void StoreDescription(const std::string& DatabaseName, const TDicProcedureDescription& Procedure);

}  // namespace velkrund

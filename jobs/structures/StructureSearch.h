#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

/// Stands for no object type in particular.
inline constexpr std::int32_t AnyType = -1;

/// A stored structure that is named and not there.
VELKRUND_EXCEPTION(EStructureMissing, EDatabaseError);

/// Finds stored structures that a person names.
class TStructureSearch {
 public:
  /// Table: borrowed. Database: for messages.
  TStructureSearch(TDSPTable& Table, std::string Database) : FTable(Table), FDatabase(std::move(Database)) {}

  /// The structure of that name, ignoring case. Type: AnyType, or one. Raises EStructureMissing when there is none,
  /// ESettingsError when no type is given and there are several of different types.
  TDSPListItem Find(const std::string& Name, std::int32_t Type);

 private:
  TDSPListItem FindOfAnyType(const std::string& Name);
  [[noreturn]] void Missing(const std::string& Name, std::int32_t Type) const;

  TDSPTable& FTable;
  const std::string FDatabase;
  std::optional<std::multimap<std::string, TDSPListItem>> FByName;  // in lower case; read when first needed
};

/// The structures of that type (AnyType: of all) and of that name, ignoring case (empty: any).
std::vector<TDSPListItem> StructuresLike(TDSPTable& Table, std::int32_t Type, const std::string& Name);

}  // namespace velkrund

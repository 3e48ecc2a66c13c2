#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/eif/Section.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

/// What identifies a stored structure.
struct TStructureId {
  int Type = 0;
  std::string Name;
};

/// "CLIENTS (12)": for people, and the usual name of its section.
std::string StructureText(const TStructureId& Structure);
/// What a type is, where that is known: "visual form". Empty otherwise.
std::string_view KindOfStructure(int Type);
/// "12 visual form".
std::string TypeText(int Type);

/// The structure that a structure section names; nothing where its header is faulty.
std::optional<TStructureId> StructureOf(const TEISection& Section);

/// Finds stored structures that a person names.
class TStructureSearch {
 public:
  /// Table: borrowed. Database: for messages.
  TStructureSearch(TDSPTable& Table, std::string Database) : FTable(Table), FDatabase(std::move(Database)) {}

  /// The structure of that name, ignoring case. Raises EDatabaseError when there is none, EUsage when no type is given
  /// and there are several of different types.
  TDSPListItem Find(const std::string& Name, const std::optional<std::int32_t>& Type);

 private:
  TDSPListItem FindOfAnyType(const std::string& Name);
  [[noreturn]] void Missing(const std::string& What) const;

  TDSPTable& FTable;
  const std::string FDatabase;
  std::optional<std::multimap<std::string, TDSPListItem>> FByName;  // in lower case; read when first needed
};

/// The structures of that type and of that name, ignoring case; all where neither is given.
std::vector<TDSPListItem> StructuresLike(TDSPTable& Table, const std::optional<std::int32_t>& Type,
                                         const std::string& Name);

}  // namespace velkrund

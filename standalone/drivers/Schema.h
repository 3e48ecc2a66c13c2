#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

enum class TTableKind {
  Table,
  View,
  Foreign,       // rows that another server or program keeps
  Extension,     // rows that an extension of the engine keeps, and takes as a table does
  IndexOfTable,  // words of another table's rows, to be searched for; made anew from these
  IndexAlone,    // words without the texts that they are from
  Computed,      // rows that an extension makes up or finds elsewhere
};

/// A table as the list of tables shows it.
struct TTableInfo {
  std::string Name;    // in the case in which the database has it
  std::string Schema;  // empty where the engine has no schemas, and for its usual one
  TTableKind Kind = TTableKind::Table;
  bool HasHeirs = false;    // other tables inherit from it; their rows are none of its own
  bool SharesName = false;  // with another table, when schema and name are joined by a dot

  bool operator==(const TTableInfo&) const = default;
};

/// Schema and name joined by a dot.
inline std::string DottedName(const TTableInfo& Table) {
  return Table.Schema.empty() ? Table.Name : Table.Schema + "." + Table.Name;
}
/// The name by which people and files know a table: the dotted one, or the exact one where another table has that too.
std::string FullName(const TTableInfo& Table);

/// The parts of an exact name, each of which stands between quotes that are doubled inside: "a.b", "a"."b"; nothing
/// where a name is written in any other way.
std::optional<std::vector<std::string>> ExactNameParts(std::string_view Name);
/// Whether that is the exact name of the table; one part stands for its usual schema.
bool HasExactName(const TTableInfo& Table, std::string_view Name);

struct TColumnInfo {
  std::string Name;
  std::string DeclaredType;      // as it was declared; empty when it was not
  TKvKind Kind = TKvKind::Null;  // what the declared type stands for; Null when it says nothing
  bool Nullable = true;
  bool Generated = false;  // computed by the engine: read, never written
  int KeyPosition = 0;     // place in the primary key, from 1; 0: no part of it
};

/// Words of a table's rows, kept by an extension of the engine in what looks like another table. Whoever loads the rows
/// past it has it made anew: TConnection::RebuildTextIndex.
struct TTextIndex {
  TTableInfo Index, Table;
};

/// Rows of one table refer to rows of another one, or of the same.
struct TForeignKey {
  TTableInfo From, To;
  TTableInfo FromWhole, ToWhole;  // the same, or what these are parts of
  bool ActsOnDelete = false;      // deleting a row of To deletes or changes the rows of From that refer to it
  std::string Id = {};            // by which the engine tells keys apart; empty where it does not
  bool IsEnforced = true;         // not switched off by somebody, where the engine enforces keys
  /// The columns of From, where the engine enforces keys and no index begins with them: whoever deletes a row of To has
  /// the engine look through all rows of From. Empty: there is one.
  std::string Unindexed = {};

  /// Indexes come and go.
  bool operator==(const TForeignKey& Other) const {
    return From == Other.From && To == Other.To && FromWhole == Other.FromWhole && ToWhole == Other.ToWhole &&
           ActsOnDelete == Other.ActsOnDelete && Id == Other.Id && IsEnforced == Other.IsEnforced;
  }
};

/// What the database itself does when rows are inserted or deleted.
struct TTrigger {
  TTableInfo Table;  // of one on a part of a table, the whole
  std::string Name;
  bool OnInsert = false, OnDelete = false;
  bool Always = false;  // also where the engine checks no references
  bool IsRule = false;  // of how the engine rewrites statements; not to be switched off

  bool operator==(const TTrigger&) const = default;
};

/// Rows of a table that refer to rows which are not there.
struct TBrokenReferences {
  std::int64_t Count = 0;
  std::string Example = {};  // "row 17 to a row of 'ORDERS'"
};

struct TTableDescription {
  TTableInfo Table;
  std::vector<TColumnInfo> Columns;  // in physical order
};

/// The place of a column among the description's; -1 when it is none.
inline int IndexOf(const TTableDescription& Table, std::string_view Name) {
  for (std::size_t I = 0; I < Table.Columns.size(); ++I)
    if (Table.Columns[I].Name == Name) return static_cast<int>(I);
  return -1;
}

/// The same in any case, the exact name first.
int IndexInAnyCase(const TTableDescription& Table, std::string_view Name);

}  // namespace velkrund

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// A column as CREATE TABLE has it.
struct TSQLiteColumnDeclaration {
  std::string Name;
  std::string Type;  // as written; empty: none
  std::string Collate = {};
  bool NotNull = false;
  std::string NotNullConflict = {};          // "IGNORE"; empty: as usual
  std::optional<std::string> Default = {};   // a literal, or an expression in brackets
  std::optional<std::string> Computed = {};  // without its brackets
  bool Stored = false;
};

/// What stands in the text of CREATE TABLE. Columns of keys and references go by the exact names of the columns.
struct TSQLiteTableDeclaration {
  std::vector<TSQLiteColumnDeclaration> Columns;
  // With the words of SQLite alone; the primary key first, else in the order of the text.
  std::vector<TDicKey> Keys;
  std::vector<TDicForeignKey> ForeignKeys;
  std::vector<TDicCheck> Checks;
  bool Strict = false, WithoutRowId = false;
};

/// Statement: as the engine keeps it. Raises EDatabaseError naming the table when it is not understood.
TSQLiteTableDeclaration ReadTableDeclaration(std::string_view Statement, std::string_view TableName);

}  // namespace velkrund

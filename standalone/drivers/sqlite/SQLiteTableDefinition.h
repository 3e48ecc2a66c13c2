#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "standalone/drivers/Schema.h"
#include "standalone/drivers/sqlite/SQLiteTableDeclaration.h"

namespace velkrund {

/// The default that stands for UUID, of which the engine has no function.
extern const std::string_view SQLiteUuidDefault;

/// Makes the description of a table out of what the engine knows of it and of the texts that it keeps.
class TSQLiteTableDefinition {
 public:
  explicit TSQLiteTableDefinition(const TTableDescription& Known);

  /// KeyIsRowNumber: the primary key has no index of its own. Raises EDatabaseError when the declaration says otherwise
  /// than the engine.
  void AddDeclaration(TSQLiteTableDeclaration Declaration, bool KeyIsRowNumber);
  /// Using: the declaration of a virtual table from USING on.
  void AddVirtual(const std::string& Using);
  void AddIndex(const std::string& Name, const std::string& Statement);
  void AddTrigger(const std::string& Name, const std::string& Statement);

  /// Indexes are in the order of their names.
  TDicTableDescription Take();

 private:
  TDicField FieldOf(const TColumnInfo& Column) const;
  void AddColumn(const TColumnInfo& Known, const TSQLiteColumnDeclaration& Declared);
  std::optional<std::string> WithoutCasts(std::string_view Text) const;
  std::optional<std::string> Neutral(std::string_view Text) const;
  const TColumnInfo* NumberOf(const std::string& Neutral) const;
  /// Null when there is none.
  const TColumnInfo* Column(std::string_view Name) const;

  const TTableDescription& FKnown;
  TDicTableDescription FResult;
};

/// A trigger as descriptions keep it.
TDicTrigger SQLiteTrigger(const std::string& Name, const std::string& Statement);

}  // namespace velkrund

#pragma once

#include <string>
#include <vector>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// What of a table is made. The numbers stand in settings: they stay.
enum class TTableScriptPart : int {
  All = 0,
  Table = 1,  // with its keys, its checks and the indexes of the description
  Rest = 2,   // what is left: triggers, comments, and foreign keys where the engine adds them to a table that is there
};

/// How far a table has come that was made in parts.
enum class TTableStage : int {
  Made = 0,     // it waits for its indexes, and then for the rest
  Indexed = 1,  // it waits for the rest
  Complete = 2,
};

/// What the structures of one database say of tables.
class TDicTable {
 public:
  virtual ~TDicTable() = default;

  /// Name: in any case. False when no structure describes such a table. Raises EDSPError for a structure that is none
  /// of a table.
  virtual bool GetTableInfo(const std::string& TableName, TDicTableDescription& Description) = 0;
};

/// The data dictionary: tables from structures. Databases are named; an empty name is the application's default
/// database. Errors of databases are EDatabaseError.
class TDictionary {
 public:
  virtual ~TDictionary() = default;

  /// Owned by the dictionary.
  virtual TDicTable& GetDicTable(const std::string& DatabaseName) = 0;
  /// The pattern by which a table is made: the structure of type 75 that PATTERNLINKTOTABLE links to it, else the one
  /// that the configuration names for the database; empty: the engine's own.
  virtual std::string GetPatternName(const std::string& TableName, const std::string& DatabaseName) = 0;
  /// Its text.
  virtual std::string GetCreateTablePatternString(const std::string& PatternName, const std::string& DatabaseName) = 0;
  /// Makes the part under the description's name; behind all of it comes StoreWords. What the engine has no words for
  /// is an error, unless the host allows it. Replace: a table of that name is dropped first, and stays when the new one
  /// cannot be made; without it, an error where the part is the table itself.
  virtual void CreateTableByDef(const std::string& DatabaseName, const TDicTableDescription& Description,
                                const std::string& Pattern, TTableScriptPart Part, bool Replace) = 0;
  /// The structures of tables that are made learn how the engine itself says what they had no words of its own for: of
  /// all these in one transaction, or of none. Names in any case; one without a structure, or without a table, is
  /// passed over. Raises EDatabaseError, and EDSPError for a structure that is none of a table.
  virtual void StoreWords(const std::string& DatabaseName, const std::vector<std::string>& TableNames) = 0;
  /// Makes the indexes of a table that was made without them.
  virtual void CreateIndexesByDef(const std::string& DatabaseName, const TDicTableDescription& Description) = 0;
  /// How far a table has come whose parts are committed one by one, as the database remembers it, so that a later run
  /// can complete what an earlier one has left; Complete for every other table.
  virtual TTableStage StageOf(const std::string& DatabaseName, const std::string& TableName) = 0;
  virtual void SetStage(const std::string& DatabaseName, const std::string& TableName, TTableStage Stage) = 0;
  /// Removes the table of the description's name from the database; its structure stays.
  virtual void DropTable(const std::string& DatabaseName, const TDicTableDescription& Description) = 0;
};

/// The installed data dictionary. Raises EAccessViolation when there is none.
TDictionary& Dictionary();
bool HasDictionary();
/// Installs one for the process, borrowed, or none when null; returns the one before. TServiceGuard undoes it.
TDictionary* InstallService(TDictionary* Service);

}  // namespace velkrund

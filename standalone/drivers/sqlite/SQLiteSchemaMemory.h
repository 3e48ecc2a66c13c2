#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "standalone/drivers/Schema.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"

struct sqlite3;

namespace velkrund {

/// What is known of a table by the engine's list of tables.
struct TSQLiteListedTable {
  std::string Name, Type;  // "table", "view", "virtual", "shadow"
  bool Strict = false, WithoutRowId = false;
};

/// What was read of the schema, as long as the engine's own number of the schema stays the same: asked for table by
/// table, it would be read as often as there are tables.
class TSQLiteSchemaMemory {
 public:
  /// Outlived by Database.
  explicit TSQLiteSchemaMemory(sqlite3* Database) : FDatabase(Database) {}

  struct TContent {
    std::vector<TSQLiteListedTable> Tables;                 // by name
    std::map<std::string, TTableDescription> Descriptions;  // of those that were asked for
    std::optional<std::vector<TTrigger>> Triggers = {};
  };
  /// Of the schema as it is now. Raises EDatabaseError.
  TContent& Now();
  /// Null when there is none of exactly that name.
  const TSQLiteListedTable* Find(std::string_view Name);
  /// A statement that is asked again and again, prepared once. Text: a literal. What: how an error message begins.
  class TAsked {
   public:
    TAsked(TSQLiteStatement& Statement, std::string What) : FStatement(Statement.Again(std::move(What))) {}
    TAsked(const TAsked&) = delete;
    TAsked& operator=(const TAsked&) = delete;
    ~TAsked() { FStatement.Reset(); }
    TSQLiteStatement* operator->() { return &FStatement; }

   private:
    TSQLiteStatement& FStatement;
  };
  TAsked Ask(const char* Text, std::string What);
  /// After a roll back the number can come again for another schema.
  void Forget() { FContent.reset(); }

 private:
  std::string What() const;

  sqlite3* FDatabase;
  std::map<const char*, TSQLiteStatement> FStatements;  // by the addresses of their texts
  std::int64_t FVersion = 0;
  std::optional<TContent> FContent;
};

}  // namespace velkrund

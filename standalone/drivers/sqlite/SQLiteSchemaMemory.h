#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/drivers/Schema.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"

namespace velkrund {

/// What is known of a table by the engine's list of tables.
struct TSQLiteListedTable {
  std::string Name, Type;  // "table", "view", "virtual", "shadow"
  bool Strict = false, WithoutRowId = false;
};

/// What the engine keeps of a table, a view, or of what is on them.
struct TSQLiteKeptItem {
  std::string Type, Name, Statement;
};

/// What was read of the schema, as long as the engine's own number of the schema stays the same: asked for table by
/// table, it would be read as often as there are tables. What this connection adds to the schema is added here too, so
/// that making tables does not read all that are there for each of them.
class TSQLiteSchemaMemory {
 public:
  explicit TSQLiteSchemaMemory(const TSQLiteHandle& Database) : FDatabase(Database) {}

  using TKeptItems = std::multimap<std::string, TSQLiteKeptItem>;
  struct TContent {
    std::map<std::string, TSQLiteListedTable, std::less<>> Tables;              // by name
    std::multimap<std::string, const TSQLiteListedTable*, std::less<>> Folded;  // by name in lower case
    std::map<std::string, TTableDescription> Descriptions;                      // of those that were asked for
    bool HasDescribedAll = false;
    std::optional<std::vector<TTrigger>> Triggers = {};  // by the names of their tables
    std::optional<std::vector<TForeignKey>> ForeignKeys = {};
    std::optional<TKeptItems> Kept = {};  // by the table's name in lower case, each in the order of making
    bool HasAskedKept = false;
    std::int64_t LastRow = 0;  // of the engine's table of the schema

    /// Those that go by that name in any case.
    std::vector<const TSQLiteListedTable*> FindInAnyCase(std::string_view Name) const;
    /// The one that the engine itself takes for the table or view of that name; null: none.
    const TSQLiteListedTable* FindAsEngine(std::string_view Name) const;
  };
  /// The engine's number of the schema.
  std::int64_t Version();
  /// Of the schema as it is now. Raises EDatabaseError.
  TContent& Now();
  /// Null when there is none of exactly that name.
  const TSQLiteListedTable* Find(std::string_view Name);
  /// What is kept of the table or view and of what is on it, in the order in which it was made.
  std::vector<TSQLiteKeptItem> Kept(const std::string& Table);
  /// A statement that is asked again and again, prepared once. Text: a literal. What: how an error message begins.
  class TAsked {
   public:
    TAsked(TSQLiteStatement& Statement, std::string What) : FStatement(Statement.Again(std::move(What))) {}
    TAsked(const TAsked&) = delete;
    TAsked& operator=(const TAsked&) = delete;
    ~TAsked() { FStatement.Reset(); }
    TSQLiteStatement* operator->() { return &FStatement; }
    TSQLiteStatement& operator*() { return FStatement; }

   private:
    TSQLiteStatement& FStatement;
  };
  TAsked Ask(const char* Text, std::string What);
  /// After a roll back the number can come again for another schema.
  void Forget() { FContent.reset(); }

  /// Before a statement is run: whether it does nothing to the schema but add a table, an index or a trigger, so that
  /// the rest will be as it is known here.
  bool OnlyAdds(std::string_view Statement);
  /// After such a statement.
  void TakeAdded();

 private:
  std::string What() const;
  void Read(TContent& Content);
  static void AddTable(TContent& Content, TSQLiteListedTable Table);
  void AddItem(const std::string& Table, TSQLiteKeptItem Item);

  const TSQLiteHandle FDatabase;
  std::map<const char*, TSQLiteStatement> FStatements;  // by the addresses of their texts
  std::int64_t FVersion = 0;
  std::optional<TContent> FContent;
};

}  // namespace velkrund

#include "standalone/drivers/sqlite/SQLiteDependents.h"

#include <sqlite3.h>

#include <map>

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"
#include "standalone/drivers/sqlite/SQLiteTokens.h"
#include "standalone/drivers/sqlite/SQLiteTriggerText.h"
#include "standalone/drivers/sqlite/SQLiteWords.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr const char* What = "Cannot look through views and triggers";

/// A setting of the connection that is another one for a while.
class TSetFor {
 public:
  TSetFor(sqlite3* Database, int Setting, bool On) : FDatabase(Database), FSetting(Setting) {
    sqlite3_db_config(Database, Setting, -1, &FBefore);
    sqlite3_db_config(Database, Setting, On ? 1 : 0, nullptr);
  }
  TSetFor(const TSetFor&) = delete;
  TSetFor& operator=(const TSetFor&) = delete;
  ~TSetFor() { sqlite3_db_config(FDatabase, FSetting, FBefore, nullptr); }

 private:
  sqlite3* FDatabase;
  const int FSetting;
  int FBefore = 0;
};

/// Why the engine does not understand a statement. What else can be wrong raises EDatabaseError.
std::string ReasonAgainst(sqlite3* Database, const std::string& Statement) {
  sqlite3_stmt* Prepared = nullptr;
  const int Code = sqlite3_prepare_v3(Database, Statement.c_str(), -1, 0, &Prepared, nullptr);
  sqlite3_finalize(Prepared);
  if (Code == SQLITE_OK) return {};
  if ((Code & 0xFF) != SQLITE_ERROR) RaiseSQLiteError(Database, What, {.Statement = Statement});
  return sqlite3_errmsg(Database);
}

}  // namespace

TSQLiteDependents::TSQLiteDependents(const TSQLiteHandle& Database, const std::string& Name) : FDatabase(Database) {
  Read();
  KeepThoseOf(FoldedSQLiteName(Name));
  for (TDependent& Dependent : FDependents) Dependent.Before = StateOf(Dependent);
}

std::string TSQLiteDependents::TDependent::Shown() const {
  return Format("%s%s '%s'", IsTemporary ? "temporary " : "", IsView ? "view" : "trigger", Name);
}

void TSQLiteDependents::Read() {
  TSQLiteStatement All(FDatabase,
                       "SELECT type = 'view', 0, name, tbl_name, sql FROM main.sqlite_schema WHERE type IN ('view', "
                       "'trigger') UNION ALL SELECT type = 'view', 1, name, tbl_name, sql FROM sqlite_temp_schema "
                       "WHERE type IN ('view', 'trigger')",
                       What);
  while (All.Step()) {
    TDependent& Found = FDependents.emplace_back(
        TDependent{All.Integer(0) != 0, All.Integer(1) != 0, All.Text(2), All.Text(3), All.Text(4), {}, {}});
    for (const TSQLiteToken& Token : SQLiteTokens(Found.Text))
      if (Token.IsName()) {
        Found.Words.insert(FoldedSQLiteName(Token.Name()));
        if (Token.Text.front() == '"') Found.Quoted.insert(FoldedSQLiteName(Token.Name()));
      }
  }
}

/// Name: folded.
void TSQLiteDependents::KeepThoseOf(const std::string& Name) {
  std::set<std::string> Names = {Name};
  std::vector<TDependent> Kept;
  for (bool FoundAny = true; FoundAny;) {
    const std::size_t Before = Kept.size();
    std::vector<TDependent> Others;
    for (TDependent& One : FDependents) {
      const bool IsItself = One.IsView && !One.IsTemporary && FoldedSQLiteName(One.Name) == Name;
      bool NamesOne = false;
      for (const std::string& Known : Names) NamesOne = NamesOne || One.Words.contains(Known);
      if (IsItself) continue;
      (NamesOne ? Kept : Others).push_back(std::move(One));
    }
    FDependents = std::move(Others);
    for (std::size_t I = Before; I < Kept.size(); ++I)
      if (Kept[I].IsView) Names.insert(FoldedSQLiteName(Kept[I].Name));
    FoundAny = Kept.size() > Before;
  }
  FDependents = std::move(Kept);
}

/// For a trigger that fires whatever field changes any of them will do. Computed ones cannot be changed.
std::string TSQLiteDependents::Update(const TDependent& Trigger, const std::string& Table, std::string& Error) const {
  std::string First;
  std::set<std::string> Computed;
  TSQLiteStatement Fields(FDatabase, "SELECT name, hidden FROM pragma_table_xinfo(?1, ?2)", What);
  Fields.BindText(1, Trigger.Table);
  if (!Trigger.IsTemporary) Fields.BindText(2, "main");
  int Code = sqlite3_step(Fields.Handle());
  for (; Code == SQLITE_ROW; Code = sqlite3_step(Fields.Handle())) {
    if (Fields.Integer(1) != 0)
      Computed.insert(FoldedSQLiteName(Fields.Text(0)));
    else if (First.empty())
      First = QuoteStandardName(Fields.Text(0));
  }
  if ((Code & 0xFF) == SQLITE_ERROR)
    Error = sqlite3_errmsg(FDatabase);
  else if (Code != SQLITE_DONE)
    RaiseSQLiteError(FDatabase, What);
  std::string Changes;
  for (const std::string& Field : SQLiteTriggerFields(Trigger.Text))
    if (const std::string Name = QuoteStandardName(Field); !Computed.contains(FoldedSQLiteName(Field)))
      Changes += Format("%s%s = %s", Changes.empty() ? "" : ", ", Name, Name);
  if (Changes.empty()) Changes = Format("%s = %s", First, First);
  return "UPDATE " + Table + " SET " + Changes;
}

/// One that the engine needs the text for. Error: why there is none.
std::string TSQLiteDependents::Statement(const TDependent& Dependent, std::string& Error) const {
  // A trigger of the connection alone may stand on what only it sees.
  const auto Qualified = [&](const std::string& Name) {
    return (Dependent.IsView && Dependent.IsTemporary ? "temp."
            : Dependent.IsTemporary                   ? ""
                                                      : "main.") +
           QuoteStandardName(Name);
  };
  if (Dependent.IsView) return "SELECT * FROM " + Qualified(Dependent.Name);
  const std::string Table = Qualified(Dependent.Table);
  const std::string Event = SQLiteTriggerEvent(Dependent.Text);
  if (Event == "UPDATE") return Update(Dependent, Table, Error);
  return Event == "DELETE" ? "DELETE FROM " + Table : "INSERT INTO " + Table + " DEFAULT VALUES";
}

TSQLiteDependents::TState TSQLiteDependents::StateOf(const TDependent& Dependent) const {
  const TSetFor Triggers(FDatabase, SQLITE_DBCONFIG_ENABLE_TRIGGER, true);
  TState Result;
  Result.Asked = Statement(Dependent, Result.Error);
  if (!Result.Error.empty()) return Result;
  Result.Error = ReasonAgainst(FDatabase, Result.Asked);
  const TSetFor Quotes(FDatabase, SQLITE_DBCONFIG_DQS_DML, false);
  Result.StrictError = ReasonAgainst(FDatabase, Result.Asked);
  return Result;
}

/// Why one that worked does not, or not as it did; empty: it does.
std::string TSQLiteDependents::ReasonNow(const TDependent& Dependent, const TState& Now,
                                         const std::set<std::string>& GoneFields) {
  if (!Now.Error.empty()) return Now.Error;
  if (Now.StrictError != Dependent.Before.StrictError) return Now.StrictError;
  if (Now.StrictError.empty()) return {};
  // It has texts between such quotes, and the engine has told of the first one alone.
  for (const std::string& Name : Dependent.Quoted)
    if (GoneFields.contains(Name)) return Format("the engine would take the field \"%s\" for a text", Name);
  return {};
}

TSQLiteDependents::TChanges TSQLiteDependents::Changes(const std::set<std::string>& GoneFields) const {
  TChanges Result;
  // The engine does not tell which of several triggers for the same event it means.
  std::map<std::string, std::string> Shown;  // by what was asked and the reason
  for (const TDependent& Dependent : FDependents) {
    const TState Now = StateOf(Dependent);
    if (!Dependent.Before.Error.empty()) {
      if (!Now.Error.empty()) Result.NotBefore.push_back(Dependent.Shown());
      continue;
    }
    const std::string Reason = ReasonNow(Dependent, Now, GoneFields);
    if (Reason.empty()) continue;
    std::string& Names = Shown[Now.Asked + '\n' + Reason];
    Names = Names.empty() ? Format("%s: %s", Dependent.Shown(), Reason) : Format("%s or %s", Dependent.Shown(), Names);
  }
  for (auto& [Asked, Names] : Shown) Result.Broken.push_back(std::move(Names));
  return Result;
}

}  // namespace velkrund

#include "standalone/drivers/sqlite/SQLiteScriptWriter.h"

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/KeysWithNulls.h"
#include "standalone/drivers/TextLines.h"
#include "standalone/drivers/sqlite/SQLiteDeclarations.h"
#include "standalone/drivers/sqlite/SQLiteTableDefinition.h"
#include "standalone/drivers/sqlite/SQLiteTableScript.h"
#include "standalone/drivers/sqlite/SQLiteWords.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

void AddViewGaps(const TDicViewDescription& View, TScript& Script) {
  const std::string OfView = Format("of view '%s'", View.FullName());
  const auto Add = [&](std::string_view Kind, const std::string& What, const std::string& Why, bool Harmless) {
    Script.Gaps.push_back({std::string(Kind), What + " " + OfView, Why, Harmless});
  };
  if (!View.Schema.empty())
    Add("schemas", Format("the schema '%s'", View.Schema), "SQLite has none; it is a part of the view's name", true);
  if (View.Materialized) Add("views", "the stored rows", "SQLite asks the query of a view every time", true);
  for (const TDicIndex& Index : View.Indexes)
    Add("indexes", Format("the index '%s'", Index.Name), "SQLite has none on views", false);
  const TForeignWords Foreign = ForeignWords(View.Words);
  if (Foreign.Words && !WordsOf(View.Words, "sqlite"))
    for (const auto& [Name, Text] : Foreign.Words->Parts)
      Add("options", Format("%s '%s'", Name, Text), Format("SQLite has no such words of %s's", Foreign.Engine), false);
  if (!View.Comment.empty()) Add("comments", "the comment", "SQLite has none", true);
}

/// The query of a view in the engine's own words, else in another's; empty: there is none.
std::string QueryOf(const TDicViewDescription& View) {
  if (const TDicWords* Own = WordsOf(View.Words, "sqlite"); Own && !Own->Lines.empty()) return JoinedLines(Own->Lines);
  for (const auto& [Engine, Words] : View.Words)
    if (!Words.Lines.empty()) return JoinedLines(Words.Lines);
  return {};
}

TScript Without(std::string_view Kind, std::string_view What, const TDicObjectDescription& Object) {
  return {.Statements = {},
          .Gaps = {{std::string(Kind), Format("the %s '%s'", What, Object.FullName()), "SQLite has none"}}};
}

[[noreturn]] void RaiseMissing(std::string_view What, const TDicObjectDescription& Object) {
  throw EDatabaseError(Format("Cannot drop %s '%s': SQLite has none", What, Object.FullName()));
}

}  // namespace

std::string TSQLiteScriptWriter::TablePattern() const { return "CREATE TABLE {table} ({items}){words}"; }

TScript TSQLiteScriptWriter::Table(const TDicTableDescription& Table, const TTableParts& Parts,
                                   const std::string& Pattern) const {
  TDicTableDescription Own = Table;
  for (TDicKey& Key : Own.Keys) Key = KeyOfEngine(std::move(Key), "sqlite");
  return TSQLiteTableScript(Own).Write(Parts, Pattern);
}

TScript TSQLiteScriptWriter::View(const TDicViewDescription& View, bool) const {
  TScript Result;
  const std::string Name = View.FullName();
  const std::string What = Format("view '%s'", Name);
  const std::string Query = QueryOf(View);
  if (Query.empty()) throw EDatabaseError(Format("Cannot make view '%s': its structure has no text of it", Name));
  AddViewGaps(View, Result);
  std::string Columns;
  for (const std::string& Column : View.Columns) Columns += (Columns.empty() ? "" : ", ") + QuoteStandardName(Column);
  if (!Columns.empty()) Columns = " (" + Columns + ")";
  Result.Statements.push_back({Format("CREATE VIEW %s%s AS %s", QuoteStandardName(Name), Columns, Query), What});
  Result.Makes.push_back(FoldedSQLiteName(Name));
  for (const TDicTrigger& Trigger : View.Triggers) {
    const TDicWords* Own = WordsOf(Trigger.Words, "sqlite");
    if (Own && !Own->Lines.empty())
      Result.Statements.push_back({RenamedTrigger(JoinedLines(Own->Lines), Trigger.Name, Name),
                                   Format("trigger '%s' of view '%s'", Trigger.Name, Name)});
    else
      Result.Gaps.push_back({"triggers", Format("the trigger '%s' of view '%s'", Trigger.Name, Name),
                             Format("its text is %s's alone", ForeignWords(Trigger.Words).Engine)});
  }
  return Result;
}

TScript TSQLiteScriptWriter::Generator(const TDicGeneratorDescription& Generator, std::optional<std::int64_t>) const {
  return Without("generators", "generator", Generator);
}

TScript TSQLiteScriptWriter::Procedure(const TDicProcedureDescription& Procedure, bool) const {
  return Without("procedures", "procedure", Procedure);
}

std::string TSQLiteScriptWriter::DropTable(const TDicObjectDescription& Table) const {
  return "DROP TABLE " + QuoteStandardName(Table.FullName());
}

std::string TSQLiteScriptWriter::DropView(const TDicViewDescription& View) const {
  return "DROP VIEW " + QuoteStandardName(View.FullName());
}

std::string TSQLiteScriptWriter::DropGenerator(const TDicObjectDescription& Generator) const {
  RaiseMissing("generator", Generator);
}

std::string TSQLiteScriptWriter::DropProcedure(const TDicProcedureDescription& Procedure) const {
  RaiseMissing("procedure", Procedure);
}

}  // namespace velkrund

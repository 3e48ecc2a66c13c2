#include "standalone/drivers/sqlite/SQLiteScriptRun.h"

#include <sqlite3.h>

#include <new>

#include "standalone/drivers/TextLines.h"
#include "standalone/drivers/sqlite/SQLiteCursor.h"
#include "standalone/drivers/sqlite/SQLiteExecution.h"
#include "standalone/drivers/sqlite/SQLiteScriptCheck.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

std::string ScriptOf(const TDicProcedureDescription& Procedure) {
  const TDicWords* const Words = WordsOf(Procedure.Words, "sqlite");
  return Words ? JoinedLines(Words->Lines) : std::string();
}

}  // namespace

TSQLiteScriptRun::TSQLiteScriptRun(const TSQLiteDatabase& Database, const TDicProcedureDescription& Procedure,
                                   const TProcedureArguments& Arguments)
    : FDatabase(Database),
      FWhat(Format("Cannot run procedure '%s'", Procedure.FullName())),
      FScript(ScriptOf(Procedure)),
      FRest(FScript),
      FParameters(Procedure.Parameters) {
  for (std::size_t I = 0; I < FParameters.size(); ++I)
    FValues.push_back(Arguments[I] ? *Arguments[I] : DefaultOf(FParameters[I]));
  RunToRows();
}

TKvVariant TSQLiteScriptRun::DefaultOf(const TDicParameter& Parameter) const {
  TKvVariant Result;
  if (!Parameter.Default) return Result;
  try {
    TSQLiteQueryCursor Default(FDatabase, "SELECT " + *Parameter.Default, {});
    TKvVariant Value;
    if (Default.Next()) Default.Read(0, Value);
    Result = Value;  // a copy, since it borrows the engine's bytes
  } catch (const EDatabaseError& Error) {
    throw EDatabaseError(
        Format("%s: the default of its parameter '%s' cannot be computed: %s", FWhat, Parameter.Name, Error.what()),
        Error.Info());
  }
  return Result;
}

/// Runs statements to their ends, up to one that yields rows.
void TSQLiteScriptRun::RunToRows() {
  while (true) {
    FStatement.reset();
    FBinders.clear();
    FStatement = NextSQLiteStatement(FDatabase.Handle(), FRest, FWhat);
    if (!FStatement) return;
    Bind();
    FBefore = sqlite3_total_changes64(FDatabase.Handle());
    const int Count = sqlite3_column_count(FStatement->Handle());
    if (Count == 0) {
      Step();
      continue;
    }
    if (!FColumns.empty())
      throw EDatabaseError(
          Format("%s: several of its statements yield rows, and it can give those of one; the second is: %s", FWhat,
                 Shortened(sqlite3_sql(FStatement->Handle()))));
    for (int Column = 0; Column < Count; ++Column) {
      const char* const Name = sqlite3_column_name(FStatement->Handle(), Column);
      if (!Name) throw std::bad_alloc();  // what the engine means by it
      FColumns.emplace_back(Name);
    }
    return;
  }
}

const TKvVariant& TSQLiteScriptRun::ValueOf(std::string_view Name) const {
  for (std::size_t I = 0; I < FParameters.size(); ++I)
    if (FParameters[I].Name == Name) return FValues[I];
  throw EDatabaseError(Format("%s: a statement of it uses the parameter '%s', which it does not have", FWhat, Name));
}

void TSQLiteScriptRun::Bind() {
  sqlite3_stmt* const Handle = FStatement->Handle();
  for (int Place = 1; Place <= sqlite3_bind_parameter_count(Handle); ++Place) {
    const char* const Name = sqlite3_bind_parameter_name(Handle, Place);
    const TKvVariant& Value = ValueOf(Name ? Name + 1 : "?");
    FBinders.emplace_back(Handle, Place, TSQLiteBinder::TColumn{}, FDatabase.Texts());
    if (const TSQLiteBinder::TRefusal Refusal = FBinders.back().Bind(Value))
      throw EDatabaseError(Format("%s: its parameter '%s': %s", FWhat, Name + 1, Refusal));
  }
}

/// Counts what the statement has changed, at its end.
bool TSQLiteScriptRun::Step() {
  if (FStatement->Step()) return true;
  sqlite3* const Database = FDatabase.Handle();
  // The engine keeps the last count through statements that change no rows.
  if (sqlite3_total_changes64(Database) != FBefore) FChangedRows += sqlite3_changes64(Database);
  return false;
}

bool TSQLiteScriptRun::Next() {
  if (!FStatement) return false;
  if (Step()) return true;
  RunToRows();
  return false;
}

void TSQLiteScriptRun::Read(int Column, TKvVariant& Value) {
  ReadSQLiteCell(sqlite3_column_value(FStatement->Handle(), Column), FDatabase.Texts().Wide, Value);
}

}  // namespace velkrund

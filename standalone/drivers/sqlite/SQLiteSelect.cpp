#include "standalone/drivers/sqlite/SQLiteSelect.h"

#include <sqlite3.h>

#include <algorithm>
#include <new>

#include "standalone/drivers/sqlite/SQLiteCursor.h"
#include "standalone/drivers/sqlite/SQLiteDatabase.h"
#include "standalone/drivers/sqlite/SQLiteScriptCheck.h"
#include "standalone/drivers/sqlite/SQLiteTypes.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

TSQLiteSelectCursor::TSQLiteSelectCursor(const TSQLiteDatabase& Database, const TQueryText& Text,
                                         std::span<const TQueryParameter> Parameters)
    : FFailed(Text.Failed()), FParameters(Parameters.begin(), Parameters.end()), FWide(Database.Texts().Wide) {
  std::string_view Rest = Text.Text();
  FStatement = NextSQLiteStatement(Database.Handle(), Rest, FFailed, TSQLiteStatement::TUse::Often);
  CheckReads(Database.Handle(), Rest);
  Bind(Database.Texts());
  Describe();
}

void TSQLiteSelectCursor::CheckReads(const TSQLiteHandle& Database, std::string_view Rest) const {
  if (!FStatement) throw EDatabaseError(FFailed + ": it is empty");
  if (sqlite3_stmt_readonly(FStatement->Handle()) == 0)
    throw EDatabaseError(FFailed + ": it would write, and a query only reads");
  if (sqlite3_column_count(FStatement->Handle()) == 0) throw EDatabaseError(FFailed + ": it yields no rows");
  if (NextSQLiteStatement(Database, Rest, FFailed, TSQLiteStatement::TUse::Often))
    throw EDatabaseError(FFailed + ": it is more than one statement");
}

void TSQLiteSelectCursor::Bind(const TSQLiteTexts& Texts) {
  const int Places = sqlite3_bind_parameter_count(FStatement->Handle());
  FBinders.reserve(static_cast<std::size_t>(Places));
  for (int Place = 1; Place <= Places; ++Place) {
    const char* const Mark = sqlite3_bind_parameter_name(FStatement->Handle(), Place);
    const std::string_view Name = Mark ? std::string_view(Mark).substr(1) : std::string_view();
    const auto Given = std::find_if(FParameters.begin(), FParameters.end(),
                                    [&](const TQueryParameter& One) { return SameText(One.Name, Name); });
    if (Given == FParameters.end()) throw EDatabaseError(Format("%s: its parameter '%s' has no value", FFailed, Name));
    FBinders.emplace_back(FStatement->Handle(), Place, TSQLiteBinder::TColumn{}, Texts);
    if (const TSQLiteBinder::TRefusal Refusal = FBinders.back().Bind(Given->Value))
      throw EDatabaseError(Format("%s: its parameter '%s': %s", FFailed, Name, Refusal));
  }
}

void TSQLiteSelectCursor::Describe() {
  for (int Column = 0; Column < sqlite3_column_count(FStatement->Handle()); ++Column) {
    const char* const Name = sqlite3_column_name(FStatement->Handle(), Column);
    if (!Name) throw std::bad_alloc();  // what the engine means by it
    const char* const Declared = sqlite3_column_decltype(FStatement->Handle(), Column);
    const std::string DeclaredType = Declared ? Declared : "";
    FColumns.push_back({.Name = Name, .DeclaredType = DeclaredType, .Kind = KindOf(DeclaredType)});
  }
}

void TSQLiteSelectCursor::Read(int Column, TKvVariant& Value) {
  ReadSQLiteCell(sqlite3_column_value(FStatement->Row(), Column), FWide,
                 FColumns[static_cast<std::size_t>(Column)].Kind, FScratch, Value);
}

}  // namespace velkrund

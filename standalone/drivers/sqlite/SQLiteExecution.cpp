#include "standalone/drivers/sqlite/SQLiteExecution.h"

#include <sqlite3.h>

#include "standalone/drivers/sqlite/SQLiteCursor.h"
#include "standalone/drivers/sqlite/SQLiteDatabase.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr const char* What = "Cannot execute a statement";

}  // namespace

TSQLiteExecution::TSQLiteExecution(const TSQLiteDatabase& Database, const std::string& Text,
                                   std::span<const TKvVariant> Parameters)
    : FStatement(Database.Handle(), Text, What, TSQLiteStatement::TUse::Foreign) {
  CheckSingle(Database.Handle(), Text);
  const int Places = sqlite3_bind_parameter_count(Handle());
  if (Places != static_cast<int>(Parameters.size()))
    throw EDatabaseError(
        Format("%s: it takes %d parameters, not %d; statement: %s", What, Places, Parameters.size(), Text));
  FBinders.reserve(Parameters.size());
  for (const TKvVariant& Value : Parameters) {
    const int Place = static_cast<int>(FBinders.size()) + 1;
    FBinders.emplace_back(Handle(), Place, TSQLiteBinder::TColumn{}, Database.Texts());
    if (const TSQLiteBinder::TRefusal Refusal = FBinders.back().Bind(Value))
      throw EDatabaseError(Format("%s, parameter %d: %s", What, Place, Refusal));
  }
}

void TSQLiteExecution::CheckSingle(const TSQLiteHandle& Database, const std::string& Text) const {
  if (!Handle()) throw EDatabaseError(Format("%s: it is empty", What));
  for (std::string_view Rest = FStatement.Rest(); !Rest.empty();) {
    const TSQLiteStatement Next(Database, Rest, What, TSQLiteStatement::TUse::Foreign);
    if (Next.Handle()) throw EDatabaseError(Format("Cannot execute more than one statement at once: %s", Text));
    // The engine reads no further.
    if (Next.Rest().size() == Rest.size()) throw EDatabaseError(Format("%s with a character U+0000 in it", What));
    Rest = Next.Rest();
  }
}

void RunSQLite(const TSQLiteDatabase& Database, const std::string& Text, std::span<const TKvVariant> Parameters) {
  TSQLiteExecution Execution(Database, Text, Parameters);
  while (Execution.Step()) {
  }
}

TSQLiteQueryCursor::TSQLiteQueryCursor(const TSQLiteDatabase& Database, const std::string& Text,
                                       std::span<const TKvVariant> Parameters)
    : FParameters(Parameters.begin(), Parameters.end()),
      FExecution(Database, Text, FParameters),
      FWide(Database.Texts().Wide) {}

int TSQLiteQueryCursor::ColumnCount() const { return sqlite3_column_count(FExecution.Handle()); }

void TSQLiteQueryCursor::Read(int Column, TKvVariant& Value) {
  ReadSQLiteCell(sqlite3_column_value(FExecution.Handle(), Column), FWide, Value);
}

}  // namespace velkrund

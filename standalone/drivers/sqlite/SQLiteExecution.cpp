// The statements half of TSQLiteConnection.

#include <sqlite3.h>

#include <vector>

#include "standalone/drivers/sqlite/SQLiteBinder.h"
#include "standalone/drivers/sqlite/SQLiteConnection.h"
#include "standalone/drivers/sqlite/SQLiteCursor.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr const char* What = "Can not execute a statement";

/// One statement with its parameters, ready to be stepped through.
class TExecution {
 public:
  TExecution(sqlite3* Database, const std::string& Text, std::span<const TKvVariant> Parameters,
             const TSQLiteTexts& Texts)
      : FStatement(Database, Text, What) {
    CheckSingle(Database, Text);
    const int Places = sqlite3_bind_parameter_count(FStatement.Handle());
    if (Places != static_cast<int>(Parameters.size()))
      throw EDatabaseError(
          Format("%s: it takes %d parameters, not %d; statement: %s", What, Places, Parameters.size(), Text));
    FBinders.reserve(Parameters.size());
    for (const TKvVariant& Value : Parameters) {
      const int Place = static_cast<int>(FBinders.size()) + 1;
      FBinders.emplace_back(FStatement.Handle(), Place, TSQLiteBinder::TColumn{}, Texts);
      if (const TSQLiteBinder::TRefusal Refusal = FBinders.back().Bind(Value))
        throw EDatabaseError(Format("%s, parameter %d: %s", What, Place, Refusal));
    }
  }

  TSQLiteStatement& Statement() { return FStatement; }

 private:
  void CheckSingle(sqlite3* Database, const std::string& Text) const {
    if (!FStatement.Handle()) throw EDatabaseError(Format("%s: it is empty", What));
    for (std::string_view Rest = FStatement.Rest(); !Rest.empty();) {
      const TSQLiteStatement Next(Database, Rest, What);
      if (Next.Handle()) throw EDatabaseError(Format("Can not execute more than one statement at once: %s", Text));
      Rest = Next.Rest();
    }
  }

  TSQLiteStatement FStatement;
  std::vector<TSQLiteBinder> FBinders;
};

class TQueryCursor final : public TCursor {
 public:
  TQueryCursor(sqlite3* Database, const std::string& Text, std::span<const TKvVariant> Parameters,
               const TSQLiteTexts& Texts)
      : FParameters(Parameters.begin(), Parameters.end()),
        FExecution(Database, Text, FParameters, Texts),
        FWide(Texts.Wide) {}

  bool Next() override { return FExecution.Statement().Step(); }
  void Read(int Column, TKvVariant& Value) override {
    ReadSQLiteCell(sqlite3_column_value(FExecution.Statement().Handle(), Column), FWide, Value);
  }

 private:
  const std::vector<TKvVariant> FParameters;  // whose bytes the engine is lent
  TExecution FExecution;
  const bool FWide;
};

}  // namespace

std::int64_t TSQLiteConnection::Execute(const std::string& Statement, std::span<const TKvVariant> Parameters) {
  TExecution Execution(FDatabase.get(), Statement, Parameters, FTexts);
  const std::int64_t Before = sqlite3_total_changes(FDatabase.get());
  while (Execution.Statement().Step()) {
  }
  // The engine keeps the last count through statements that change no rows.
  return sqlite3_total_changes(FDatabase.get()) == Before ? 0 : sqlite3_changes64(FDatabase.get());
}

std::unique_ptr<TCursor> TSQLiteConnection::Query(const std::string& Statement,
                                                  std::span<const TKvVariant> Parameters) {
  return std::make_unique<TQueryCursor>(FDatabase.get(), Statement, Parameters, FTexts);
}

}  // namespace velkrund

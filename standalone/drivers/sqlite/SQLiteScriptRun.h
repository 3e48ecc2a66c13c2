#pragma once

#include <list>
#include <memory>
#include <string>
#include <string_view>

#include "standalone/drivers/ProcedureRun.h"
#include "standalone/drivers/sqlite/SQLiteDatabase.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"

namespace velkrund {

/// The statements of a procedure's text, one after the other, each read by the engine when the one before it has ended.
/// One of them may yield rows. Raises EDatabaseError.
class TSQLiteScriptRun final : public TProcedureRun {
 public:
  /// Runs what stands before the rows. Database: borrowed.
  TSQLiteScriptRun(const TSQLiteDatabase& Database, const TDicProcedureDescription& Procedure,
                   const TProcedureArguments& Arguments);

  const std::vector<std::string>& Columns() const override { return FColumns; }
  std::optional<std::int64_t> ChangedRows() const override { return FChangedRows; }
  bool Next() override;
  void Read(int Column, TKvVariant& Value) override;

 private:
  TKvVariant DefaultOf(const TDicParameter& Parameter) const;
  void RunToRows();
  const TKvVariant& ValueOf(std::string_view Name) const;
  void Bind();
  bool Step();

  const TSQLiteDatabase& FDatabase;
  const std::string FWhat;
  const std::string FScript;
  std::string_view FRest;  // of FScript
  const std::vector<TDicParameter> FParameters;
  std::vector<TKvVariant> FValues;  // of the parameters; NULL of those that take none
  std::vector<std::string> FColumns;
  std::int64_t FChangedRows = 0;
  std::int64_t FBefore = 0;                      // changes of the connection, before the statement
  std::list<TSQLiteBinder> FBinders;             // of the statement, outlived by it
  std::unique_ptr<TSQLiteStatement> FStatement;  // null: all have run
};

}  // namespace velkrund

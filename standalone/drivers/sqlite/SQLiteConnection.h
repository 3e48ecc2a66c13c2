#pragma once

#include "standalone/drivers/Driver.h"
#include "standalone/drivers/sqlite/SQLiteDatabase.h"
#include "standalone/drivers/sqlite/SQLiteDefinitionReader.h"
#include "standalone/drivers/sqlite/SQLiteDialect.h"
#include "standalone/drivers/sqlite/SQLiteRowAccess.h"
#include "standalone/drivers/sqlite/SQLiteSchemaReader.h"
#include "standalone/drivers/sqlite/SQLiteScriptWriter.h"

namespace velkrund {

class TSQLiteConnection final : public TConnection {
 public:
  /// As TSQLiteDatabase's.
  TSQLiteConnection(const std::string& Path, const TConnectOptions& Options);

  const TCapabilities& Capabilities() const override { return FCapabilities; }
  std::string EngineName() const override { return "SQLite"; }
  std::string EngineVersion() const override;

  const TDialect& Dialect() const override { return FDialect; }
  TSchemaReader& Schema() override { return FSchema; }
  TDefinitionReader& Definitions() override { return FDefinitions; }
  const TScriptWriter& Scripts() const override { return FScripts; }
  TRowAccess& Rows() override { return FRows; }
  TConnectionTurn* Turn() override { return &FDatabase.Handle().Turn(); }
  TRowCopier* CopierFrom(TConnection& Source) override;

  void Begin(TIsolationLevel Level) override;
  void BeginReading() override;
  void Commit() override;
  void Rollback() override;
  void LockName(std::string_view Name, const std::string& What) override;
  void SetSavepoint(int Number) override;
  void ReleaseSavepoint(int Number) override;
  void RollbackToSavepoint(int Number) override;
  std::unique_ptr<TSafeguards> Safeguards(TLoadNeeds Needs) override;
  std::unique_ptr<TSurroundings> Surroundings(const TTableInfo& Object, TRenamedFields Renamed) override;
  std::int64_t Execute(const std::string& Statement, std::span<const TKvVariant> Parameters) override;
  std::vector<std::string> CheckScript(const std::string& Script) override;
  std::unique_ptr<TProcedureRun> RunProcedure(const TDicProcedureDescription& Procedure,
                                              const TProcedureArguments& Arguments) override;
  void RebuildTextIndex(const TTableInfo& Index) override;
  std::unique_ptr<TCursor> Query(const std::string& Statement, std::span<const TKvVariant> Parameters) override;
  TQueryRows OpenQuery(const TQueryText& Text, std::span<const TQueryParameter> Parameters) override;

 private:
  void RequireTransaction(std::string_view What) const;
  void Run(std::string_view Statement, std::string_view What);
  bool AttachSource(TSQLiteConnection& Source);
  void DetachSource() noexcept;

  TSQLiteDatabase FDatabase;
  const TCapabilities FCapabilities;
  const TSQLiteDialect FDialect;
  const TSQLiteScriptWriter FScripts{};
  TSQLiteSchemaReader FSchema{FDatabase.Handle(), FCapabilities};
  TSQLiteDefinitionReader FDefinitions{FDatabase, FSchema};
  TSQLiteRowAccess FRows{FDatabase, FSchema, FCapabilities.ReadOnly};
  // Of the running transaction.
  const TSQLiteConnection* FSource = nullptr;     // that is attached
  std::unique_ptr<TSQLiteRowAccess> FSourceRows;  // of it
};

}  // namespace velkrund

#pragma once

#include "standalone/drivers/Driver.h"
#include "standalone/drivers/postgresql/PostgreSQLCall.h"
#include "standalone/drivers/postgresql/PostgreSQLDefinitionReader.h"
#include "standalone/drivers/postgresql/PostgreSQLQuery.h"
#include "standalone/drivers/postgresql/PostgreSQLRowAccess.h"
#include "standalone/drivers/postgresql/PostgreSQLSchemaReader.h"
#include "standalone/drivers/postgresql/PostgreSQLScriptWriter.h"
#include "standalone/drivers/postgresql/PostgreSQLSequences.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

class TPostgreSQLConnection final : public TConnection {
 public:
  /// As TPostgreSQLSession's.
  TPostgreSQLConnection(TPostgreSQLAddress Address, const TConnectOptions& Options);

  const TCapabilities& Capabilities() const override { return FCapabilities; }
  std::string EngineName() const override { return "PostgreSQL"; }
  std::string EngineVersion() const override { return FSession.ServerVersion(); }

  const TDialect& Dialect() const override { return FSession.Dialect(); }
  TSchemaReader& Schema() override { return FSchema; }
  TDefinitionReader& Definitions() override { return FDefinitions; }
  const TScriptWriter& Scripts() const override { return FScripts; }
  TRowAccess& Rows() override { return FRows; }

  void Begin(TIsolationLevel Level) override;
  void BeginReading() override { FSession.BeginReading(); }
  void Commit() override;
  void Rollback() override;
  void LockName(std::string_view Name, const std::string& What) override;
  void SetSavepoint(int Number) override;
  void ReleaseSavepoint(int Number) override;
  void RollbackToSavepoint(int Number) override;
  std::unique_ptr<TSafeguards> Safeguards(TLoadNeeds Needs) override;
  std::unique_ptr<TSurroundings> Surroundings(const TTableInfo& Object, TRenamedFields Renamed) override;
  std::unique_ptr<TSurroundings> SurroundingsOfProcedure(const TTableInfo& Procedure) override;
  std::int64_t Execute(const std::string& Statement, std::span<const TKvVariant> Parameters) override;
  std::unique_ptr<TCursor> Query(const std::string& Statement, std::span<const TKvVariant> Parameters) override;
  TQueryRows OpenQuery(const TQueryText& Text, std::span<const TQueryParameter> Parameters) override {
    return OpenPostgreSQLQuery(FSession, Text, Parameters);
  }
  std::unique_ptr<TProcedureRun> RunProcedure(const TDicProcedureDescription& Procedure,
                                              const TProcedureArguments& Arguments) override {
    return CallPostgreSQLRoutine(FSession, Procedure, Arguments);
  }

 private:
  TPostgreSQLSession FSession;
  const TCapabilities FCapabilities;
  TPostgreSQLSchemaReader FSchema{FSession};
  TPostgreSQLDefinitionReader FDefinitions{FSession};
  const TPostgreSQLScriptWriter FScripts;
  TPostgreSQLSequences FSequences;
  TPostgreSQLRowAccess FRows{FSession, FSequences};
};

}  // namespace velkrund

#pragma once

#include <map>
#include <memory>
#include <string>

#include "standalone/databases/StandaloneManager.h"
#include "standalone/dictionary/Generators.h"
#include "standalone/dictionary/Procedures.h"
#include "velkrund/platform/dictionary/DicDatabase.h"

namespace velkrund {

/// The objects of one database that are no tables: by the engine, or, where it has no such objects, in catalogue
/// tables. Each call that changes something is a transaction, or a part of the caller's, that is taken back when it
/// fails. What an engine has no words for is EGap, or noted, as Gaps says. Needs the installed platform for
/// transactions and structures.
class TStandaloneDicDatabase final : public TDicDatabase {
 public:
  /// Both borrowed.
  TStandaloneDicDatabase(TStandaloneManager& Manager, std::string DatabaseName, TGapBook& Gaps)
      : FManager(Manager), FDatabaseName(std::move(DatabaseName)), FGaps(Gaps) {}

  bool GeneratorExist(const std::string& Name) override;
  std::int64_t GeneratorValue(const std::string& Name) override;
  void SetGenerator(const std::string& Name, std::int64_t Step, std::int64_t Value) override;
  void AdvanceGenerator(const std::string& Name, std::int64_t Value) override;
  void CreateGenerator(const std::string& Name, std::optional<std::int64_t> StartValue, bool Replace) override;
  void DropGenerator(const std::string& Name) override;

  bool ViewExist(const std::string& Name) override;
  /// A view whose text is another engine's alone is tried in any case. Where it is refused that is EGap of the kind
  /// "views", whether that is allowed or not.
  void CreateView(const std::string& Name, bool Replace, bool Verify) override;
  void DropView(const std::string& Name) override;

  bool ExecStoredProcExist(const std::string& Name) override { return HasProcedure(Name, false); }
  bool SelectStoredProcExist(const std::string& Name) override { return HasProcedure(Name, true); }
  /// The same for procedures, with the kind "procedures".
  void CreateExecStoredProc(const std::string& Name, bool Replace) override { CreateProcedure(Name, false, Replace); }
  void CreateSelectStoredProc(const std::string& Name, bool Replace) override { CreateProcedure(Name, true, Replace); }
  void DropStoredProc(const std::string& Name) override;

  // For whoever describes what is there.
  std::unique_ptr<TGenerators> Generators() { return GeneratorsOf(Connection(), FGaps); }
  std::unique_ptr<TProcedures> Procedures() { return ProceduresOf(Connection(), FGaps); }

 private:
  TDicGeneratorDescription NewGenerator(const std::string& Name);
  TConnection& Connection() { return FManager.Databases().Connection(FDatabaseName); }
  std::string_view Engine() { return Connection().Scripts().Engine(); }
  TDicGeneratorDescription ExistingGenerator(const std::string& Name);
  void MakeView(const TDicViewDescription& View, bool Replace, bool Verify);
  void ReplaceView(const TDicViewDescription& View, const TTableInfo& There, bool Verify);
  std::optional<TTableInfo> FindView(const std::string& Name);
  TTableInfo ExistingView(const std::string& Name);
  bool HasProcedure(const std::string& Name, bool Selects);
  void ReplaceProcedure(TProcedures& Kept, const TDicProcedureDescription& There,
                        const TDicProcedureDescription& Procedure);
  void CreateProcedure(const std::string& Name, bool Selects, bool Replace);
  void Trace(const TSurroundings& Around);

  TStandaloneManager& FManager;
  const std::string FDatabaseName;
  TGapBook& FGaps;
};

/// Those of all databases of an application.
class TStandaloneDicDatabases final : public TDicDBContainer {
 public:
  /// Both borrowed.
  TStandaloneDicDatabases(TStandaloneManager& Manager, TGapBook& Gaps) : FManager(Manager), FGaps(Gaps) {}

  TStandaloneDicDatabase& Database(const std::string& DatabaseName) override;

 private:
  TStandaloneManager& FManager;
  TGapBook& FGaps;
  std::map<std::string, std::unique_ptr<TStandaloneDicDatabase>> FDatabases;  // by the name that was asked for
};

}  // namespace velkrund

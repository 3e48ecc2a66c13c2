#pragma once

#include <initializer_list>

#include "standalone/dictionary/Generators.h"
#include "standalone/dictionary/Procedures.h"

namespace velkrund {

/// The object of one of the kinds that has the name, the exact one first, else ignoring case; nothing when there is
/// none. Several that differ in case only are an EDatabaseError that names them.
std::optional<TDefinedObject> FindObject(TConnection& Connection, std::initializer_list<TDefinedKind> Kinds,
                                         const std::string& Name);

/// Generators that the engine keeps by itself. Borrows both.
class TEngineGenerators final : public TGenerators {
 public:
  TEngineGenerators(TConnection& Connection, TGapBook& Gaps) : FConnection(Connection), FGaps(Gaps) {}

  std::vector<TDicGeneratorDescription> List() override;
  std::optional<TDicGeneratorDescription> Find(const std::string& Name) override;
  void Create(const TDicGeneratorDescription& Generator, std::optional<std::int64_t> Start) override;
  void Alter(const TDicGeneratorDescription& There, const TDicGeneratorDescription& Generator,
             std::optional<std::int64_t> Start) override;
  std::int64_t Value(const TDicGeneratorDescription& Generator) override;
  void SetValue(const TDicGeneratorDescription& Generator, std::int64_t Value) override;
  void Drop(const TDicGeneratorDescription& Generator) override;

 private:
  TConnection& FConnection;
  TGapBook& FGaps;
};

/// Procedures that the engine keeps by itself. Borrows both.
class TEngineProcedures final : public TProcedures {
 public:
  TEngineProcedures(TConnection& Connection, TGapBook& Gaps) : FConnection(Connection), FGaps(Gaps) {}

  std::vector<TDicProcedureDescription> List() override;
  std::optional<TDicProcedureDescription> Find(const std::string& Name) override;
  void Create(const TDicProcedureDescription& Procedure) override;
  void Redefine(const TDicProcedureDescription& Procedure) override;
  std::unique_ptr<TSurroundings> Surroundings(const TDicProcedureDescription& Procedure) override;
  void Drop(const TDicProcedureDescription& Procedure) override;
  std::unique_ptr<TProcedureRun> Run(const TDicProcedureDescription& Procedure,
                                     const TProcedureArguments& Arguments) override {
    return FConnection.RunProcedure(Procedure, Arguments);
  }

 private:
  TConnection& FConnection;
  TGapBook& FGaps;
};

}  // namespace velkrund

#pragma once

#include <memory>

#include "standalone/dictionary/Procedures.h"

namespace velkrund {

/// Procedures of an engine that has none, in the catalogue table velkrund_procedures: scripts of statements with named
/// parameters (:NAME). Borrows the connection.
class TCatalogueProcedures final : public TProcedures {
 public:
  explicit TCatalogueProcedures(TConnection& Connection) : FConnection(Connection) {}

  std::vector<TDicProcedureDescription> List() override;
  std::optional<TDicProcedureDescription> Find(const std::string& Name) override;
  /// The engine reads every statement of the engine's own text, else of another engine's; raises EDatabaseError for
  /// what it does not understand, and for parameters that the description does not have.
  void Create(const TDicProcedureDescription& Procedure) override;
  void Redefine(const TDicProcedureDescription& Procedure) override;
  /// Nothing stands around them.
  std::unique_ptr<TSurroundings> Surroundings(const TDicProcedureDescription&) override { return nullptr; }
  void Drop(const TDicProcedureDescription& Procedure) override;
  std::unique_ptr<TProcedureRun> Run(const TDicProcedureDescription& Procedure,
                                     const TProcedureArguments& Arguments) override {
    return FConnection.RunProcedure(Procedure, Arguments);
  }

 private:
  std::unique_ptr<TCursor> Select(const std::string* Key);
  TDicProcedureDescription TakeDescription(TCursor& Rows) const;
  void CheckParameters(const TDicProcedureDescription& Procedure, const std::string& Body);

  TConnection& FConnection;
};

}  // namespace velkrund

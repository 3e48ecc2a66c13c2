#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "standalone/dictionary/ScriptRun.h"

namespace velkrund {

/// The procedures of one database, wherever they are kept: by the engine, or in a catalogue table. Names are found
/// ignoring case, the exact one first. What changes something runs in the caller's transaction. Raises EDatabaseError.
class TProcedures {
 public:
  TProcedures() = default;
  TProcedures(const TProcedures&) = delete;
  TProcedures& operator=(const TProcedures&) = delete;
  virtual ~TProcedures() = default;

  virtual std::vector<TDicProcedureDescription> List() = 0;
  /// Of either kind.
  virtual std::optional<TDicProcedureDescription> Find(const std::string& Name) = 0;
  /// To be called for one that does not exist.
  virtual void Create(const TDicProcedureDescription& Procedure) = 0;
  /// To be called for one that exists, under its name, and of the same kind: what hangs on it stays. EDatabaseError
  /// where that cannot be; a part of a transaction around it then has to be rolled back.
  virtual void Redefine(const TDicProcedureDescription& Procedure) = 0;
  /// Of one that Find has found. Null: dropping it takes nothing with it.
  virtual std::unique_ptr<TSurroundings> Surroundings(const TDicProcedureDescription& Procedure) = 0;
  /// Procedure: as Find has found it.
  virtual void Drop(const TDicProcedureDescription& Procedure) = 0;
  /// Procedure: as Find has found it. Arguments: as ArgumentsOf makes them.
  virtual std::unique_ptr<TProcedureRun> Run(const TDicProcedureDescription& Procedure,
                                             const TProcedureArguments& Arguments) = 0;
};

/// Both borrowed.
std::unique_ptr<TProcedures> ProceduresOf(TConnection& Connection, TGapBook& Gaps);

}  // namespace velkrund

#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "standalone/drivers/ConnectionTurn.h"
#include "standalone/drivers/Cursor.h"
#include "standalone/drivers/Definitions.h"
#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/ProcedureRun.h"
#include "standalone/drivers/QueryText.h"
#include "standalone/drivers/RowAccess.h"
#include "standalone/drivers/Safeguards.h"
#include "standalone/drivers/SchemaReader.h"
#include "standalone/drivers/ScriptWriter.h"
#include "standalone/drivers/Surroundings.h"
#include "velkrund/platform/database/ApplicationManager.h"

namespace velkrund {

/// What an engine, reached by one connection, can do. Whoever depends on one of these asks here; no operation of a
/// driver answers "not implemented".
struct TCapabilities {
  bool ReadOnly = false;             // nothing can be written through this connection
  bool TransactionalSchema = false;  // CREATE, ALTER and DROP are undone by a roll back
  bool MixedKinds = false;           // a cell may be of another kind than its column
  bool NotANumber = false;           // floating columns hold NaN
  bool NegativeZero = false;         // floating columns tell -0.0 from 0.0
  bool NulInText = false;            // texts hold the character U+0000
  bool HalfCharacters = false;       // texts hold lone surrogates
  bool Threads = false;              // several connections can be used at once, by a thread each
  bool LocksTables = false;          // what a transaction has read stays locked until its end, each for itself
  bool TableSizes = false;           // TableBytes has answers
  bool Generators = false;           // CREATE SEQUENCE and its like
  bool Procedures = false;           // CREATE FUNCTION and its like
  bool RedefinesViews = false;       // CREATE OR REPLACE VIEW, which keeps what hangs on one
  bool EnforcesForeignKeys = false;  // no statement, or no commit, leaves a row that refers to nothing
};

/// One connection to one database. Used by the thread of its caller, who may leave its turn to another; cursors and
/// appenders are freed before it. Raises EDatabaseError with what failed, the engine's own words and code, and the
/// statement where it helps; EAbort where the connection's options told it to stop.
class TConnection {
 public:
  TConnection() = default;
  TConnection(const TConnection&) = delete;
  TConnection& operator=(const TConnection&) = delete;
  virtual ~TConnection() = default;

  virtual const TCapabilities& Capabilities() const = 0;
  virtual std::string EngineName() const = 0;
  virtual std::string EngineVersion() const = 0;

  // The connection's own, as long as it lives.
  virtual const TDialect& Dialect() const = 0;
  virtual TSchemaReader& Schema() = 0;
  virtual TDefinitionReader& Definitions() = 0;
  virtual const TScriptWriter& Scripts() const = 0;
  virtual TRowAccess& Rows() = 0;
  /// For who works ahead with what Rows has opened; the connection's own. Null: nobody does.
  virtual TConnectionTurn* Turn() { return nullptr; }
  /// For rows of Source, which may be this connection, into tables of this one: within a transaction of this one, whose
  /// end it does not outlive. Null: the engine does not reach that database.
  virtual TRowCopier* CopierFrom(TConnection& Source) { return &Source == this ? &Rows() : nullptr; }

  /// Transactions do not nest here, savepoints do. After a failed Commit the caller rolls back; some engines have done
  /// so by then.
  virtual void Begin(TIsolationLevel Level) = 0;
  virtual void Commit() = 0;
  /// Begins a transaction that writes nothing: whatever it reads is of one moment. Ended by Rollback. A cursor may then
  /// refuse every other statement until its end, as it may outside of transactions.
  virtual void BeginReading() = 0;
  /// No error when the engine has already rolled back by itself, or the connection is lost, and the transaction with
  /// it.
  virtual void Rollback() = 0;

  /// Within a transaction that writes: until its end nobody else locks that name, on any connection to the database.
  /// Whoever tries waits, or is refused after the waiting time. What: how an error message begins.
  virtual void LockName(std::string_view Name, const std::string& What) = 0;

  // Marks within the running transaction. Number: from 1, one more than that of the mark before it.
  virtual void SetSavepoint(int Number) = 0;
  virtual void ReleaseSavepoint(int Number) = 0;
  /// Undoes what came after the mark and forgets it. No error when the transaction is gone already, as for Rollback.
  virtual void RollbackToSavepoint(int Number) = 0;

  /// Within a transaction, or before one that they become the first statements of.
  virtual std::unique_ptr<TSafeguards> Safeguards(TLoadNeeds Needs) = 0;

  /// Within a transaction. Object: a table or view that is there. Renamed: of the new one.
  virtual std::unique_ptr<TSurroundings> Surroundings(const TTableInfo& Object, TRenamedFields Renamed) = 0;
  /// The same of a procedure. Of engines that keep procedures alone.
  virtual std::unique_ptr<TSurroundings> SurroundingsOfProcedure(const TTableInfo& /*Procedure*/) { return nullptr; }

  /// Executes one statement and returns how many rows it changed; rows that it yields are dropped. Parameters take the
  /// places that the engine's SQL marks for them, in order.
  virtual std::int64_t Execute(const std::string& Statement, std::span<const TKvVariant> Parameters = {}) = 0;
  /// Parts a script into its statements as the engine does, and has it read each of them; none is run. Returns the
  /// names of the parameters in it, each once. Raises EDatabaseError for what the engine does not understand, and for
  /// statements that begin or end transactions. Of engines that keep no procedures alone.
  virtual std::vector<std::string> CheckScript(const std::string& /*Script*/) { return {}; }
  /// Runs a procedure that the engine keeps, or, where it keeps none, the script that is the text of one, within the
  /// caller's transaction. Texts become what the engine takes the parameter for.
  virtual std::unique_ptr<TProcedureRun> RunProcedure(const TDicProcedureDescription& Procedure,
                                                      const TProcedureArguments& Arguments) = 0;
  /// Makes an index of words (TTableKind::IndexOfTable) anew from the rows of its table, inside the caller's
  /// transaction.
  virtual void RebuildTextIndex(const TTableInfo& /*Index*/) {}
  /// Executes one statement and returns the rows that it yields, whose cells are integers, texts, bytes or NULL. For
  /// answers that fit into memory, where the engine may keep them whole.
  virtual std::unique_ptr<TCursor> Query(const std::string& Statement, std::span<const TKvVariant> Parameters = {}) = 0;
  /// A query of the user's, which is made to change nothing whatever it calls. Its values are what a table's cursor
  /// makes of them. Runs in the caller's transaction, or in one of its own that ends with the cursor. Parameters: those
  /// of the text, each with its value.
  virtual TQueryRows OpenQuery(const TQueryText& Text, std::span<const TQueryParameter> Parameters) = 0;
};

}  // namespace velkrund

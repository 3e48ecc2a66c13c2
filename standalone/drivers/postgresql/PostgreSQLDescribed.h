#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/postgresql/PostgreSQLExpressions.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// A description in the making. While it lives the engine prints names of the current schema alone without a schema:
/// what is described then does not depend on the search path that somebody has set.
class TDescribing {
 public:
  /// Session: borrowed. What begins messages.
  TDescribing(TPostgreSQLSession& Session, std::string What);
  TDescribing(const TDescribing&) = delete;
  TDescribing& operator=(const TDescribing&) = delete;
  ~TDescribing();

  const std::string& What() const { return FWhat; }
  const TPostgreSQLDialect& Dialect() const { return FSession.Dialect(); }
  /// Executes a statement of the driver's own (see CatalogueStatement), which the server keeps under Name: planning it
  /// takes it longer than the answer, and there are thousands of tables.
  TPostgreSQLResult Ask(const std::string& Name, const char* Statement, const std::vector<std::string>& Parameters);

 private:
  void SetPath(const std::string& Path);

  TPostgreSQLSession& FSession;
  const std::string FWhat;
  std::string FPathBefore;
  std::string FKept;  // names of statements, each between commas
};

/// A table or view that is being described.
struct TDescribed {
  TDescribing& Describing;
  std::string Oid;      // in decimal
  std::string Name;     // exact
  std::string SQLName;  // quoted, with its schema unless that is the current one
};

// The parts of a table, each in one question.

/// Columns: as expressions may name them.
std::vector<TDicField> ReadFields(const TDescribed& Table, std::vector<TExpressionColumn>& Columns);
/// Keys, foreign keys and checks, into Result.
void ReadConstraints(const TDescribed& Table, const TPostgreSQLExpressions& Expressions, TDicTableDescription& Result);
std::vector<TDicIndex> ReadIndexes(const TDescribed& Table, const TPostgreSQLExpressions& Expressions);
std::vector<TDicTrigger> ReadTriggers(const TDescribed& Table);

/// As it stands in a catalogue; what is as usual is left out. Highest: of the numbers of its type.
struct TSequenceNumbers {
  std::string Start, Step, Min, Max;
  bool Cycle = false;
};
TDicCounter CounterOf(const TSequenceNumbers& Numbers, std::int64_t Highest);

}  // namespace velkrund

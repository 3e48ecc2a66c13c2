#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/drivers/postgresql/PostgreSQLExpressions.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// What an answer about several tables says of one of them. Rows count from 0 for each.
class TDescribedRows {
 public:
  TDescribedRows() = default;
  TDescribedRows(std::shared_ptr<const TPostgreSQLResult> All, int First) : FAll(std::move(All)), FFirst(First) {}

  void Add() { ++FCount; }
  int RowCount() const { return FCount; }
  std::string_view Text(int Row, int Column) const { return FAll->Text(FFirst + Row, Column); }
  std::string Copy(int Row, int Column) const { return FAll->Copy(FFirst + Row, Column); }
  std::int64_t Integer(int Row, int Column) const { return FAll->Integer(FFirst + Row, Column); }
  bool Boolean(int Row, int Column) const { return FAll->Boolean(FFirst + Row, Column); }

 private:
  std::shared_ptr<const TPostgreSQLResult> FAll;
  int FFirst = 0, FCount = 0;
};

/// A description in the making, or several. While it lives the engine prints names of the current schema alone without
/// a schema: what is described then does not depend on the search path that somebody has set.
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

  /// All that are described, or the next of them, by their oids in decimal.
  void Begin(std::vector<std::string> Oids);
  /// As Ask, but of one of those: what is asked of the first of them is asked of all at once. The statement takes an
  /// array of their oids ($1) before the other parameters; its rows come table by table, with the oid as last column.
  TDescribedRows RowsOf(const std::string& Oid, const std::string& Name, const char* Statement,
                        const std::vector<std::string>& Parameters = {});

 private:
  using TByTable = std::map<std::string, TDescribedRows>;

  TByTable AskAll(const std::string& Name, const char* Statement, const std::vector<std::string>& Parameters);
  void SetPath(const std::string& Path);

  TPostgreSQLSession& FSession;
  const std::string FWhat;
  std::optional<std::string> FPathBefore;  // none: it shows what this one needs
  std::string FKept;                       // names of statements, each between commas
  std::vector<std::string> FOids;
  std::map<std::string, TByTable> FAnswers;  // about those, by the statement's name
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

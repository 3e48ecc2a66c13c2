#include <algorithm>

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/TextLines.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "standalone/drivers/postgresql/PostgreSQLNeutralWords.h"
#include "standalone/drivers/postgresql/PostgreSQLScript.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// Whether the engine has no order of the values of a column, and so no key or index over it.
bool HasNoOrder(const std::vector<TDicField>& Fields, const std::string& Column) {
  const auto Found =
      std::find_if(Fields.begin(), Fields.end(), [&](const TDicField& Field) { return Field.Name == Column; });
  if (Found == Fields.end()) return false;
  const TDicWords* const Own = OwnWords(Found->Words);
  return Own && Own->Text ? *Own->Text == "json" : Found->Type == TDicFieldType::Json;
}

}  // namespace

bool HasNoOrder(const std::vector<TDicField>& Fields, const std::vector<TDicColumn>& Columns) {
  return std::any_of(Columns.begin(), Columns.end(),
                     [&](const TDicColumn& Column) { return !Column.Expression && HasNoOrder(Fields, Column.Name); });
}

std::string BesidePostgreSQLTable(const std::string& Name, std::string_view SQLName) {
  const std::size_t Schema = EndOfPostgreSQLSchema(SQLName);
  return std::string(SQLName.substr(0, Schema)) + QuoteStandardName(Name);
}

void AddIndexes(const std::vector<TDicIndex>& Indexes, const std::vector<TDicField>& Fields, const std::string& SQLName,
                const std::string& Owner, TPostgreSQLScript& Script) {
  for (const TDicIndex& Index : Indexes) {
    CheckPostgreSQLName(Index.Name, "an index of " + Owner);
    const std::string What = Format("index '%s' of %s", Index.Name, Owner);
    if (const TDicWords* Own = OwnWords(Index.Words); Own && Own->Text) {
      Script.Add(NamedInPostgreSQL(OnPostgreSQLTable(*Own->Text, SQLName), "INDEX", QuoteStandardName(Index.Name)),
                 What);
      Script.Statements.back().Kind = "indexes";
      Script.Makes.push_back(BesidePostgreSQLTable(Index.Name, SQLName));
      continue;
    }
    std::string Columns;
    std::string Why;
    bool IsNeutral = OthersText(Index.Words) == nullptr;
    for (const TDicColumn& Column : Index.Columns) {
      if (!IsNeutral) break;
      std::optional<std::string> Words = QuoteStandardName(Column.Name);
      if (Column.Expression) {
        Words = ConditionWords(Column.Name, Fields, std::nullopt);
        Why = OthersValue(Column.Name, Fields, nullptr);
      }
      IsNeutral = Words.has_value() && Why.empty();
      if (!IsNeutral) break;
      if (Column.Expression) Words = "(" + *Words + ")";
      Columns += (Columns.empty() ? "" : ", ") + *Words + (Column.Descending ? " DESC" : "");
    }
    if (HasNoOrder(Fields, Index.Columns)) {
      Script.Lack("indexes", "the " + What, PostgreSQLNoOrder);
    } else if (IsNeutral) {
      Script.Add(Format("CREATE %sINDEX %s ON %s (%s)", Index.Unique ? "UNIQUE " : "", QuoteStandardName(Index.Name),
                        SQLName, Columns),
                 What);
      Script.Statements.back().Kind = "indexes";
      Script.Makes.push_back(BesidePostgreSQLTable(Index.Name, SQLName));
    } else {
      if (Why.empty()) Why = OthersText(Index.Words) ? "its text is another engine's alone" : PostgreSQLNoWords;
      Script.Lack("indexes", "the " + What, Why);
    }
  }
}

void AddTriggers(const std::vector<TDicTrigger>& Triggers, const std::string& SQLName, const std::string& Owner,
                 TPostgreSQLScript& Script) {
  for (const TDicTrigger& Trigger : Triggers) {
    CheckPostgreSQLName(Trigger.Name, "a trigger of " + Owner);
    const std::string What = Format("trigger '%s' of %s", Trigger.Name, Owner);
    const TDicWords* Own = OwnWords(Trigger.Words);
    if (!Own || Own->Lines.empty()) {
      Script.Lack("triggers", "the " + What, "its text is another engine's alone");
      continue;
    }
    const std::string Name = QuoteStandardName(Trigger.Name);
    Script.Add(NamedInPostgreSQL(OnPostgreSQLTable(JoinedLines(Own->Lines), SQLName), "TRIGGER", Name), What);
    Script.Statements.back().Kind = "triggers";
    if (Trigger.Enabled.empty()) continue;
    const char* Words = Trigger.Enabled == "Disabled"  ? "DISABLE"
                        : Trigger.Enabled == "Replica" ? "ENABLE REPLICA"
                        : Trigger.Enabled == "Always"  ? "ENABLE ALWAYS"
                                                       : nullptr;
    if (!Words) throw EDatabaseError(Format("Cannot make %s: its state '%s' is not known", What, Trigger.Enabled));
    Script.Add(Format("ALTER TABLE %s %s TRIGGER %s", SQLName, Words, Name), "state of " + What);
    Script.Statements.back().Kind = "triggers";
  }
}

}  // namespace velkrund

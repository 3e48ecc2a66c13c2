#pragma once

#include <string>
#include <string_view>

#include "standalone/drivers/ScriptWriter.h"

namespace velkrund {

inline constexpr std::string_view PostgreSQLWords = "postgresql";

/// A script in the making.
struct TPostgreSQLScript : TScript {
  void Add(std::string Text, std::string What, std::string Unless = {});
  void Lack(std::string_view Kind, std::string What, std::string Why, bool Harmless = false);
  /// The schema that a quoted name stands in, unless it is there; nothing for a name without one.
  void AddSchemaOf(std::string_view SQLName);
};

/// Behind the point of the schema of a quoted name; 0 where it has none.
std::size_t EndOfPostgreSQLSchema(std::string_view SQLName);
/// Quoted, with its schema unless that is the current one.
std::string PostgreSQLNameOf(const TDicObjectDescription& Object);
/// Quoted names of a list.
std::string PostgreSQLColumns(const std::vector<TDicColumn>& Columns);

/// The engine's own words, or null.
inline const TDicWords* OwnWords(const TDicEngineWords& Words) { return WordsOf(Words, PostgreSQLWords); }
/// What another engine alone says of a part; null when none does.
const std::string* OthersPart(const TDicEngineWords& Words, std::string_view Part);
/// The same of the text.
const std::string* OthersText(const TDicEngineWords& Words);
/// The lines of another engine; null when none has some.
const std::vector<std::string>* OthersLines(const TDicEngineWords& Words);

/// Why a neutral expression has another value on the engine that the fields come from; empty: it has the same, or they
/// have been here. Computed: as of OtherValueOf.
std::string OthersValue(const std::string& Neutral, const std::vector<TDicField>& Fields, const TDicField* Computed);

/// How a counter counts, each word with a blank before it. Raises EDatabaseError for what is no number of 64 bits.
std::string CounterWords(const TDicCounter& Counter, const std::string& What);

/// A field of a table as it stands between the parentheses; into Script what the table needs before and, into After,
/// behind it.
std::string PostgreSQLFieldClause(const TDicTableDescription& Table, const TDicField& Field, TPostgreSQLScript& Script,
                                  TPostgreSQLScript& After);

// Why something has no words here.
inline constexpr const char* PostgreSQLNoOrder = "PostgreSQL has no order of values of the type json";
inline constexpr const char* PostgreSQLNoWords = "PostgreSQL compares no values of such different types";

/// Whether the engine has no order of the values of one of the columns, and so no key or index over them.
bool HasNoOrder(const std::vector<TDicField>& Fields, const std::vector<TDicColumn>& Columns);
/// The name of an index or key, quoted, in the schema of its table. SQLName: the table's.
std::string BesidePostgreSQLTable(const std::string& Name, std::string_view SQLName);

// Of tables and views. Owner: "table 'ORDERS'". Fields: those that expressions name.
void AddIndexes(const std::vector<TDicIndex>& Indexes, const std::vector<TDicField>& Fields, const std::string& SQLName,
                const std::string& Owner, TPostgreSQLScript& Script);
void AddTriggers(const std::vector<TDicTrigger>& Triggers, const std::string& SQLName, const std::string& Owner,
                 TPostgreSQLScript& Script);

void WritePostgreSQLTable(const TDicTableDescription& Table, const TTableParts& Parts, const std::string& Pattern,
                          TPostgreSQLScript& Script);

}  // namespace velkrund

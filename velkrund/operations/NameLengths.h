#pragma once

#include <string>

namespace velkrund {

struct TDicTableDescription;

// Some databases take no names beyond a length. Lengths are counted in UTF-16 units. Databases are named; structures
// are those that the installed DSPContainer has of it. Errors of either are passed on.

/// Whether a structure describes the table.
bool IsTableDescExists(const std::string& TableName, const std::string& DatabaseName);
/// Whether it has a field that the engine numbers by itself: some databases make further names of such a table's.
bool IsTableContainsAutoKey(const std::string& TableName, const std::string& DatabaseName);

/// Limit: the most that every database takes, whether the name is longer or not.
bool IsLongNameTable(const std::string& TableName, const std::string& DatabaseName, int& Limit);
bool IsLongNameTable(const std::string& TableName, const std::string& DatabaseName);
/// The same of a table whose structure may not be stored yet.
bool IsLongNameTable(const TDicTableDescription& Table, int& Limit);
bool IsLongNameView(const std::string& ViewName);

// Where the name is long, ask in a message box; true: the table or view is not to be made. Raise EQuestionUnanswered
// where nobody can answer.
bool AskCancelCreateLongNameTable(const std::string& TableName, const std::string& DatabaseName);
bool AskCancelCreateLongNameTable(const TDicTableDescription& Table);
bool AskCancelCreateLongNameView(const std::string& ViewName);

}  // namespace velkrund

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

/// Raises EDatabaseError for a name that the engine would not keep as it is; What: "the index of table 'T'".
void CheckPostgreSQLName(std::string_view Name, std::string_view What);

/// The name that the engine gives to what has none: of a key, First is its table, Second its columns, Label "key".
/// Either may be cut to make room. Second: empty where it has no place.
std::string GivenPostgreSQLName(std::string_view First, std::string_view Second, std::string_view Label);
/// Several columns, as the second part of such a name.
std::string NamesInName(const std::vector<std::string>& Names);

/// Of a name without quotes.
bool IsNameCharacter(char C);
/// Where the name that starts at From ends, which may be quoted and have a schema before it.
std::size_t EndOfPostgreSQLName(std::string_view Text, std::size_t From = 0);
/// The names of a list with commas.
std::vector<std::string> SplitPostgreSQLNames(std::string_view List);

/// A name, which may be quoted and have a schema before it, as people know it.
std::string PlainPostgreSQLName(std::string_view SQLName);

/// A statement that makes an index or a trigger, with SQLName in place of the table it is made on.
std::string OnPostgreSQLTable(const std::string& Statement, std::string_view SQLName);
/// Such a statement with another name for what is made. Kind: "INDEX" or "TRIGGER".
std::string NamedInPostgreSQL(std::string Statement, std::string_view Kind, std::string_view SQLName);

/// Texts as the text of an array.
std::string PostgreSQLArray(const std::vector<std::string>& Texts);

/// A text between quotes.
std::string QuotePostgreSQLText(std::string_view Text);

}  // namespace velkrund

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

/// A column of an index as CREATE INDEX has it.
struct TSQLiteIndexedColumn {
  std::string Text;  // a name without its quotes, or an expression
  bool IsName = false;
  std::string Collate = {};
  bool Descending = false;
};

struct TSQLiteIndexDeclaration {
  bool Unique = false;
  std::vector<TSQLiteIndexedColumn> Columns = {};
  bool Partial = false;  // with WHERE
};

struct TSQLiteViewDeclaration {
  std::vector<std::string> Columns;  // only where they are declared
  std::string Query;                 // from SELECT on
};

// Statements as the engine keeps them. Raise EDatabaseError naming the object when they are not understood.

TSQLiteIndexDeclaration ReadIndexDeclaration(std::string_view Statement, std::string_view IndexName);
TSQLiteViewDeclaration ReadViewDeclaration(std::string_view Statement, std::string_view ViewName);

/// The same index or trigger under that name, on that table or view. What is inside of a trigger stays.
std::string RenamedIndex(std::string_view Statement, std::string_view Name, std::string_view Table);
std::string RenamedTrigger(std::string_view Statement, std::string_view Name, std::string_view Table);

}  // namespace velkrund

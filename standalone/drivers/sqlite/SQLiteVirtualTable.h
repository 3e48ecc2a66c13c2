#pragma once

#include <string>
#include <string_view>

#include "standalone/drivers/Schema.h"

namespace velkrund {

/// A virtual table as its declaration has it. Rows can be moved of those that keep them in the database itself: texts
/// with the words to search for (modules fts3, fts4, fts5) and boxes (rtree).
struct TSQLiteVirtualTable {
  TTableKind Kind = TTableKind::Computed;
  std::string Using;           // the declaration from USING on
  std::string Source;          // of an index of words: the table or view that has the texts
  std::string LanguageColumn;  // a hidden column that belongs to the rows; empty: none
  bool HasRowNumbers = false;  // rows go by a number that no column shows; otherwise, if they move, by the first column
};

/// Declaration: CREATE VIRTUAL TABLE name USING module(arguments), as the engine keeps it.
TSQLiteVirtualTable ReadVirtualTable(std::string_view Declaration);

}  // namespace velkrund

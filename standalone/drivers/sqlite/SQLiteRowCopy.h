#pragma once

#include <span>
#include <string>

#include "standalone/drivers/RowAccess.h"

namespace velkrund {

/// One end of a copy within the database: what the engine knows of it beyond its description.
struct TSQLiteCopiedTable {
  const TTableDescription& Description;  // borrowed
  bool Strict = false, WithoutRowId = false;
  int RowNumberColumn = -1;  // index of the column that stands for the row number; -1: none
};

/// Whether the engine stores of each value just what is read of it. Both are plain tables, in a database of UTF-8.
bool SQLiteCopiesExactly(const TSQLiteCopiedTable& Source, const TSQLiteCopiedTable& Target,
                         std::span<const TColumnPair> Pairs);

/// KeepsNumbers: rows keep the numbers by which they go, where neither table shows these as a column.
std::string SQLiteCopyStatement(const TSQLiteCopiedTable& Source, const TSQLiteCopiedTable& Target,
                                std::span<const TColumnPair> Pairs, bool KeepsNumbers);

}  // namespace velkrund

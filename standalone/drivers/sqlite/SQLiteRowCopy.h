#pragma once

#include <span>
#include <string>

#include "standalone/drivers/RowAccess.h"

namespace velkrund {

/// One end of a copy within the database: what the engine knows of it beyond its description.
struct TSQLiteCopiedTable {
  const TTableDescription& Description;  // borrowed
  const char* Database;                  // the name by which the connection has it: "main"
  bool Strict = false, WithoutRowId = false;
  int RowNumberColumn = -1;  // index of the column that stands for the row number; -1: none
};

/// Whether the engine stores of each value just what is read of it. Both are plain tables, in a database of UTF-8.
bool SQLiteCopiesExactly(const TSQLiteCopiedTable& Source, const TSQLiteCopiedTable& Target,
                         std::span<const TColumnPair> Pairs);

/// Whether all columns go into those in the same place, so that the engine may move records as they are.
bool SQLiteCopiesWhole(const TSQLiteCopiedTable& Source, const TSQLiteCopiedTable& Target,
                       std::span<const TColumnPair> Pairs);
/// For these. What the engine does not move so it gives new numbers, where the target does not show them as a column.
std::string SQLiteWholeCopyStatement(const TSQLiteCopiedTable& Source, const TSQLiteCopiedTable& Target);

/// KeepsNumbers: rows keep the numbers by which they go, where neither table shows these as a column.
std::string SQLiteCopyStatement(const TSQLiteCopiedTable& Source, const TSQLiteCopiedTable& Target,
                                std::span<const TColumnPair> Pairs, bool KeepsNumbers);

}  // namespace velkrund

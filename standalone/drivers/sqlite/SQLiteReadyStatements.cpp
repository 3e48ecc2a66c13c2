#include "standalone/drivers/sqlite/SQLiteReadyStatements.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

constexpr std::size_t MostKept = 64;
/// Longer ones hold values, and do not come again.
constexpr std::size_t LongestKept = 1000;

/// Others do what they do, in part, while they are being prepared.
bool IsOfAKindToKeep(std::string_view Text) {
  constexpr std::array<std::string_view, 6> Words = {"SELECT ", "INSERT ",    "UPDATE ",
                                                     "DELETE ", "SAVEPOINT ", "RELEASE "};
  return std::any_of(Words.begin(), Words.end(),
                     [&](std::string_view Word) { return SameAsciiWord(Text.substr(0, Word.size()), Word); });
}

}  // namespace

sqlite3_stmt* TSQLiteReadyStatements::Take(std::string_view Text) {
  const auto Found = FReady.find(Text);
  if (Found == FReady.end()) return nullptr;
  sqlite3_stmt* const Result = Found->second;
  FReady.erase(Found);
  return Result;
}

void TSQLiteReadyStatements::Give(sqlite3_stmt* Statement) {
  const char* const Text = sqlite3_sql(Statement);
  const bool Stays = Text && !FIsClosed && std::string_view(Text).size() <= LongestKept && IsOfAKindToKeep(Text) &&
                     !FReady.contains(Text);
  if (!Stays) {
    sqlite3_finalize(Statement);
    return;
  }
  if (FReady.size() == MostKept) Clear();
  sqlite3_reset(Statement);
  // What was lent to it is its owner's again.
  sqlite3_clear_bindings(Statement);
  FReady.emplace(Text, Statement);
}

void TSQLiteReadyStatements::Clear() {
  for (const auto& [Text, Statement] : FReady) sqlite3_finalize(Statement);
  FReady.clear();
}

}  // namespace velkrund

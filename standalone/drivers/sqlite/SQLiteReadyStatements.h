#pragma once

#include <string_view>
#include <unordered_map>

struct sqlite3_stmt;

namespace velkrund {

/// Statements of a connection that may come again, kept as the engine has prepared them, which takes it longer than to
/// run a small one. The engine prepares them anew by itself when the schema has changed. Of one text there is one; who
/// has taken it is the only one to use it.
class TSQLiteReadyStatements {
 public:
  TSQLiteReadyStatements() = default;
  TSQLiteReadyStatements(const TSQLiteReadyStatements&) = delete;
  TSQLiteReadyStatements& operator=(const TSQLiteReadyStatements&) = delete;
  ~TSQLiteReadyStatements() { Clear(); }

  /// Null: there is none, or somebody is using it.
  sqlite3_stmt* Take(std::string_view Text);
  /// Keeps a statement that is all of its text, or finalises it.
  void Give(sqlite3_stmt* Statement);
  /// Before the connection is closed, after which nothing is kept.
  void Close() { Clear(), FIsClosed = true; }

 private:
  void Clear();

  std::unordered_map<std::string_view, sqlite3_stmt*> FReady;  // by the texts that the statements themselves have
  bool FIsClosed = false;
};

}  // namespace velkrund

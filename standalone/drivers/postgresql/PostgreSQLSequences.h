#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "standalone/drivers/postgresql/PostgreSQLEncoder.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

/// Sequences that give columns their defaults, whoever owns them, moved behind the keys that were written: the highest,
/// the lowest where a sequence counts down, of all columns that share one; onwards only. A roll back does not undo it,
/// so it is the last thing before a commit.
class TPostgreSQLSequences {
 public:
  using TWarning = std::function<void(const std::string& Text)>;

  /// Session: borrowed. Warning: told of those that stay where they are although keys are beyond them.
  TPostgreSQLSequences(TPostgreSQLSession& Session, TWarning Warning)
      : FSession(Session), FWarning(std::move(Warning)) {}

  /// Rows were written. TableOid: in decimal. Names and Encoders: of their columns.
  void Note(const std::string& TableOid, const std::vector<std::string>& Names,
            const std::vector<TPostgreSQLEncoder>& Encoders);
  /// The same for rows whose values nobody has seen.
  void Note(const std::string& TableOid, const std::vector<std::string>& Names);
  void Move();

  // As the session's.
  void SetSavepoint(int Number);
  void ReleaseSavepoint(int Number);
  void RollbackToSavepoint(int Number);
  void Rollback();

 private:
  struct TWritten {
    std::string TableOid, Column;
    std::optional<std::int64_t> Highest, Lowest;  // nothing: not known, or no integers
  };
  struct TSequence {
    std::string Name, Columns;
    bool Upwards, CanRead, CanSet;
    std::int64_t Min, Max;
    std::optional<std::int64_t> Furthest;
  };

  using TColumns = std::multimap<std::pair<std::string_view, std::string_view>, const TWritten*>;

  std::string Tables() const;
  TColumns ByColumn() const;
  void TellHidden(const std::string& Tables) const;
  std::map<std::string, TSequence> Find(const std::string& Tables) const;
  std::optional<std::int64_t> FurthestOf(const TPostgreSQLResult& Rows, int Row, bool Upwards) const;
  void MoveOne(const TSequence& Sequence) const;
  void Stays(const TSequence& Sequence, const std::string& Why) const;

  TPostgreSQLSession& FSession;
  const TWarning FWarning;
  std::vector<TWritten> FWritten;
  std::vector<std::size_t> FMarks;  // how many of them there were at each savepoint
};

}  // namespace velkrund

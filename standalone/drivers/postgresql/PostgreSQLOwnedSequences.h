#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

class TPostgreSQLGrants;
class TPostgreSQLSession;

/// The sequences that belong to columns of a table which is made anew: those of identity columns are dropped with it
/// and hand their place on, all others wait under another name, so that the new table can make one of theirs.
class TPostgreSQLOwnedSequences {
 public:
  /// Of the table with the number Oid. Session: borrowed.
  TPostgreSQLOwnedSequences(TPostgreSQLSession& Session, std::string_view What, const std::string& Oid);

  void SetAside(std::string_view What);
  /// Those of columns for which the new table has made none come back, those of columns that are gone go. Oid: the new
  /// table's, which has its owner already. Grants learn the names of those that take the place of others.
  void PutBack(const std::string& Oid, const std::string& Table, TPostgreSQLGrants& Grants);

 private:
  /// Of either table. Names are as SQL has them.
  struct TSequence {
    std::string Oid, Schema, Name, Column;
    bool IsIdentity = false, IsUnlogged = false;
    std::string Comment, Owner;
    std::string Last = {};  // of those that were there before
    bool IsCalled = false;

    std::string FullName() const { return Schema + "." + Name; }
    std::string AsideName() const { return "velkrund_" + Oid; }
  };

  std::vector<TSequence> Read(std::string_view What, const std::string& Oid) const;
  void HandOn(const TSequence& Owned, const TSequence& Made, TPostgreSQLGrants& Grants) const;
  void Return(const TSequence& Owned, const std::string& Oid, const std::string& Table) const;

  TPostgreSQLSession& FSession;
  std::vector<TSequence> FOwned;
};

}  // namespace velkrund

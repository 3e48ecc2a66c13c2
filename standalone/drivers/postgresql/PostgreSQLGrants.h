#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace velkrund {

class TPostgreSQLSession;

/// The rights on what is dropped with a table or view, on its columns and on those of its sequences; with the engine's
/// own schema alone on the search path.
class TPostgreSQLGrants {
 public:
  /// Of the table or view with the number Oid. Session: borrowed.
  TPostgreSQLGrants(TPostgreSQLSession& Session, std::string_view What, const std::string& Oid);

  /// A sequence has another name now.
  void Rename(const std::string& Before, const std::string& After);
  /// Makes the rights on what is there again what they were, by whom and with what options. Oid: its number now.
  /// Raises EDatabaseError where they cannot be the same.
  void PutBack(const std::string& Oid);

 private:
  /// Of a relation; names as SQL has them. A column with its parentheses; empty: the whole.
  struct TTarget {
    std::string Relation, Column;
    bool operator<(const TTarget& Other) const {
      return std::tie(Relation, Column) < std::tie(Other.Relation, Other.Column);
    }
  };
  /// Grantor: empty for the owner.
  struct TGrant {
    std::string Privilege, Grantee, Grantor;
    bool Grantable = false;
    bool operator<(const TGrant& Other) const {
      return std::tie(Grantor, Grantee, Privilege, Grantable) <
             std::tie(Other.Grantor, Other.Grantee, Other.Privilege, Other.Grantable);
    }
    bool operator==(const TGrant&) const = default;
  };
  using TRights = std::map<TTarget, std::set<TGrant>>;

  static TRights Read(TPostgreSQLSession& Session, std::string_view What, const std::string& Oid);
  void Give(const TTarget& Target, const std::set<TGrant>& Grants);
  bool MayGive(const TTarget& Target, const TGrant& Grant) const;

  TPostgreSQLSession& FSession;
  TRights FRights;
  std::set<std::pair<TTarget, TGrant>> FGiven;
};

}  // namespace velkrund

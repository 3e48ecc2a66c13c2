#pragma once

#include <map>
#include <string>
#include <vector>

#include "standalone/drivers/Surroundings.h"

namespace velkrund {

class TPostgreSQLSession;

/// What stands around a function or procedure that is redefined, or dropped and made again: owner, rights, comment, and
/// settings that the new one does not make itself. What depends on it keeps it from being dropped.
class TPostgreSQLRoutineSurroundings final : public TSurroundings {
 public:
  /// Session: borrowed. Routine: the only one of its name.
  TPostgreSQLRoutineSurroundings(TPostgreSQLSession& Session, TTableInfo Routine);

  void Lock() override {}
  void SetAside() override;
  void PutBack(TPutBack How) override;
  const std::vector<std::string>& Remarks() const override { return FRemarks; }

 private:
  struct TRight {
    std::string Grantee, Grantor;  // quoted
    bool Grantable;

    bool operator==(const TRight&) const = default;
  };
  struct TFacts {
    std::string Owner;  // quoted
    std::string Comment;
    bool IsDefiner = false;  // runs with the rights of its owner
    std::vector<TRight> Rights;
    std::map<std::string, std::string> Settings;  // by name: "SET search_path TO 'a'"
  };

  TFacts Read() const;
  void Run(const std::string& Statement) const;
  void PutBackRights(const TFacts& Now) const;

  TPostgreSQLSession& FSession;
  const TTableInfo FRoutine;
  const std::string FWhat, FName;  // FName: quoted
  TFacts FBefore;
  const std::vector<std::string> FRemarks;
};

}  // namespace velkrund

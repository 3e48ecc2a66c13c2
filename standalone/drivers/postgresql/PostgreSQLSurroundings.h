#pragma once

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/drivers/Surroundings.h"
#include "standalone/drivers/postgresql/PostgreSQLDependents.h"
#include "standalone/drivers/postgresql/PostgreSQLGrants.h"
#include "standalone/drivers/postgresql/PostgreSQLOwnedSequences.h"
#include "standalone/drivers/postgresql/PostgreSQLRemaking.h"

namespace velkrund {

/// Everything is read as statements that make it again, of the object with its fields renamed, so that the engine
/// itself writes their new names into views, policies, triggers and the like.
class TPostgreSQLSurroundings final : public TSurroundings {
 public:
  /// Session: borrowed.
  TPostgreSQLSurroundings(TPostgreSQLSession& Session, TTableInfo Object, TRenamedFields Renamed);

  void Lock() override;
  void SetAside() override;
  void PutBack(TPutBack How) override;
  const std::vector<std::string>& Remarks() const override { return FRemarks; }

 private:
  std::string Number() const;
  void LockWith(const std::string& Oid);
  void Refuse(const std::string& Oid) const;
  void Read(const std::string& Oid);
  void RenameFields();
  void PutBackStages(const std::vector<TPostgreSQLRemadeStage>& Stages, TPutBack How);
  void PutBackOne(const TPostgreSQLRemade& Thing, const std::set<std::string>& Facts, bool TellsWhatIsGone);
  void Run(const TPostgreSQLRemade& Thing) const;
  void RunWithoutRows(TPostgreSQLRemade Key) const;
  void FillViews();

  TPostgreSQLSession& FSession;
  const TTableInfo FObject;
  const TRenamedFields FRenamed;
  const std::string FName;  // as SQL has it
  const std::string FWhat;  // begins messages
  std::vector<TPostgreSQLView> FViews;
  std::vector<TPostgreSQLRemade> FViewMakings;
  TPostgreSQLRemaking FRemaking;
  std::unique_ptr<TPostgreSQLGrants> FGrants;
  std::unique_ptr<TPostgreSQLOwnedSequences> FSequences;
  bool FInherits = false;  // fields of its parents
  std::vector<std::string> FRemarks;
};

}  // namespace velkrund

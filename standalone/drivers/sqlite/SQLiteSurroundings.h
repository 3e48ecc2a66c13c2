#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "standalone/drivers/Connection.h"
#include "standalone/drivers/sqlite/SQLiteBookkeeping.h"
#include "standalone/drivers/sqlite/SQLiteDependents.h"
#include "standalone/drivers/sqlite/SQLiteReferences.h"

namespace velkrund {

class TSQLiteDatabase;

/// The engine drops triggers, counters and what its planner knows with a table, and lets views, foreign keys and other
/// triggers be, as texts, whatever becomes of the table. The transaction that writes keeps everybody else out.
class TSQLiteSurroundings final : public TSurroundings {
 public:
  /// Both borrowed; Database is the connection's.
  TSQLiteSurroundings(TConnection& Connection, TSQLiteDatabase& Database, TTableInfo Object, TRenamedFields Renamed);

  void Lock() override {}
  void SetAside() override;
  void PutBack(TPutBack How) override;
  const std::vector<std::string>& Remarks() const override { return FRemarks; }

 private:
  struct TTriggerText {
    bool IsTemporary;
    std::string Name, Text;
  };

  std::string What() const;
  std::string Obstacle() const;
  std::string Listed(const char* Schema) const;
  std::string EnforcedKeys() const;
  std::string ReasonAgainst(const std::string& Statement) const;
  std::string ReasonAgainst(const TTableInfo& TextIndex) const;
  std::set<std::string> Fields() const;
  std::string HighestRowNumber() const;
  void ReadTriggers();
  void PutTriggersBack();
  void RebuildTextIndexes();
  void CheckReferences(TPutBack How);
  void CheckDependents();

  TConnection& FConnection;
  TSQLiteDatabase& FDatabase;
  const TTableInfo FObject;
  const TRenamedFields FRenamed;
  std::vector<TTriggerText> FTriggers;
  std::set<std::string> FFields;                          // folded
  std::vector<std::pair<TTableInfo, bool>> FTextIndexes;  // and whether it worked
  std::optional<TSQLiteBookkeeping> FBookkeeping;         // of a table
  std::optional<TSQLiteReferences> FReferences;           // of a table
  std::optional<TSQLiteDependents> FDependents;
  std::string FHighestRowNumber;
  std::vector<std::string> FProblems;
  bool FLosesReferences = false;  // one of the problems is that
  std::vector<std::string> FRemarks;
};

}  // namespace velkrund

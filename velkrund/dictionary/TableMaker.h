#pragma once

#include <exception>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "velkrund/operations/MissingTables.h"
#include "velkrund/platform/dictionary/Dictionary.h"

namespace velkrund {

/// Makes missing tables by the data dictionary, asked once with the list of them: before the rows fields and keys,
/// behind them the indexes of all, then foreign keys, triggers and comments. A table that needs another one, whose part
/// it is, waits for that. Each step of a table is a transaction of its own, or a part of one. A table that cannot be
/// completed, where the others are gone on with, is dropped again, and so are those made here that refer to it; where
/// the steps are committed one by one it stays, and waits for a later run to complete it. What such a run was left is
/// never dropped: where it cannot be completed, the run ends.
class TTableMaker : public TMissingTables {
 public:
  /// Operation: borrowed, whose cancel is obeyed.
  TTableMaker(TUtilOperation& Operation, std::string DatabaseName)
      : FOperation(Operation), FDatabaseName(std::move(DatabaseName)) {}

  void Make(const std::vector<std::string>& Names) override;
  void Check(const std::string& Name) override;
  void Complete(const TFailed& Failed, const TTakenBack& TakenBack) override;

 protected:
  struct TMade {
    TDicTableDescription Description;
    std::string Pattern;
    TTableStage Stage = TTableStage::Made;
    bool IsGone = false;
    bool WasThere = false;  // an earlier run has left it, with rows
  };

  /// Whether each step is committed by itself, rather than with the whole run.
  virtual bool CommitsSteps() const { return true; }
  /// A table that an earlier run has left without its last parts is completed now.
  virtual void WillComplete(const TDicTableDescription& /*Table*/) {}

  /// Whether those may be made; by default a person is asked.
  virtual bool MayMake(const std::vector<TDicTableDescription>& Tables);
  /// Whether the engine makes a table of it at all; one that it does not is passed over.
  virtual bool CanMake(const TDicTableDescription& /*Table*/) { return true; }
  /// Whether that one may be made, whose name may be too long for some engine; by default a person is asked.
  virtual bool MayGoByName(const TDicTableDescription& Table);
  /// A host's last word on what is made of a table.
  virtual void Prepare(TDicTableDescription& /*Table*/) {}
  virtual void HasMade(const TDicTableDescription& /*Table*/) {}
  virtual void HasDropped(const TDicTableDescription& /*Table*/) {}
  /// Whether a table that was made is of no use, since its rows did not come into it: it is dropped, not completed.
  virtual bool IsUseless(const TDicTableDescription& /*Table*/) { return false; }
  /// Foreign keys, triggers, comments. Made: as it was prepared.
  virtual void MakeRest(const TMade& Made);

  const std::string& DatabaseName() const { return FDatabaseName; }

 private:
  std::vector<TDicTableDescription> Missing(const std::vector<std::string>& Names);
  void MakeAll(std::vector<TDicTableDescription> Tables);
  void TakeUnfinished(const std::string& Name);
  std::string PatternOf(const TDicTableDescription& Table) const;
  void CompleteEach(const TFailed& Failed, const TTakenBack& TakenBack, TTableStage Stage,
                    void (TTableMaker::*Step)(const TMade&));
  void FinishOne(const TMade& Made);
  void StoreWords(const TFailed& Failed, const TTakenBack& TakenBack);
  /// False: an error, which Failed is told of, if there is one, for a table alone.
  bool StoreWordsOf(std::span<TMade* const> Tables, const TFailed& Failed = {});
  /// That Made could not be completed, while the error of it is handled.
  void GiveUp(TMade& Made, const TFailed& Failed, const std::exception& Error);
  void DropWithThoseThatRefer(TMade& Made, const TTakenBack& TakenBack);
  void MakeIndexes(const TMade& Made);
  void Drop(TMade& Made);
  bool MakeOne(const TDicTableDescription& Table);
  void Decline(const TDicTableDescription& Table);

  TUtilOperation& FOperation;
  const std::string FDatabaseName;
  std::vector<TMade> FMade;
  std::map<std::string, std::exception_ptr> FFailed;  // by name in lower case
};

}  // namespace velkrund

#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "jobs/files/InputFiles.h"
#include "jobs/policies/ErrorPolicy.h"
#include "jobs/run/ImportPart.h"
#include "jobs/run/ImportSteps.h"
#include "jobs/run/ItemAccount.h"
#include "jobs/run/Job.h"
#include "velkrund/operations/ImportFiles.h"
#include "velkrund/platform/database/Transaction.h"

namespace velkrund {

/// Loads sections of files into a database: the one engine of all imports. Everything that can be known, and every
/// question about rows that are there, comes before the first change. The run is one transaction, unless it is told to
/// commit each group of tables; what fails, and is gone on after, is undone with its group.
class TImportJob : public TSectionsJob, private TImportFileObserver {
 public:
  bool CreateDatabase = false;  // make the database when it does not exist

  std::string CommandName() const override { return std::string("import ") + FKind; }

 protected:
  using TParts = std::map<TSectionRole, std::unique_ptr<TImportPart>>;

  /// Kind: for the document: "table".
  explicit TImportJob(const char* Kind) : FKind(Kind) {}

  void Run() final;
  virtual std::vector<std::string> Names() const = 0;
  /// The parts of this run; sections of other roles are imported as their classes are made.
  virtual TParts MakeParts() = 0;
  /// The sections of a file to import, by index.
  virtual std::vector<int> Choose(TInputFile& Input) = 0;
  /// Whether only some sections are asked for, by name; otherwise it is all that the files hold.
  virtual bool NamesSections() const { return false; }
  /// Whether a file that cannot be read is a failed item among others; otherwise it ends the run at once.
  virtual bool GoesOnWithoutFile() const { return false; }
  /// Whether the objects that structures describe are made too.
  virtual bool MakesObjects() const { return true; }
  /// Who makes tables that are missing; null: nobody, they have to be there.
  virtual std::unique_ptr<TMissingTables> TableMaker(TUtilOperation& /*Operation*/) { return nullptr; }
  /// Whether an object that a structure describes is to be made, and what is known of its questions.
  virtual bool SetUpObject(TRecreateOperation& /*Operation*/, int /*ObjectType*/) { return true; }
  virtual void NoteObject(const TStructureId& /*Structure*/, TRecreateState /*State*/) {}
  /// For a dry run: what is done about tables before the first row, and behind the last one.
  virtual std::vector<TPlanStep> StepsBeforeRows() const { return {}; }
  virtual std::vector<TPlanStep> StepsBehindRows() const { return {}; }
  /// Says what a person should know about a run that has come to its end. Stays: what it did was not taken back whole.
  virtual void AddNotes(bool /*Stays*/) {}
  /// Of the one transaction where no tables are loaded.
  virtual TIsolationLevel Isolation() const { return TIsolationLevel::RepeatableRead; }
  /// Frees what MakeParts has made beside the parts.
  virtual void Release() {}

  /// Whether there were rows for the table, and none of them stay.
  bool HasLostRows(const std::string& Table) const { return FSteps.HaveLostRows(Table); }

 private:
  std::vector<int> LookAt(TInputFile& Input);
  void Announce(TInputFile& Input, const std::vector<int>& Indexes);
  void AddSections(TInputFile& Input, const std::vector<int>& Indexes);
  void NoteLines(TInputFile& Input);
  void TakeUnfinished(TInputFile& Input);
  void Add(TInputFile& Input, int Index);
  void PlanLoading();
  void MakePlan();
  void Import();
  void NoteStructuresAlone();
  void RefuseChangedInputs();
  void BeginWhole();
  void EndWhole(bool Stays);
  void TakeAllBack();
  void FailAll();
  void Fail(TItem& Item, const std::exception& Error);
  bool MayGoOn(const std::exception& Error);
  bool IsAlone() const;

  // TImportFileObserver
  TEIFile* OpenedFile(const std::string& FileName) override;
  bool Takes(const TEIFile& File, const TEISection& Section) override { return FSteps.Takes(File, Section); }
  std::optional<TLoadTarget> TargetOf(const TEIFile& File, const TEISection& Section) override;
  void EndTables(const TTableLoading& Loading) override;
  bool BeginSection(const TEIFile& File, const TEISection& Section, TEIObject& Object) override;
  void EndSection(const TEIFile& File, const TEISection& Section, const TEIObject* Object,
                  const std::exception* Error) override;
  std::optional<bool> GoOn(const std::exception& Error) override;
  void FileFailed(const std::string& FileName, const std::exception& Error) override;
  void TableTakenBack(const std::string& Table) override;
  void TableFailed(const std::string& Table, const std::exception& Error) override;
  bool Creates(TRecreateOperation& Operation, int ObjectType) override { return SetUpObject(Operation, ObjectType); }
  bool CreatesEarly() const override { return true; }
  bool TellsObjects() const override { return true; }
  void ObjectEnded(const std::string& Name, int ObjectType, TRecreateState State,
                   const std::exception_ptr& Error) override;
  void NotCreated(const std::string& Name, int ObjectType) override { FNotCreated.push_back({ObjectType, Name}); }
  void TakenBack(const std::vector<TImportFileObserver::TPlace>& Sections, const std::exception* Error) override;

  const char* const FKind;
  TParts FParts;
  std::unique_ptr<TInputFiles> FInputs;                   // during a run
  std::map<std::string, std::exception_ptr> FUnreadable;  // files, until that is told
  TImportSteps FSteps{FOutcome};
  std::unique_ptr<TTableLoading> FLoading;     // of all tables; null: there are none
  std::unique_ptr<TTransaction> FTransaction;  // of the run where it has no tables
  std::set<std::size_t> FGone;                 // items of groups that were taken back
  std::vector<TStructureId> FNotCreated;       // structures whose objects nobody makes
  std::optional<TErrorPolicy> FErrors;
  std::optional<TItemAccount> FAccount;  // of the section that is being imported
  const TProgressCallback FShow = [this](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    ShowPart(Current, Total, Name);
  };
  std::int64_t FTotal = 0, FReached = 0;  // bytes of sections: of the run, and of those that were ended
  bool FStopped = false;                  // after an error
  bool FStays = false;                    // what was done, as a whole
};

}  // namespace velkrund

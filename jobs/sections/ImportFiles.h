#pragma once

#include <memory>
#include <string>
#include <vector>

#include "jobs/dictionary/TableCreation.h"
#include "jobs/run/ImportJob.h"
#include "jobs/run/JobInterface.h"

namespace velkrund {

/// Loads everything that files hold: of all files together the structures first, then the tables that are missing and
/// described, then the rows, then the database objects that the structures describe, then where
/// generators stand, then languages and localized strings.
class TJobImportFiles final : public TImportJob {
 public:
  TJobImportFiles() : TImportJob("file") {}

  std::vector<std::string> FileNames;  // in this order; "-": standard input
  std::string QueryTarget;             // the table that the rows of queries go into; empty: a person is asked
  TStringPairs Mapping;                // fields of queries, and those of that table that they fill; others go by name
  bool SetGenerators = false;          // backwards too
  bool AddLanguages = false;           // that texts are in and the database lacks

  void CheckSettings() const override;

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  std::vector<std::string> Names() const override { return FileNames; }
  TParts MakeParts() override;
  std::vector<int> Choose(TInputFile& Input) override;
  bool GoesOnWithoutFile() const override { return true; }
  // Where there are no tables, localized strings may have to wait for others.
  TIsolationLevel Isolation() const override { return TIsolationLevel::ReadCommitted; }
  std::unique_ptr<TMissingTables> TableMaker(TUtilOperation& Operation) override {
    return FCreation->Maker(Operation, [this](const std::string& Table) { return HasLostRows(Table); });
  }
  bool SetUpObject(TRecreateOperation& Operation, int ObjectType) override {
    return FCreation->Objects().SetUp(Operation, ObjectType);
  }
  void NoteObject(const TStructureId& Structure, TRecreateState State) override {
    FCreation->Objects().Note(Structure, State);
  }
  std::vector<TPlanStep> StepsBeforeRows() const override { return FCreation->StepsBefore(); }
  std::vector<TPlanStep> StepsBehindRows() const override { return FCreation->StepsBehind(); }
  void AddNotes(bool Stays) override { FCreation->AddNotes(FOutcome, Stays); }
  void Release() override { FCreation.reset(); }

 private:
  std::unique_ptr<TTableCreation> FCreation;  // during a run
};

using TJobImportFilesInterface = TJobInterface<TJobImportFiles>;

}  // namespace velkrund

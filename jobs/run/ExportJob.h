#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "jobs/files/OutputFile.h"
#include "jobs/policies/ErrorPolicy.h"
#include "jobs/policies/MissingSources.h"
#include "jobs/run/JobInterface.h"
#include "standalone/databases/ReadTransaction.h"
#include "velkrund/operations/ImportExport.h"

namespace velkrund {

extern const TPropertyTable ExportJobProperties;  // those of a job on sections, and what follows

/// Adds sections to a file. All are read at one moment of the database. What is there already under their names is
/// settled before anything is written; what is replaced is taken out at the end, in one step: from
/// the first such section on nobody has anything of the run before. Or makes the file afresh.
class TExportJob : public TSectionsJob {
 public:
  std::string FileName;     // "-": standard output
  bool NewFile = false;     // made afresh, of the whole run or not at all; otherwise sections are added to it
  std::string SectionName;  // of the one section; empty: as the job names them
  TExportReleaseVersion ReleaseVersion = TExportReleaseVersion::rv20;
  std::optional<TKvEncoding> Encoding;  // nothing: UTF-8, for rv17 ANSI

  void CheckSettings() const override;
  std::string CommandName() const override { return std::string("export ") + FKind; }

 protected:
  /// Kind: of the sections, for the document: "table".
  explicit TExportJob(const char* Kind) : FKind(Kind) {}

  void Run() final;
  /// Whether there may be more than one section.
  virtual bool Several() const = 0;
  /// A section to be written for each item.
  virtual std::vector<TItem> PlanItems() = 0;
  /// Marks an item as left out, as the policy or a person allows, or passes the error on, that says what is missing.
  void LeaveOut(TItem& Item, const std::exception_ptr& Error);
  /// The operation that writes an item, set up for it, its section's name and what all have in common apart.
  virtual TExportUtilOperation& OperationFor(const TItem& Item) = 0;
  /// The moment at which the database is read, until the run ends: begun when it is first asked for, by Write at the
  /// latest.
  TReadTransaction& Moment();
  /// Takes over what the operation counted.
  virtual void AfterRun(TItem& /*Item*/) {}
  /// Says what a person should know about all that was written.
  virtual void AddNotes() {}

 private:
  /// What is there already under the name of a new section, and what becomes of it.
  struct TStep {
    std::vector<int> Existing = {};
    bool Replace = false;
    bool Held = false;  // what was written waits for the end
  };

  void FindExisting();
  void Settle();
  void MakePlan();
  bool MayReplace(TItem& Item, TRepeatedQuestion& Question) const;
  void SetUp(TExportUtilOperation& Export);
  void Write();
  void WriteOne(TItem& Item, TStep& Step);
  bool IsLast(std::size_t Index) const;
  bool GoOn(const TItem& Failed);
  void TakeBack();
  void Finish();
  bool HasArrived(std::size_t Index) const;
  void FailFile(const std::exception_ptr& Reason);

  const char* const FKind;
  std::optional<TErrorPolicy> FErrors;
  std::optional<TMissingSources> FMissing;
  std::unique_ptr<TOutputFile> FOutput;  // during a run
  std::optional<TReadTransaction> FMoment;
  std::vector<TStep> FSteps;   // one for every item
  std::vector<int> FReplaced;  // sections that new ones took the place of
};

}  // namespace velkrund

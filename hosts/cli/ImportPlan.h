#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "hosts/cli/InputFiles.h"
#include "hosts/cli/Report.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/StructureAnswers.h"
#include "hosts/cli/TableTargets.h"
#include "jobs/policies/ErrorPolicy.h"
#include "velkrund/operations/ImportFile.h"

namespace velkrund {

/// What a run is to do with every section, and what became of it.
class TImportPlan final : public TImportFileObserver {
 public:
  /// All borrowed. Overwrite: what becomes of structures that exist.
  TImportPlan(const TSession& Session, const TTableOptions& Tables, TOverwrite Overwrite, TErrorPolicy& Errors,
              TReport& Report)
      : FSession(Session), FTables(Tables), FTargets(Tables), FErrors(Errors), FReport(Report) {
    AnswerByOption(FOverwriteAsk, Overwrite);
  }

  /// Looks at the files; what can not be read shows when it is imported.
  void LookAt(const TInputFiles& Inputs);
  /// Decides about rows that are there, before anything is changed, and whether the operation can ask about structures.
  void Settle();
  /// Begins to show progress.
  void Begin();

  /// A table has failed without which the others are not wanted, and the run was ended there.
  bool Stopped() const { return FStopped; }

  std::optional<TLoadTarget> TargetOf(const TEIFile& File, const TEISection& Section) override;
  void BeginTables(const TTableLoading& Loading) override;
  bool BeginSection(const TEIFile& File, const TEISection& Section, TEIObject& Object) override;
  void EndSection(const TEIFile& File, const TEISection& Section, const TEIObject* Object,
                  const std::exception* Error) override;
  void TakenBack(const std::exception* Error) override;
  void FileFailed(const std::string& FileName, const std::exception& Error) override;

 private:
  struct TStep {
    bool IsTable = false;
    std::int64_t Bytes = 0;
    std::size_t Item = 0;                    // in the report
    std::optional<std::size_t> Target = {};  // nothing: it is no table, or the database lacks it
  };
  using TClock = std::chrono::steady_clock;

  std::int64_t Bytes(bool OfTables) const;
  void Add(const TEIFile& File, const TEISection& Section);
  const TStep& StepOf(const TEIFile& File, const TEISection& Section) const;
  void Fail(TReportItem& Item, const std::exception& Error);
  /// Whether it is a table that is loaded with all others or not at all.
  bool LoadsTogether(const TReportItem& Item) const { return !Item.Table.empty() && FAreOne; }
  std::optional<TLoadTarget> TargetOf(const TStep& Step) const;

  const TSession& FSession;
  const TTableOptions& FTables;
  TTableTargets FTargets;
  TStructureTargets FStructures;
  TDSPOverwriteAsk FOverwriteAsk;  // shared by all structures
  TErrorPolicy& FErrors;
  TReport& FReport;
  std::map<std::pair<std::string, std::int64_t>, TStep> FSteps;  // by file and position of the section
  bool FSeveral = false;                                         // files
  bool FTablesBegun = false;
  bool FAreOne = false;  // the tables
  bool FStopped = false;
  TClock::time_point FStart;
  TTextLosses FLossesBefore;
};

}  // namespace velkrund

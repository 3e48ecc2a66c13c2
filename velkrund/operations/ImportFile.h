#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/eif/EIFile.h"
#include "velkrund/operations/AskObjects.h"
#include "velkrund/operations/ImportFileObserver.h"
#include "velkrund/operations/MissingTables.h"
#include "velkrund/operations/RecreateContainer.h"
#include "velkrund/operations/TablePlan.h"
#include "velkrund/operations/UtilOperation.h"
#include "velkrund/platform/ormtools/ParamsList.h"

namespace velkrund {

/// Imports a whole file: its structures and all else but what follows, then makes the tables that are missing, then
/// loads the table data and query data, then creates the generators, views and procedures that the structures describe,
/// unless a structure was left alone by an answer, or left out, or has failed, then imports the generator data, the
/// languages, and the localized strings, which need their languages. Progress counts the bytes of section bodies: those
/// of structures and rows, then those of languages and strings.
///
/// Tables come after those that they refer to. Those that are tied to each other are loaded together or not at all: the
/// error of one, or a wish to stop, takes all of them back.
///
/// After the error of a section a person is asked whether to go on; without anybody to ask, the error is raised, the
/// reason appended. EAbort and EQuestionUnanswered always end the import.
class TUOImportFile : public TDatabaseUtilOperation {
 public:
  TUOImportFile() { OverwriteAsk.FAlwaysAsk = true; }

  /// 0: cancelled, or stopped before the table data by fCreateDBStructures. Finished sections stay in either case.
  int Execute() override;

  std::string FFileName;
  bool FCrypted = false;                    // not supported yet: an error before anything is opened
  bool fCreateDBStructures = true;          // go on to table data and database objects
  bool ContinueOnError = true;              // ask after an error; false: raise it. Becomes false when the answer is No
  TYesNoAsk OverwriteAsk;                   // whether generators, views and procedures that are there are replaced
  TLoadOptions LoadOptions;                 // where the platform has relations of tables
  TKvParamsList FEIObjectProperties;        // settings for sections; answers given for all join them for one run
  TImportFileObserver* Observer = nullptr;  // borrowed, may be null
  TFileSystem* FileSystem = nullptr;        // where the files are, borrowed; null: the platform's

  static const TUtilOperationDescriptor Descriptor;

 protected:
  /// A file of the run, and the indexes of its sections that are taken, in the order of the file.
  struct TSource {
    std::unique_ptr<TEIFile> Owned;  // null where the host has opened it
    TEIFile* File;
    std::vector<int> Structures;  // all others
    std::vector<int> Tables;      // rows: table data and query data
    std::vector<int> Generators;
    std::vector<int> Languages;
    std::vector<int> Resources;  // localized strings
  };

  /// The run itself; EAbort is its cancelled result.
  virtual int ImportAll();

  /// Opens the file and adds its structures to those whose objects are created at the end. On failure nothing is added.
  TSource OpenFile(const std::string& FileName);
  static std::int64_t BytesOf(const TEIFile& File, const std::vector<int>& Sections);
  /// Between these two progress goes from 0 to Total bytes and never back.
  void BeginPass(std::int64_t Total);
  void EndPass();
  /// False when cancelled; these two.
  bool ImportStructures(const TSource& Source);
  /// The rows of all files, as one plan, with the tables that are missing.
  bool ImportTables(const std::vector<TSource>& Sources);
  /// The objects that structures describe, then all that comes behind them; the result of the run.
  int FinishObjects(const std::vector<TSource>& Sources);
  /// What comes behind all else: generators, languages, strings. False: cancelled.
  bool ImportAllBehind(const std::vector<TSource>& Sources);
  /// Cancelled, now or earlier in this run.
  bool Stopping() { return FStopping = FStopping || IsCanceled(); }
  /// Within the handler of Error: traces it, and returns when a person wants to go on. Otherwise it raises. Key: of the
  /// text that says what Name was.
  void ContinueOrRaise(const std::exception& Error, std::string_view Key, const std::string& Name);

 private:
  /// Without an observer nobody has a say.
  class TNobody final : public TImportFileObserver {
    bool BeginSection(const TEIFile&, const TEISection&, TEIObject&) override { return true; }
    void EndSection(const TEIFile&, const TEISection&, const TEIObject*, const std::exception*) override {}
  };

  TImportFileObserver& Host() { return Observer ? *Observer : FNobody; }
  std::unique_ptr<TEIFile> OpenedHere(const std::string& FileName) const;
  void SetUpContainer();
  int CreateObjects();
  void TellObjects();
  void TakeSections(TSource& Source);
  static std::vector<int>& PlaceOf(TSource& Source, TSectionRole Role);
  bool ImportBehind(const std::vector<TSource>& Sources, std::vector<int> TSource::*Sections);
  void CreateEarly();
  void WillCreate(int Type, const std::string& Name, const TEISection& Section);
  void MakeMissingTables(const std::vector<TSource>& Sources);
  bool HasFailed(const std::string& Table);
  void CompleteTables();
  void FailTable(const std::string& Table, const std::exception& Error);
  std::optional<TLoadTarget> TargetOf(TEIFile& File, const TEISection& Section);
  void ImportGroup(const TTablePlan& Plan, const TTablePlan::TPart& Part);
  void TellTakenBack(std::span<const TTablePlan::TStep> Steps, const std::exception* Error);
  void ImportSection(TEIFile& File, int Index, TTableLoading* Loading);
  std::unique_ptr<TEIObject> MakeObject(TEIFile& File, int Index);
  void ChildProgress(std::int32_t Current, std::int32_t Total, std::string_view ObjectName);
  void ShowPosition(std::int64_t Position, std::string_view ObjectName);

  std::int64_t CurrentProgress = 0;  // bytes of finished sections
  std::int64_t TotalProgress = 0;
  std::int64_t CurrentTotal = 0;  // bytes of the current section
  std::int64_t FShown = 0;        // the highest position shown in this pass
  std::string CurrentObjectName;
  bool FStopping = false;
  std::unique_ptr<TMissingTables> FMissing;  // of the run; null: nobody makes tables
  TUORecreateContainer FContainer;           // of the run
  TNobody FNobody;
};

}  // namespace velkrund

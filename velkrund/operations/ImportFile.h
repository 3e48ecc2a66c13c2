#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/eif/EIFile.h"
#include "velkrund/operations/RecreateContainer.h"
#include "velkrund/operations/UtilOperation.h"
#include "velkrund/platform/ormtools/ParamsList.h"

namespace velkrund {

/// A host that watches the import of whole files, and has a say in every section. What it raises counts as the
/// section's error in BeginSection, and ends the import elsewhere.
class TImportFileObserver {
 public:
  virtual ~TImportFileObserver() = default;
  /// Before the first of these sections of a file is imported: may put them in another order. Sections: indexes, in the
  /// order of the file.
  virtual void Arrange(const TEIFile& /*File*/, std::vector<int>& /*Sections*/) {}
  /// Before a section is imported, its object being set up; false: the section is left out, and EndSection not called.
  virtual bool BeginSection(const TEIFile& File, const TEISection& Section, TEIObject& Object) = 0;
  /// After it, and before anybody is asked whether to go on. Error: null after success. Object: null when it could not
  /// be made; one that is Stopped() was cancelled.
  virtual void EndSection(const TEIFile& File, const TEISection& Section, const TEIObject* Object,
                          const std::exception* Error) = 0;
  /// A file that can not be opened, or whose headers are wrong.
  virtual void FileFailed(const std::string& /*FileName*/, const std::exception& /*Error*/) {}
};

enum class TMissingTable { NotMissing, Created, Declined };
/// Makes the table of a table data section where the database lacks it.
using TMissingTableHook = std::function<TMissingTable(const TEISection& Section, const std::string& DatabaseName)>;
/// Called before every table data section of a file import; an empty hook: the table has to be there. To be set while
/// no operation runs.
void SetMissingTableHook(TMissingTableHook Hook);

/// Imports a whole file: its structures and all else but table data, then the table data, then creates the generators,
/// views and procedures that the structures describe. Progress counts the bytes of section bodies.
///
/// After the error of a section a person is asked whether to go on; without anybody to ask, the error is raised, the
/// reason appended. EAbort and EQuestionUnanswered always end the import.
class TUOImportFile : public TDatabaseUtilOperation {
 public:
  /// 0: cancelled, or stopped before the table data by fCreateDBStructures. Finished sections stay in either case.
  int Execute() override;

  std::string FFileName;
  bool FCrypted = false;                    // not supported yet: an error before anything is opened
  bool fCreateDBStructures = true;          // go on to table data and database objects
  bool ContinueOnError = true;              // ask after an error; false: raise it. Becomes false when the answer is No
  TKvParamsList FEIObjectProperties;        // settings for sections; answers given for all join them for one run
  TImportFileObserver* Observer = nullptr;  // borrowed, may be null
  TFileSystem* FileSystem = nullptr;        // where the files are, borrowed; null: the platform's

  static const TUtilOperationDescriptor Descriptor;

 protected:
  enum class TPart { Structures, Tables };  // what is not table data, and what is

  /// The run itself; EAbort is its cancelled result.
  virtual int ImportAll();

  void SetUpContainer(TUORecreateContainer& Container);
  /// Opens the file and adds its structures to the container. On failure nothing is added.
  std::unique_ptr<TEIFile> OpenFile(const std::string& FileName, TUORecreateContainer& Container);
  static TPart PartOf(const TEISection& Section) {
    return Section.ObjectClass.Role() == TSectionRole::TableData ? TPart::Tables : TPart::Structures;
  }
  static std::int64_t BytesOf(const TEIFile& File, TPart Part);
  /// Between these two progress goes from 0 to Total bytes and never back.
  void BeginPass(std::int64_t Total);
  void EndPass();
  /// Imports the sections of that part, in file order unless the observer has another; false when cancelled.
  bool ImportSections(TEIFile& File, TPart Part);
  /// Cancelled, now or earlier in this run.
  bool Stopping() { return FStopping = FStopping || IsCanceled(); }
  /// Within the handler of Error: traces it, and returns when a person wants to go on. Otherwise it raises. Key: of the
  /// text that says what Name was.
  void ContinueOrRaise(const std::exception& Error, std::string_view Key, const std::string& Name);

 private:
  void AddTo(TUORecreateContainer& Container, int Type, const std::string& Name, const TEISection& Section);
  void ImportSection(TEIFile& File, int Index);
  std::unique_ptr<TEIObject> MakeObject(TEIFile& File, int Index);
  void ChildProgress(std::int32_t Current, std::int32_t Total, std::string_view ObjectName);
  void ShowPosition(std::int64_t Position, std::string_view ObjectName);

  std::int64_t CurrentProgress = 0;  // bytes of finished sections
  std::int64_t TotalProgress = 0;
  std::int64_t CurrentTotal = 0;  // bytes of the current section
  std::int64_t FShown = 0;        // the highest position shown in this pass
  std::string CurrentObjectName;
  bool FStopping = false;
};

}  // namespace velkrund

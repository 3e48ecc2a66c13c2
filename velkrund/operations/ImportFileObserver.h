#pragma once

#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "velkrund/eif/EIFile.h"
#include "velkrund/operations/RecreateContainer.h"
#include "velkrund/platform/database/Relations.h"

namespace velkrund {

/// A host that watches the import of whole files, and has a say in every section. What it raises counts as the file's
/// error in OpenedFile and Takes, as the section's in BeginSection, and ends the import elsewhere.
class TImportFileObserver {
 public:
  virtual ~TImportFileObserver() = default;
  /// The file, opened for reading by the host already, borrowed, outlives the run; null: it is opened here.
  virtual TEIFile* OpenedFile(const std::string& /*FileName*/) { return nullptr; }
  /// Asked once for each section of a file before anything of it is imported. A section that is not taken is as if the
  /// file did not have it.
  virtual bool Takes(const TEIFile& /*File*/, const TEISection& /*Section*/) { return true; }
  /// The table that a section of rows is to be loaded into, where foreign keys are minded; nothing: it takes no part in
  /// that. Asked once for each, when all structures are there. By default the table that table data name under its
  /// physical name, emptied, and nothing when it cannot be opened; nothing for query data, whose table a host that
  /// knows it sets in BeginSection too.
  virtual std::optional<TLoadTarget> TargetOf(const TEIFile& File, const TEISection& Section);
  /// Behind the last section of rows, where the platform has relations of tables.
  virtual void EndTables(const TTableLoading& /*Loading*/) {}
  /// Before a section is imported, its object being set up; false: the section is left out, and EndSection not called.
  virtual bool BeginSection(const TEIFile& File, const TEISection& Section, TEIObject& Object) = 0;
  /// After it, and before anybody is asked whether to go on. Error: null after success. Object: null when it could not
  /// be made; one that is Stopped() was cancelled. EAbort ends the run, as a cancelled one.
  virtual void EndSection(const TEIFile& File, const TEISection& Section, const TEIObject* Object,
                          const std::exception* Error) = 0;
  /// Behind EndSection, or FileFailed, of what has failed: whether to go on; nothing: a person is asked. EAbort ends
  /// the run, as a cancelled one.
  virtual std::optional<bool> GoOn(const std::exception& /*Error*/) { return std::nullopt; }
  struct TPlace {
    const TEIFile& File;
    const TEISection& Section;
  };
  /// The sections of a group of tables that was taken back, whether they were reached or not; before anybody is asked
  /// whether to go on. Error: of the emptying, or the check at the end; null when a section failed or the run was
  /// cancelled.
  virtual void TakenBack(const std::vector<TPlace>& /*Sections*/, const std::exception* /*Error*/) {}
  /// A table that could not be made, or not be completed behind the last row; in the first case one without rows.
  /// Before anybody is asked whether to go on.
  virtual void TableFailed(const std::string& /*Table*/, const std::exception& /*Error*/) {}
  /// A table that was made, and is gone again with its rows, because it refers to one that failed.
  virtual void TableTakenBack(const std::string& /*Table*/) {}
  /// An object that a structure of the files describes, and that is to be created, by Operation: a host answers its
  /// questions here. Asked with Takes; false: it is not created.
  virtual bool Creates(TRecreateOperation& /*Operation*/, int /*ObjectType*/) { return true; }
  /// Whether objects are tried before tables are made, and again before they are completed, since these may need them.
  virtual bool CreatesEarly() const { return false; }
  /// Whether the host tells what could not be created; otherwise a message box does.
  virtual bool TellsObjects() const { return false; }
  /// A structure of the files that is stored only: nobody creates objects of its type in the database.
  virtual void NotCreated(const std::string& /*Name*/, int /*ObjectType*/) {}
  /// What has become of a generator, view or procedure, when all were tried. Error: why one is not created; null where
  /// nothing has failed.
  virtual void ObjectEnded(const std::string& /*Name*/, int /*ObjectType*/, TRecreateState /*State*/,
                           const std::exception_ptr& /*Error*/) {}
  /// A file that cannot be opened, or whose headers are wrong.
  virtual void FileFailed(const std::string& /*FileName*/, const std::exception& /*Error*/) {}

 private:
  friend class TUOImportFile;

  std::string FDatabaseName;  // of the run
};

}  // namespace velkrund

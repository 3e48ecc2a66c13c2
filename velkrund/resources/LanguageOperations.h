#pragma once

#include <string>
#include <vector>

#include "velkrund/eif/EIFile.h"
#include "velkrund/operations/OperationInterface.h"
#include "velkrund/operations/OverwriteQuestion.h"
#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

/// Saves languages, each as a section of its name, into a target or into the file "Languages.eif" of a folder. A
/// section of the target with the same language, and such a file, are asked about and replaced, or left alone.
class TUOExportLanguages : public TDatabaseUtilOperation, public TOverwriteQuestion {
 public:
  /// 1, also where an answer ends it; 0: cancelled. Sections that were written by then stay.
  int Execute() override;

  TEISource* Target = nullptr;  // borrowed, opened; the caller closes it. Not used where they go to a folder
  TStringList Languages;        // in this order; empty: nothing is written
  bool UseEncoding = true;      // write in Encoding; otherwise in ANSI
  TKvEncoding Encoding = TKvEncoding::Utf8;
  bool ToFolder = false;
  std::string Folder;

  // Of the last run.
  const std::vector<std::string>& Written() const { return FWritten; }
  /// Those whose section in the target stays as it is, by an answer.
  const std::vector<std::string>& LeftAlone() const { return FLeftAlone; }

  static const TUtilOperationDescriptor Descriptor;

 private:
  int ExportInto(TEISource& Source);
  bool Replaces(TEISource& Source, const std::string& Language);

  std::vector<std::string> FWritten, FLeftAlone;
};

/// Loads the language sections of a source whose indexes are given. Languages that are there are replaced.
class TUOImportLanguages : public TDatabaseUtilOperation, public TOverwriteQuestion {
 public:
  /// 1; 0: cancelled. Languages that were loaded by then stay.
  int Execute() override;

  TEISource* Source = nullptr;  // borrowed, opened; the caller closes it
  TStringList SectionIndexes;   // decimal numbers, from 0

  static const TUtilOperationDescriptor Descriptor;
};

/// Copies languages, without their texts, into another database. One that is there under other names is asked about,
/// unless Overwrite says otherwise.
class TUOCopyLanguages : public TCopyDatabaseUtilOperation, public TOverwriteQuestion {
 public:
  TUOCopyLanguages() { SetOverwritesAll(false); }

  /// 1; 0: cancelled, or ended by an answer. Languages that were copied by then stay.
  int Execute() override;

  TStringList Languages;  // in this order; each has to be in the database

  // Of the last run.
  const std::vector<std::string>& Written() const { return FWritten; }
  /// Those with other names that stay, by an answer.
  const std::vector<std::string>& LeftAlone() const { return FLeftAlone; }

  static const TUtilOperationDescriptor Descriptor;

 private:
  TStringList AsStored() const;
  bool CopyOne(const std::string& Language);

  std::vector<std::string> FWritten, FLeftAlone;
};

class TUOExportLanguagesInterface : public TOperationInterface<TUOExportLanguagesInterface, TUOExportLanguages> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  /// Borrowed: an opened file that outlives the run.
  TEIFile* Target() const { return dynamic_cast<TEIFile*>(Operation().Target); }
  void SetTarget(TEIFile* Target) { Operation().Target = Target; }
  TStringList& Languages() const { return Operation().Languages; }
};

class TUOImportLanguagesInterface : public TOperationInterface<TUOImportLanguagesInterface, TUOImportLanguages> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  /// Borrowed: an opened file that outlives the run.
  TEIFile* Source() const { return dynamic_cast<TEIFile*>(Operation().Source); }
  void SetSource(TEIFile* Source) { Operation().Source = Source; }
  TStringList& SectionIndexes() const { return Operation().SectionIndexes; }
};

class TUOCopyLanguagesInterface
    : public TOperationInterface<TUOCopyLanguagesInterface, TUOCopyLanguages, TCopyDatabaseUtilOperationInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  TStringList& Languages() const { return Operation().Languages; }
  bool Overwrite() const { return Operation().OverwritesAll(); }
  void SetOverwrite(bool Value) { Operation().SetOverwritesAll(Value); }
};

}  // namespace velkrund

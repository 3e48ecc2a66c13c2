#pragma once

#include <string>

#include "velkrund/operations/ImportExportInterfaces.h"
#include "velkrund/operations/OverwriteQuestion.h"
#include "velkrund/resources/ItemResults.h"

namespace velkrund {

/// Loads a section of strings into a database. The texts that are there already are asked about as OverwriteAsk says.
class TUOImportLResource : public TImportUtilOperation, public TOverwriteQuestion {
 public:
  int Execute() override;

  std::string SectionID;           // the section to load into; empty: the one that the file names
  bool ReadLanguagesOnly = false;  // read the section's languages into Languages, and nothing else
  TStringList Languages;           // those to load; empty: all
  TStringList Resources;           // the names of the strings to load; empty: all
  TLSection* LSection = nullptr;   // borrowed; takes the texts in place of the database

  /// Of the last run.
  const TLResourceReport& Report() const { return FReport; }

  static const TUtilOperationDescriptor Descriptor;

 protected:
  void InitEIObject(TEIObject& Object) override;
  void EndEIObject(const TEIObject& Object) override;

 private:
  TLResourceReport FReport;
};

/// Loads all sections of strings of a file, in its order, each in a transaction of its own. After an error a person is
/// asked whether to go on; No raises it. Sections that cannot be loaded, since they were made for other programs, are
/// such errors.
class TUOImportLSections : public TDatabaseUtilOperation, public TOverwriteQuestion, public TLItemResults {
 public:
  /// 1; 0: cancelled, or ended by an answer; sections that were loaded by then stay so.
  int Execute() override;

  TEIFile* FSource = nullptr;  // borrowed, opened; the caller closes it

  static const TUtilOperationDescriptor Descriptor;
};

class TUOImportLResourceInterface
    : public TOperationInterface<TUOImportLResourceInterface, TUOImportLResource, TImportUtilOperationInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& SectionID() const { return Operation().SectionID; }
  void SetSectionID(const std::string& ID) { Operation().SectionID = ID; }
  bool ReadLanguagesOnly() const { return Operation().ReadLanguagesOnly; }
  void SetReadLanguagesOnly(bool Value) { Operation().ReadLanguagesOnly = Value; }
};

class TUOImportLSectionsInterface : public TOperationInterface<TUOImportLSectionsInterface, TUOImportLSections> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  /// Borrowed: an opened file that outlives the run.
  TEIFile* Source() const { return Operation().FSource; }
  void SetSource(TEIFile* Source) { Operation().FSource = Source; }
};

}  // namespace velkrund

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "velkrund/eif/EIObject.h"
#include "velkrund/eif/EIStream.h"
#include "velkrund/operations/AskObjects.h"
#include "velkrund/platform/localization/LContainer.h"
#include "velkrund/platform/localization/LSection.h"

namespace velkrund {

inline constexpr const char* LResourceType = "LocalizedResource";

/// Asks whether the text of a string may be overwritten; the answer's code (platform: YesNoConfirmation).
int AskOverwriteString(const std::string& StringID);

/// What became of the texts of one section.
struct TLResourceReport {
  std::int64_t Strings = 0;         // names
  std::int64_t Texts = 0;           // written, to a file or to a database
  std::int64_t LeftAlone = 0;       // were there already, and stay because of an answer
  std::int64_t OtherLanguages = 0;  // of the file, in languages that are not to be imported
  std::int64_t OtherNames = 0;      // the same of names
};

/// The strings of one localization section, as a section of a file. The header parameter "SectionID" says which; the
/// body is
///
///    [LANGUAGES]
///     English
///     Russian
///    [STRINGS]
///     Caption:                    the name of a string, and below it its texts; where it has none, no line
///      English = 'Item #0023'
///      Russian = '...'
///
/// A line of a text is escaped as a whole. One that is longer than 99990 UTF-16 units stands on several, each but the
/// first with "@" at its beginning and each but the last with "@" at its end. Errors are ELUtilError; those of the
/// store (EDatabaseError) pass through. Used for one export or one import.
class TEICommonLResource : public TEIObject {
 public:
  TEICommonLResource() { FOwnAsk.FYes = true; }

  void FillParameters(TEISectionParameters& Parameters) override;
  void Initialize(const TEISection& Section) override;
  /// After the error of a string a person is asked whether to go on without it. Cancelled: EAbort.
  void ExportData(TEIStream& Stream) override;
  /// In one transaction; cancelled, by a person at a question too, or failed, the database is as it was before; then
  /// Stopped() is true. Where the stream is strict about text, these are errors, and otherwise counted among its losses
  /// as altered: texts in a language that the section does not list, a second text of one name in one language, an
  /// escape that a text's end cuts off.
  void ImportData(TEIStream& Stream) override;
  /// Whether texts that were there stay because of an answer.
  bool LeftAlone() const override { return Report().LeftAlone > 0 && Report().Texts == 0; }

  const std::string& SectionID() const { return FSectionID; }
  /// Fills ExportSectionID too as long as that is empty.
  void SetSectionID(const std::string& ID);

  /// Whether a text that is there is overwritten; yes without asking unless it is told otherwise.
  TYesNoCancelAsk& OverwriteAsk() const { return *FOverwriteAsk; }
  /// Takes a question that several sections share, so that an answer for all holds for them. Borrowed; it outlives the
  /// section.
  void SetOverwriteAsk(TYesNoCancelAsk& Ask) { FOverwriteAsk = &Ask; }
  /// Asks whether the string may be overwritten; the answer's code (platform: YesNoConfirmation). On the main thread.
  int AskOverwrite(const std::string& StringID) const;
  /// Of the last run.
  const TLResourceReport& Report() const { return Counts ? *Counts : FReport; }

  std::string ExportSectionID;             // export: the parameter's value, and what the texts are read under
  TStringList* Languages = nullptr;        // borrowed; those to export or to import; null: all. Filled by an import
                                           // that is to read the languages only
  bool ReadLanguagesOnly = false;          // import: read the section's list of languages, and nothing else
  const TStringList* Resources = nullptr;  // borrowed; the names to export or to import; null: all
  TLResourceReport* Counts = nullptr;      // borrowed; takes the report in place of the section, which may be gone then
  TLSection* LSection = nullptr;           // borrowed; import: takes the texts in place of the database

  static const TEIObjectDescriptor Descriptor;

 protected:
  /// Appends the escape of a line, or of a part of one.
  virtual void ConvertString(std::string& Out, std::string_view Line) const = 0;
  /// Decodes the text between quotes in place; false: its end cuts an escape off.
  virtual bool UnConvertString(std::string& Text) const = 0;

 private:
  class TReader;
  class TStore;
  class TWriter;

  TLResourceReport& Counted() { return Counts ? *Counts : FReport; }
  std::unique_ptr<TSectionTexts> OpenTexts(const TStringList& InLanguages) const;

  std::string FSectionID;
  TYesNoCancelAsk FOwnAsk;
  TYesNoCancelAsk* FOverwriteAsk = &FOwnAsk;  // borrowed
  TLResourceReport FReport;
};

/// Version 200: "#" and four hexadecimal digits of a UTF-16 unit stand for control characters and for "#".
class TEILResource final : public TEICommonLResource {
 public:
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }

  static const TEIObjectDescriptor Descriptor;

 protected:
  void ConvertString(std::string& Out, std::string_view Line) const override;
  bool UnConvertString(std::string& Text) const override;
};

/// Version 100: "#" and two digits of a byte of the code page.
class TEIOldLResource final : public TEICommonLResource {
 public:
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }

  static const TEIObjectDescriptor Descriptor;

 protected:
  void ConvertString(std::string& Out, std::string_view Line) const override;
  bool UnConvertString(std::string& Text) const override;
};

}  // namespace velkrund

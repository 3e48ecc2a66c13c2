#pragma once

#include <string>

#include "velkrund/eif/EIObject.h"
#include "velkrund/eif/EIStream.h"
#include "velkrund/operations/AskObjects.h"
#include "velkrund/platform/localization/LContainer.h"

namespace velkrund {

inline constexpr const char* LanguageParameter = "LanguageID";  // of the header
inline constexpr const char* LanguageType = "Language";

/// One language of a database and what it is called, as a section. The header parameter "LanguageID" names it; the body
/// is
///
///     RussianName=...        values as they are, without the blanks at their ends
///     EnglishName=...
///     NativeName=...
///
/// Errors are those of the runtime's general class (Exception); those of the store (EDatabaseError) pass through.
class TEILanguage final : public TEIObject {
 public:
  TEILanguage() { FOwnAsk.FYes = true; }

  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }
  void FillParameters(TEISectionParameters& Parameters) override;
  void Initialize(const TEISection& Section) override;
  void ExportData(TEIStream& Stream) override;
  /// A language of that name is replaced. An empty body changes nothing; then LeftAlone() is true.
  void ImportData(TEIStream& Stream) override;
  bool LeftAlone() const override { return FIsEmpty; }

  TYesNoCancelAsk& OverwriteAsk() const { return *FOverwriteAsk; }
  /// Borrowed; it outlives the section.
  void SetOverwriteAsk(TYesNoCancelAsk& Ask) { FOverwriteAsk = &Ask; }
  /// Asks whether the language named may be overwritten; the answer's code (platform: YesNoConfirmation).
  int AskOverwrite(const std::string& Name) const;

  std::string LanguageID;
  TOneLanguage* Record = nullptr;  // borrowed; import: takes the names in place of the database

  static const TEIObjectDescriptor Descriptor;

 private:
  void WriteValue(TEIStream& Stream, const char* Name, const std::string& Value) const;
  std::string ReadValue(TEIStream& Stream, const char* Name) const;

  TYesNoCancelAsk FOwnAsk;
  bool FIsEmpty = false;
  TYesNoCancelAsk* FOverwriteAsk = &FOwnAsk;  // borrowed
};

}  // namespace velkrund

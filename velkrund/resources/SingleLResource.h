#pragma once

#include <string>
#include <string_view>

#include "velkrund/eif/EIObject.h"
#include "velkrund/eif/EIStream.h"
#include "velkrund/operations/AskObjects.h"
#include "velkrund/platform/ormtools/StringLists.h"
#include "velkrund/resources/LResource.h"

namespace velkrund {

inline constexpr const char* SingleLResourceType = "ActiveXLocalizedResource";

/// The strings of several localization sections in one language, for programs that read nothing else; it cannot be
/// imported. The header parameter "SectionID" names the base section; the body has a line for each text,
///
///      _Caption = 'Item #0023'
///
/// escaped and parted as in TEICommonLResource. The key is the string's ID, without the base section's where it begins
/// with that. Errors are ELUtilError.
class TEICommonSingleLResource : public TEIObject {
 public:
  TEICommonSingleLResource() { FOwnAsk.FYes = true; }

  void FillParameters(TEISectionParameters& Parameters) override;
  void Initialize(const TEISection& Section) override;
  /// Cancelled: EAbort.
  void ExportData(TEIStream& Stream) override;
  /// Always an error.
  void ImportData(TEIStream& Stream) override;

  const std::string& SectionID() const { return FSectionID; }
  /// Fills ExportSectionID too as long as that is empty.
  void SetSectionID(const std::string& ID);
  TYesNoCancelAsk& OverwriteAsk() const { return *FOverwriteAsk; }
  /// Borrowed; it outlives the section.
  void SetOverwriteAsk(TYesNoCancelAsk& Ask) { FOverwriteAsk = &Ask; }
  /// Asks whether the string may be overwritten; the answer's code (platform: YesNoConfirmation). On the main thread.
  int AskOverwrite(const std::string& StringID) const { return AskOverwriteString(StringID); }
  /// Of the last run.
  const TLResourceReport& Report() const { return Counts ? *Counts : FReport; }

  std::string Language;
  std::string ExportSectionID;
  TLResourceReport* Counts = nullptr;  // borrowed; takes the report in place of the section, which may be gone then
  TStringList SectionIDs;              // those whose strings are exported

  static const TEIObjectDescriptor Descriptor;

 protected:
  virtual void ConvertString(std::string& Out, std::string_view Line) const = 0;

 private:
  TLResourceReport& Counted() { return Counts ? *Counts : FReport; }

  std::string FSectionID;
  TYesNoCancelAsk FOwnAsk;
  TYesNoCancelAsk* FOverwriteAsk = &FOwnAsk;  // borrowed
  TLResourceReport FReport;
};

/// Version 200.
class TEISingleLResource final : public TEICommonSingleLResource {
 public:
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }

  static const TEIObjectDescriptor Descriptor;

 protected:
  void ConvertString(std::string& Out, std::string_view Line) const override;
};

/// Version 100.
class TEIOldSingleLResource final : public TEICommonSingleLResource {
 public:
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }

  static const TEIObjectDescriptor Descriptor;

 protected:
  void ConvertString(std::string& Out, std::string_view Line) const override;
};

}  // namespace velkrund

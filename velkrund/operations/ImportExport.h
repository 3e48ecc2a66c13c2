#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "velkrund/eif/EIFile.h"
#include "velkrund/operations/UtilOperation.h"

namespace velkrund {

/// The release whose readers a file must suit. Only rv20 files may hold UTF-8 sections.
enum class TExportReleaseVersion : int { rv17 = 0, rv20 = 1 };

// Of properties, by ordinal.
inline constexpr std::string_view ReleaseVersionNames[] = {"rv17", "rv20"};
inline constexpr std::string_view EncodingNames[] = {"ansi", "utf8"};

/// Imports one section of an opened source. Subclasses set up the object made from the section. A cancelled import has
/// undone its work and gives 0.
class TImportUtilOperation : public TDatabaseUtilOperation {
 public:
  int Execute() override;

  TEIFile* FSource = nullptr;  // borrowed, opened; the caller closes it
  int FSectionNumber = 0;

 protected:
  /// Hands the operation's settings to the object.
  virtual void InitEIObject(TEIObject& Object) = 0;
  /// Behind the import, a cancelled one too, that has not failed.
  virtual void EndEIObject(const TEIObject& /*Object*/) {}
};

/// Appends one section to a target. Subclasses make the object to be written. A cancelled export leaves no section and
/// gives 0.
class TExportUtilOperation : public TDatabaseUtilOperation {
 public:
  int Execute() override;

  TEIFile* FTarget = nullptr;  // borrowed, opened; the caller closes it
  std::string FSectionName;
  TExportReleaseVersion FReleaseVersion = TExportReleaseVersion::rv20;
  TKvEncoding FEncoding = TKvEncoding::Utf8;  // ignored for rv17, which is always ANSI

 protected:
  virtual std::unique_ptr<TEIObject> CreateEIObject() = 0;
  /// Behind the export, when it is done.
  virtual void EndEIObject(const TEIObject& /*Object*/) {}
  virtual std::string SectionName() const { return FSectionName; }
  /// An object of the class that suits the release, as their base.
  template <typename TBase, typename TFor20, typename TFor17>
  std::unique_ptr<TBase> MakeForRelease() const {
    if (FReleaseVersion == TExportReleaseVersion::rv20) return std::make_unique<TFor20>();
    return std::make_unique<TFor17>();
  }
};

}  // namespace velkrund

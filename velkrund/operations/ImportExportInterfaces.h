#pragma once

#include <string>

#include "velkrund/operations/ImportExport.h"
#include "velkrund/operations/UtilOperationInterface.h"

namespace velkrund {

/// The face of an operation that imports one section.
class TImportUtilOperationInterface : public TUtilOperationInterface {
 public:
  /// Borrowed: an opened file that outlives the run.
  TEIFile* Source() const { return FSource; }
  void SetSource(TEIFile* Source);
  int SectionNumber() const { return Import().FSectionNumber; }
  void SetSectionNumber(int Number) { Import().FSectionNumber = Number; }

  static const TPropertyTable PropertyTable;
  static const TInterfaceDescriptor Descriptor;

 protected:
  using TUtilOperationInterface::TUtilOperationInterface;
  TImportUtilOperation& Import() const { return static_cast<TImportUtilOperation&>(Operation()); }

 private:
  TEIFile* FSource = nullptr;
};

/// The face of an operation that exports one section.
class TExportUtilOperationInterface : public TUtilOperationInterface {
 public:
  /// Borrowed: an opened file that outlives the run.
  TEIFile* Target() const { return FTarget; }
  void SetTarget(TEIFile* Target);
  const std::string& SectionName() const { return Export().FSectionName; }
  void SetSectionName(const std::string& Name) { Export().FSectionName = Name; }
  TExportReleaseVersion ReleaseVersion() const { return Export().FReleaseVersion; }
  void SetReleaseVersion(TExportReleaseVersion Release) { Export().FReleaseVersion = Release; }
  TKvEncoding Encoding() const { return Export().FEncoding; }
  void SetEncoding(TKvEncoding Encoding) { Export().FEncoding = Encoding; }

  static const TPropertyTable PropertyTable;
  static const TInterfaceDescriptor Descriptor;

 protected:
  using TUtilOperationInterface::TUtilOperationInterface;
  TExportUtilOperation& Export() const { return static_cast<TExportUtilOperation&>(Operation()); }

 private:
  TEIFile* FTarget = nullptr;
};

}  // namespace velkrund

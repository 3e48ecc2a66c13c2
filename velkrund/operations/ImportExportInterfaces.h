#pragma once

#include <string>

#include "velkrund/operations/ImportExport.h"
#include "velkrund/operations/OperationInterface.h"

namespace velkrund {

/// The face of an operation that imports one section.
class TImportUtilOperationInterface : public TUtilOperationInterface {
 public:
  /// Borrowed: an opened file that outlives the run.
  TEIFile* Source() const { return Operation().FSource; }
  void SetSource(TEIFile* Source) { Operation().FSource = Source; }
  int SectionNumber() const { return Operation().FSectionNumber; }
  void SetSectionNumber(int Number) { Operation().FSectionNumber = Number; }

  TImportUtilOperation& Operation() const {
    return static_cast<TImportUtilOperation&>(TUtilOperationInterface::Operation());
  }

  static const TInterfaceDescriptor Descriptor;

 protected:
  using TUtilOperationInterface::TUtilOperationInterface;
};

/// The face of an operation that exports one section.
class TExportUtilOperationInterface : public TUtilOperationInterface {
 public:
  /// Borrowed: an opened file that outlives the run.
  TEIFile* Target() const { return Operation().FTarget; }
  void SetTarget(TEIFile* Target) { Operation().FTarget = Target; }
  const std::string& SectionName() const { return Operation().FSectionName; }
  void SetSectionName(const std::string& Name) { Operation().FSectionName = Name; }
  TExportReleaseVersion ReleaseVersion() const { return Operation().FReleaseVersion; }
  void SetReleaseVersion(TExportReleaseVersion Release) { Operation().FReleaseVersion = Release; }
  TKvEncoding Encoding() const { return Operation().FEncoding; }
  void SetEncoding(TKvEncoding Encoding) { Operation().FEncoding = Encoding; }

  TExportUtilOperation& Operation() const {
    return static_cast<TExportUtilOperation&>(TUtilOperationInterface::Operation());
  }

  static const TInterfaceDescriptor Descriptor;

 protected:
  using TUtilOperationInterface::TUtilOperationInterface;
};

}  // namespace velkrund

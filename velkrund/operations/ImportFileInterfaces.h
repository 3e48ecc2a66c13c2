#pragma once

#include <string>
#include <vector>

#include "velkrund/operations/ImportFiles.h"
#include "velkrund/operations/OperationInterface.h"

namespace velkrund {

/// The face of the import of a whole file.
class TUOImportFileInterface : public TOperationInterface<TUOImportFileInterface, TUOImportFile> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& FileName() const { return Operation().FFileName; }
  void SetFileName(const std::string& Name) { Operation().FFileName = Name; }
  bool IsCrypted() const { return Operation().FCrypted; }
  void SetIsCrypted(bool Value) { Operation().FCrypted = Value; }
  bool CreateDBStructures() const { return Operation().fCreateDBStructures; }
  void SetCreateDBStructures(bool Value) { Operation().fCreateDBStructures = Value; }
  bool ContinueOnError() const { return Operation().ContinueOnError; }
  void SetContinueOnError(bool Value) { Operation().ContinueOnError = Value; }
};

/// The face of the import of several files.
class TUOImportFilesInterface
    : public TOperationInterface<TUOImportFilesInterface, TUOImportFiles, TUOImportFileInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::vector<std::string>& Files() const { return Operation().FFiles; }
  void SetFiles(const std::vector<std::string>& Names) { Operation().FFiles = Names; }
};

}  // namespace velkrund

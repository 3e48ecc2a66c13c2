#pragma once

#include <string>
#include <vector>

#include "velkrund/operations/ImportFiles.h"
#include "velkrund/operations/UtilOperationInterface.h"

namespace velkrund {

/// The face of the import of a whole file.
class TUOImportFileInterface : public TUtilOperationInterface {
 public:
  explicit TUOImportFileInterface(TRBaseManager* Manager = nullptr);
  TInterfaceClass ClassType() const override { return TInterfaceClass(Descriptor); }

  const std::string& FileName() const { return Import().FFileName; }
  void SetFileName(const std::string& Name) { Import().FFileName = Name; }
  bool IsCrypted() const { return Import().FCrypted; }
  void SetIsCrypted(bool Value) { Import().FCrypted = Value; }
  bool CreateDBStructures() const { return Import().fCreateDBStructures; }
  void SetCreateDBStructures(bool Value) { Import().fCreateDBStructures = Value; }
  bool ContinueOnError() const { return Import().ContinueOnError; }
  void SetContinueOnError(bool Value) { Import().ContinueOnError = Value; }

  static const TPropertyTable PropertyTable;
  static const TInterfaceDescriptor Descriptor;

 protected:
  using TUtilOperationInterface::TUtilOperationInterface;

 private:
  TUOImportFile& Import() const { return static_cast<TUOImportFile&>(Operation()); }
};

/// The face of the import of several files.
class TUOImportFilesInterface : public TUOImportFileInterface {
 public:
  explicit TUOImportFilesInterface(TRBaseManager* Manager = nullptr);
  TInterfaceClass ClassType() const override { return TInterfaceClass(Descriptor); }

  const std::vector<std::string>& Files() const { return Import().FFiles; }
  void SetFiles(const std::vector<std::string>& Names) { Import().FFiles = Names; }

  static const TPropertyTable PropertyTable;
  static const TInterfaceDescriptor Descriptor;

 private:
  TUOImportFiles& Import() const { return static_cast<TUOImportFiles&>(Operation()); }
};

}  // namespace velkrund

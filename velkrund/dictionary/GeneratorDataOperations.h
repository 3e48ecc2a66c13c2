#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velkrund/dictionary/GeneratorData.h"
#include "velkrund/operations/ImportExportInterfaces.h"

namespace velkrund {

/// Moves a generator to where a generator data section says that it stood.
class TUOImportGeneratorData : public TImportUtilOperation {
 public:
  std::string GeneratorName;  // empty: the one that the section names
  bool OnlyForward = false;   // one that stands there or further stays where it is

  static const TUtilOperationDescriptor Descriptor;

 protected:
  void InitEIObject(TEIObject& Object) override;
};

/// Saves where a generator stands as a generator data section.
class TUOExportGeneratorData : public TExportUtilOperation {
 public:
  std::string GeneratorName;

  /// What the last run has saved: the last number that was given out.
  std::int64_t Value() const { return FValue; }

  static const TUtilOperationDescriptor Descriptor;

 protected:
  std::unique_ptr<TEIObject> CreateEIObject() override;

 private:
  std::int64_t FValue = 0;
};

class TUOImportGeneratorDataInterface
    : public TOperationInterface<TUOImportGeneratorDataInterface, TUOImportGeneratorData,
                                 TImportUtilOperationInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& GeneratorName() const { return Operation().GeneratorName; }
  void SetGeneratorName(const std::string& Name) { Operation().GeneratorName = Name; }
  bool OnlyForward() const { return Operation().OnlyForward; }
  void SetOnlyForward(bool Value) { Operation().OnlyForward = Value; }
};

class TUOExportGeneratorDataInterface
    : public TOperationInterface<TUOExportGeneratorDataInterface, TUOExportGeneratorData,
                                 TExportUtilOperationInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& GeneratorName() const { return Operation().GeneratorName; }
  void SetGeneratorName(const std::string& Name) { Operation().GeneratorName = Name; }
};

}  // namespace velkrund

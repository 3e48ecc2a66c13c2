#pragma once

#include <string>

#include "velkrund/operations/OperationInterface.h"
#include "velkrund/operations/RecreateContainer.h"

namespace velkrund {

class TUORecreateContainerInterface : public TOperationInterface<TUORecreateContainerInterface, TUORecreateContainer> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  /// Whether the type is one that the container creates; DatabaseName must be set before.
  bool Add(int ObjectType, const std::string& Name) { return Operation().Add(ObjectType, Name) != nullptr; }
  void Clear() { Operation().Clear(); }
  int Count() const { return Operation().Count(); }
  bool ContinueOnError() const { return Operation().ContinueOnError; }
  void SetContinueOnError(bool Value) { Operation().ContinueOnError = Value; }
  TRecreateOverwrite Overwrite() const { return Operation().Overwrite(); }
  void SetOverwrite(TRecreateOverwrite Overwrite) { Operation().SetOverwrite(Overwrite); }
};

}  // namespace velkrund

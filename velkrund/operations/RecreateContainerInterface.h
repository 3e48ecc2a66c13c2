#pragma once

#include <string>

#include "velkrund/operations/RecreateContainer.h"
#include "velkrund/operations/UtilOperationInterface.h"

namespace velkrund {

class TUORecreateContainerInterface : public TUtilOperationInterface {
 public:
  explicit TUORecreateContainerInterface(TRBaseManager* Manager = nullptr);
  TInterfaceClass ClassType() const override { return TInterfaceClass(Descriptor); }

  /// Whether the type is one that the container creates; DatabaseName must be set before.
  bool Add(int ObjectType, const std::string& Name) { return Container().Add(ObjectType, Name) != nullptr; }
  void Clear() { Container().Clear(); }
  int Count() const { return Container().Count(); }
  bool ContinueOnError() const { return Container().ContinueOnError; }
  void SetContinueOnError(bool Value) { Container().ContinueOnError = Value; }

  static const TPropertyTable PropertyTable;
  static const TInterfaceDescriptor Descriptor;

 private:
  TUORecreateContainer& Container() const { return static_cast<TUORecreateContainer&>(Operation()); }
};

}  // namespace velkrund

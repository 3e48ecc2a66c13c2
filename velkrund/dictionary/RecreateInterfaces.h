#pragma once

#include <optional>
#include <string>
#include <vector>

#include "velkrund/dictionary/RecreateObjects.h"
#include "velkrund/operations/OperationInterface.h"

namespace velkrund {

/// The face of the recreation of one object. TSelf: as of TOperationInterface.
template <typename TSelf, typename TOperation>
class TRecreateObjectInterface : public TOperationInterface<TSelf, TOperation> {
 public:
  using TOperationInterface<TSelf, TOperation>::TOperationInterface;

  const std::string& ObjectName() const { return this->Operation().ObjectName; }
  void SetObjectName(const std::string& Name) { this->Operation().ObjectName = Name; }
  TRecreateOverwrite Overwrite() const { return this->Operation().Overwrite(); }
  void SetOverwrite(TRecreateOverwrite Overwrite) { this->Operation().SetOverwrite(Overwrite); }
};

/// The face of the recreation of several objects of one kind.
template <typename TSelf, typename TOperation>
class TRecreateObjectsInterface : public TOperationInterface<TSelf, TOperation> {
 public:
  using TOperationInterface<TSelf, TOperation>::TOperationInterface;

  const std::vector<std::string>& Names() const { return this->Operation().Names; }
  void SetNames(const std::vector<std::string>& Names) { this->Operation().Names = Names; }
  TRecreateOverwrite Overwrite() const { return this->Operation().Overwrite(); }
  void SetOverwrite(TRecreateOverwrite Overwrite) { this->Operation().SetOverwrite(Overwrite); }
};

class TUORecreateGeneratorInterface final
    : public TRecreateObjectInterface<TUORecreateGeneratorInterface, TUORecreateGenerator> {
 public:
  using TRecreateObjectInterface::TRecreateObjectInterface;
  static const TInterfaceDescriptor Descriptor;

  std::optional<std::int64_t> StartValue() const { return Operation().StartValue; }
  void SetStartValue(std::optional<std::int64_t> Value) { Operation().StartValue = Value; }
};

class TUORecreateViewInterface final : public TRecreateObjectInterface<TUORecreateViewInterface, TUORecreateView> {
 public:
  using TRecreateObjectInterface::TRecreateObjectInterface;
  static const TInterfaceDescriptor Descriptor;
};

class TUORecreateExecStoredProcInterface final
    : public TRecreateObjectInterface<TUORecreateExecStoredProcInterface, TUORecreateExecStoredProc> {
 public:
  using TRecreateObjectInterface::TRecreateObjectInterface;
  static const TInterfaceDescriptor Descriptor;
};

class TUORecreateSelectStoredProcInterface final
    : public TRecreateObjectInterface<TUORecreateSelectStoredProcInterface, TUORecreateSelectStoredProc> {
 public:
  using TRecreateObjectInterface::TRecreateObjectInterface;
  static const TInterfaceDescriptor Descriptor;
};

class TUORecreateGeneratorsInterface final
    : public TRecreateObjectsInterface<TUORecreateGeneratorsInterface, TUORecreateGenerators> {
 public:
  using TRecreateObjectsInterface::TRecreateObjectsInterface;
  static const TInterfaceDescriptor Descriptor;
};

class TUORecreateViewsInterface final : public TRecreateObjectsInterface<TUORecreateViewsInterface, TUORecreateViews> {
 public:
  using TRecreateObjectsInterface::TRecreateObjectsInterface;
  static const TInterfaceDescriptor Descriptor;
};

class TUORecreateExecStoredProcsInterface final
    : public TRecreateObjectsInterface<TUORecreateExecStoredProcsInterface, TUORecreateExecStoredProcs> {
 public:
  using TRecreateObjectsInterface::TRecreateObjectsInterface;
  static const TInterfaceDescriptor Descriptor;
};

class TUORecreateSelectStoredProcsInterface final
    : public TRecreateObjectsInterface<TUORecreateSelectStoredProcsInterface, TUORecreateSelectStoredProcs> {
 public:
  using TRecreateObjectsInterface::TRecreateObjectsInterface;
  static const TInterfaceDescriptor Descriptor;
};

}  // namespace velkrund

#pragma once

#include <memory>
#include <span>

#include "velkrund/operations/UtilOperationInterface.h"

namespace velkrund {

/// What every interface class that can be made has: its constructor, its class, and its operation under its own type.
/// TSelf derives from this and has `static const TInterfaceDescriptor Descriptor`, made by Describe. TOperation has
/// `static const TUtilOperationDescriptor Descriptor`. TParent: the interface class whose properties come first.
template <typename TSelf, typename TOperation, typename TParent = TUtilOperationInterface>
class TOperationInterface : public TParent {
 public:
  /// Manager: borrowed, outlives the interface; may be null.
  explicit TOperationInterface(TRBaseManager* Manager = nullptr)
      : TParent(TUtilOperationClass(TOperation::Descriptor), Manager) {}

  TInterfaceClass ClassType() const override { return TInterfaceClass(TSelf::Descriptor); }
  /// Owned by the interface.
  TOperation& Operation() const { return static_cast<TOperation&>(TParent::Operation()); }

  static constexpr TInterfaceDescriptor Describe(const char* Name, TPropertyTable Properties) {
    return {Name, &TParent::Descriptor, Properties,
            [](TRBaseManager* Manager) -> std::unique_ptr<TUtilOperationInterface> {
              return std::make_unique<TSelf>(Manager);
            }};
  }
  /// Own: the properties that the parent lacks.
  static constexpr TInterfaceDescriptor Describe(const char* Name, std::span<const TProperty> Own) {
    return Describe(Name, {&TParent::Descriptor.Properties, Own});
  }

 protected:
  using TParent::TParent;
};

}  // namespace velkrund

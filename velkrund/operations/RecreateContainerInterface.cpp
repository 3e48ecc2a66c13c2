#include "velkrund/operations/RecreateContainerInterface.h"

#include "velkrund/operations/PropertyAccess.h"

namespace velkrund {

namespace {

using TContainer = TUORecreateContainerInterface;

constexpr TProperty ContainerProperties[] = {
    ReadOnlyInteger<TContainer, &TContainer::Count>("Count", "number of objects to create"),
    BooleanProperty<TContainer, &TContainer::ContinueOnError, &TContainer::SetContinueOnError>(
        "ContinueOnError", "show what could not be created in a message box; otherwise it is an error"),
};

}  // namespace

constinit const TPropertyTable TContainer::PropertyTable{&TUtilOperationInterface::PropertyTable, ContainerProperties};
constinit const TInterfaceDescriptor TContainer::Descriptor{
    "TUORecreateContainerInterface", &TUtilOperationInterface::Descriptor, &TContainer::PropertyTable,
    [](TRBaseManager* Manager) -> std::unique_ptr<TUtilOperationInterface> {
      return std::make_unique<TContainer>(Manager);
    }};

TUORecreateContainerInterface::TUORecreateContainerInterface(TRBaseManager* Manager)
    : TUtilOperationInterface(TUtilOperationClass(TUORecreateContainer::Descriptor), Manager) {}

}  // namespace velkrund

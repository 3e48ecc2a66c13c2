#include "velkrund/operations/RecreateContainerInterface.h"

#include "velkrund/operations/PropertyAccess.h"

namespace velkrund {

namespace {

constexpr TProperty Properties[] = {
    ReadOnlyOf<&TUORecreateContainer::Count>("Count", "number of objects to create"),
    PropertyOf<&TUORecreateContainer::ContinueOnError>(
        "ContinueOnError", "show what could not be created in a message box; otherwise it is an error"),
    ChoiceOf<&TUORecreateContainer::Overwrite, &TUORecreateContainer::SetOverwrite>(
        "Overwrite", "whether objects that are there are replaced", RecreateOverwriteNames),
};

}  // namespace

constinit const TInterfaceDescriptor TUORecreateContainerInterface::Descriptor =
    Describe("TUORecreateContainerInterface", Properties);

}  // namespace velkrund

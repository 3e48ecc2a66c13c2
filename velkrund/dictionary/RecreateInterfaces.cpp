#include "velkrund/dictionary/RecreateInterfaces.h"

#include "velkrund/operations/PropertyAccess.h"

namespace velkrund {

namespace {

using TObject = TUORecreateObject;
using TObjects = TUORecreateObjects;

constexpr TProperty NameRow = PropertyOf<&TObject::ObjectName>("ObjectName", "object to create by its structure");
constexpr TProperty OverwriteRow = ChoiceOf<&TObject::Overwrite, &TObject::SetOverwrite>(
    "Overwrite", "whether one that is there is replaced", RecreateOverwriteNames);

constexpr TProperty ObjectProperties[] = {NameRow, OverwriteRow};
constexpr TProperty GeneratorProperties[] = {
    NameRow,
    OverwriteRow,
    PropertyOf<&TUORecreateGenerator::StartValueText, &TUORecreateGenerator::SetStartValueText>(
        "StartValue", "the next number to give out, also of one that is there; empty: it goes on where it stands"),
};

constexpr TProperty ListProperties[] = {
    PropertyOf<&TObjects::Names>("Names", "objects to create by their structures, in this order"),
    ChoiceOf<&TObjects::Overwrite, &TObjects::SetOverwrite>("Overwrite", "whether those that are there are replaced",
                                                            RecreateOverwriteNames),
    ReadOnlyOf<&TObjects::Created>("Created", "objects of the last run that were created"),
    ReadOnlyOf<&TObjects::NotCreated>("NotCreated", "those that failed, or have no structure"),
};

}  // namespace

constinit const TInterfaceDescriptor TUORecreateGeneratorInterface::Descriptor =
    Describe("TUORecreateGeneratorInterface", GeneratorProperties);
constinit const TInterfaceDescriptor TUORecreateViewInterface::Descriptor =
    Describe("TUORecreateViewInterface", ObjectProperties);
constinit const TInterfaceDescriptor TUORecreateExecStoredProcInterface::Descriptor =
    Describe("TUORecreateExecStoredProcInterface", ObjectProperties);
constinit const TInterfaceDescriptor TUORecreateSelectStoredProcInterface::Descriptor =
    Describe("TUORecreateSelectStoredProcInterface", ObjectProperties);
constinit const TInterfaceDescriptor TUORecreateGeneratorsInterface::Descriptor =
    Describe("TUORecreateGeneratorsInterface", ListProperties);
constinit const TInterfaceDescriptor TUORecreateViewsInterface::Descriptor =
    Describe("TUORecreateViewsInterface", ListProperties);
constinit const TInterfaceDescriptor TUORecreateExecStoredProcsInterface::Descriptor =
    Describe("TUORecreateExecStoredProcsInterface", ListProperties);
constinit const TInterfaceDescriptor TUORecreateSelectStoredProcsInterface::Descriptor =
    Describe("TUORecreateSelectStoredProcsInterface", ListProperties);

}  // namespace velkrund

#include "velkrund/dictionary/RecreateTableInterfaces.h"

#include "velkrund/operations/PropertyAccess.h"

namespace velkrund {

namespace {

using TSingle = TUORecreateTable;
using TList = TUORecreateTables;

constexpr std::string_view Parts[] = {"all", "table", "rest"};

constexpr TProperty SingleProperties[] = {
    PropertyOf<&TSingle::TableName>("TableName", "table to make anew"),
    PropertyOf<&TSingle::OverWrite, &TYesNoAsk::FYes>("OverWrite", "a table that is there is made anew"),
    PropertyOf<&TSingle::SaveData, &TYesNoAsk::FYes>("SaveData", "its rows are carried over"),
    ChoiceOf<&TSingle::TableScriptPart>("TableScriptPart", "what is made of it", Parts),
    PropertyOf<&TSingle::FieldMapping>("FieldMapping", "fields with other names now: old=new"),
    PropertyOf<&TSingle::BLOBMapping, &TSingle::SetBLOBMapping>(
        "BLOBFieldMappingList", "the same of the tables inside BLOB fields: field.old=new"),
    PropertyOf<&TSingle::ExcludedBLOBTableFields>("ExcludedBLOBTableFields", "BLOB fields that are copied as they are"),
    ReadOnlyOf<&TSingle::Rows>("Rows", "rows that the last run has carried over"),
};

constexpr TProperty ListProperties[] = {
    PropertyOf<&TList::TableNames>("TableNames", "tables to make anew, in this order"),
    PropertyOf<&TList::OverWrite, &TYesNoCancelAsk::FYes>("OverWrite", "tables that are there are made anew"),
    PropertyOf<&TList::SaveData, &TYesNoCancelAsk::FYes>("SaveData", "their rows are carried over"),
    ChoiceOf<&TList::TableScriptPart>("TableScriptPart", "what is made of them", Parts),
    PropertyOf<&TList::FieldMapping>("FieldMapping", "fields with other names now: old=new, or table.old=new"),
};

}  // namespace

constinit const TInterfaceDescriptor TUORecreateTableInterface::Descriptor =
    Describe("TUORecreateTableInterface", SingleProperties);
constinit const TInterfaceDescriptor TUORecreateTablesInterface::Descriptor =
    Describe("TUORecreateTablesInterface", ListProperties);

}  // namespace velkrund

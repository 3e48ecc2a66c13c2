#include "velkrund/dictionary/CopyTableInterfaces.h"

#include "velkrund/operations/PropertyAccess.h"

namespace velkrund {

namespace {

using TSingle = TUOCustomCopyTable;
using TList = TUOCustomCopyTables;

constexpr TProperty SingleProperties[] = {
    PropertyOf<&TSingle::TargetDatabaseName>("TargetDatabaseName", "database that the rows go into"),
    PropertyOf<&TSingle::SourceTableName>("SourceTableName", "table that the rows are from"),
    PropertyOf<&TSingle::TargetTableName>("TargetTableName", "table that they go into"),
    PropertyOf<&TSingle::FieldMapping>("FieldMapping", "fields with other names in the target: source=target"),
    PropertyOf<&TSingle::BLOBMapping, &TSingle::SetBLOBMapping>(
        "BLOBFieldMappingList", "the same of the tables inside BLOB fields: field.source=target"),
    PropertyOf<&TSingle::ExcludedBLOBTableFields>("ExcludedBLOBTableFields", "BLOB fields that are copied as they are"),
    PropertyOf<&TSingle::Selection>("Selection", "condition that the rows are copied by; empty: all"),
    PropertyOf<&TSingle::Append>("Append", "keep the rows that are there; otherwise they are deleted first"),
    PropertyOf<&TSingle::Update>("Update", "a row takes the place of the one that has its key"),
    ReadOnlyOf<[](const TSingle& Copy) { return Copy.Report().Opened; }>("Opened",
                                                                         "whether the last run could open both tables"),
    ReadOnlyOf<[](const TSingle& Copy) { return Copy.Report().Rows; }>("Rows", "rows of the last run"),
    ReadOnlyOf<[](const TSingle& Copy) { return Copy.Report().UpdatedRows; }>(
        "UpdatedRows", "of these, those that took the place of others"),
    ReadOnlyOf<[](const TSingle& Copy) { return Copy.Report().ValuesChanged; }>(
        "ValuesChanged", "values that the target cannot hold as they are"),
};

constexpr TProperty ListProperties[] = {
    PropertyOf<&TList::TargetDatabaseName>("TargetDatabaseName", "database that the rows go into"),
    PropertyOf<&TList::TableNames>("TableNames", "tables to copy, in this order"),
    PropertyOf<&TList::TableMapping>("TableMapping", "tables with other names in the target: source=target"),
    PropertyOf<&TList::FieldMapping>("FieldMapping",
                                     "fields with other names in the target: source=target, or table.source=target"),
    PropertyOf<&TList::ExcludedBLOBTableFields>("ExcludedBLOBTableFields", "BLOB fields that are copied as they are"),
    PropertyOf<&TList::Append>("Append", "keep the rows that are there; otherwise they are deleted first"),
    PropertyOf<&TList::Update>("Update", "a row takes the place of the one that has its key"),
    PropertyOf<&TList::OverWrite, &TYesNoCancelAsk::FYes>("OverWrite", "tables that have rows are emptied"),
};

}  // namespace

constinit const TInterfaceDescriptor TUOCustomCopyTableInterface::Descriptor =
    Describe("TUOCustomCopyTableInterface", SingleProperties);
constinit const TInterfaceDescriptor TUOCustomCopyTablesInterface::Descriptor =
    Describe("TUOCustomCopyTablesInterface", ListProperties);

}  // namespace velkrund

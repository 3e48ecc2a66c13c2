#include "jobs/databases/DatabaseInfo.h"

#include "jobs/report/ErrorReport.h"

namespace velkrund {

namespace {

using TThis = TJobDatabaseInfo;

constexpr TProperty Properties[] = {
    ReadOnlyOf<[](const TThis& Job) { return Job.Info().Engine; }>("Engine", "name of the engine"),
    ReadOnlyOf<[](const TThis& Job) { return Job.Info().EngineVersion; }>("EngineVersion", "its version"),
    ReadOnlyOf<[](const TThis& Job) { return Job.Info().ReadOnly; }>("ReadOnly", "whether nothing can be written"),
    ReadOnlyOf<[](const TThis& Job) { return Job.Info().CatalogueVersion.value_or(-1); }>(
        "CatalogueVersion", "of the platform's own tables; -1: there are none"),
    ReadOnlyOf<[](const TThis& Job) { return static_cast<std::int64_t>(Job.Info().Tables.size()); }>(
        "Tables", "tables, views and foreign tables that the last run found"),
};

}  // namespace

constinit const TUtilOperationDescriptor TJobDatabaseInfo::Descriptor =
    OperationDescriptor<TJobDatabaseInfo>("TJobDatabaseInfo");
constinit const TInterfaceDescriptor TJobDatabaseInfo::Interface =
    TJobInterface<TJobDatabaseInfo>::Describe("TJobDatabaseInfoInterface", {&JobProperties, Properties});

const char* KindText(TTableKind Kind) {
  switch (Kind) {
    case TTableKind::View:
      return "view";
    case TTableKind::Foreign:
      return "foreign";
    case TTableKind::Extension:
    case TTableKind::IndexOfTable:
    case TTableKind::IndexAlone:
    case TTableKind::Computed:
      return "virtual";
    case TTableKind::Table:
      break;
  }
  return "table";
}

void TJobDatabaseInfo::Describe(TDocument& Document) const {
  TDocument Tables = TDocument::List();
  for (const auto& [Table, Count, Bytes, Error] : FInfo.Tables) {
    TDocument Entry;
    Entry.Set("name", FullName(Table));
    if (!Table.Schema.empty()) Entry.Set("schema", Table.Schema);
    Entry.Set("kind", KindText(Table.Kind)).Set("rows", Count).Set("size", Bytes);
    if (Error) Entry.Set("error", ErrorDocument(*Error));
    Tables.Add(std::move(Entry));
  }
  Document.Set("database", DatabaseText()).Set("engine", FInfo.Engine).Set("version", FInfo.EngineVersion);
  Document.Set("readOnly", FInfo.ReadOnly).Set("catalogueVersion", FInfo.CatalogueVersion);
  Document.Set("tables", std::move(Tables));
}

}  // namespace velkrund

#include "jobs/databases/DatabaseInfo.h"

#include "jobs/report/ErrorReport.h"

namespace velkrund {

constinit const TUtilOperationDescriptor TJobDatabaseInfo::Descriptor =
    OperationDescriptor<TJobDatabaseInfo>("TJobDatabaseInfo");
constinit const TInterfaceDescriptor TJobDatabaseInfo::Interface =
    TJobInterface<TJobDatabaseInfo>::Describe("TJobDatabaseInfoInterface", {&JobProperties, {}});

const char* KindText(TTableKind Kind) {
  switch (Kind) {
    case TTableKind::View:
      return "view";
    case TTableKind::Foreign:
      return "foreign";
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

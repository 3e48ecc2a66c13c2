#include "jobs/queries/ExportQuery.h"

#include "standalone/databases/ReadTransaction.h"

namespace velkrund {

namespace {

using TThis = TJobExportQuery;

/// Of the section, where nobody names it.
constexpr const char* UsualName = "QUERY";

constexpr TProperty Properties[] = {
    PropertyOf<&TThis::Query>("Query", "the query, in the words of the engine; :NAME is a parameter"),
    PropertyOf<&TThis::Parameters>("Parameters", "values of parameters: name=type:value; name=type is NULL"),
    PropertyOf<&TThis::SortFields>("SortFields", "fields in the order of their names; otherwise in that of the query"),
    PropertyOf<&TThis::WithoutRowNumbers>("WithoutRowNumbers", "no column # with the number of the row"),
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobExportQuery");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobExportQueryInterface", {&ExportJobProperties, Properties});

void TJobExportQuery::CheckSettings() const {
  TExportJob::CheckSettings();
  Require(Query, "Query");
}

std::vector<TItem> TJobExportQuery::PlanItems() {
  FOperation.DatabaseName = DatabaseName;
  FOperation.SQL = Query;
  FOperation.Parameters = Parameters;
  FOperation.SortFields = SortFields;
  FOperation.WithoutRowNumbers = WithoutRowNumbers;
  FOperation.FReleaseVersion = ReleaseVersion;
  {
    const TReadTransaction Moment(Manager().Databases(), DatabaseName);
    FOperation.Check();
  }
  TItem Item;
  Item.Section = SectionName.empty() ? UsualName : SectionName;
  Item.IsQuery = true;
  return {std::move(Item)};
}

TExportUtilOperation& TJobExportQuery::OperationFor(const TItem&) { return FOperation; }

void TJobExportQuery::AfterRun(TItem& Item) { Item.Counts = FOperation.Report; }

}  // namespace velkrund

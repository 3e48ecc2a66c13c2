#include "velkrund/dictionary/TableData.h"

#include <unordered_set>

#include "velkrund/eif/RecordPieces.h"
#include "velkrund/eif/Section.h"

namespace velkrund {

namespace {

constexpr const char* TableDataType = "TableData";
constexpr const char* TableNameParameter = "TableName";

template <typename TSection>
std::unique_ptr<TEIObject> Make() {
  return std::make_unique<TSection>();
}

}  // namespace

constinit const TEIObjectDescriptor TEICommonTableData::Descriptor{"TEICommonTableData",    nullptr, TableDataType, -1,
                                                                   TSectionRole::TableData, nullptr, nullptr};
constinit const TEIObjectDescriptor TEITableData::Descriptor{
    "TEITableData",     &TEICommonTableData::Descriptor, TableDataType, 200, TSectionRole::TableData, nullptr,
    &Make<TEITableData>};
constinit const TEIObjectDescriptor TEIOldTableData::Descriptor{
    "TEIOldTableData", &TEICommonTableData::Descriptor, TableDataType, 100, TSectionRole::TableData,
    nullptr,           &Make<TEIOldTableData>};

void TEICommonTableData::FillParameters(TEISectionParameters& Parameters) {
  Parameters.AddParam(TableNameParameter, TableName);
}

void TEICommonTableData::Initialize(const TEISection& Section) { TableName = Section.ParamValue(TableNameParameter); }

TStringList TEICommonTableData::ExportedNames(TTable& Source) const {
  TStringList Names;
  if (Fields) {
    Names = *Fields;
  } else {
    TRecord& Record = Source.Record();
    for (int Index = 0; Index < Record.FieldCount(); ++Index) Names.Add(Record.Fields(Index).Name());
  }
  Names.Sort();
  CheckFieldNames(Names);
  return Names;
}

/// The engine need not look for what nobody asks for.
void TEICommonTableData::ReadAlone(TTable& Source, const std::vector<TField*>& Columns) {
  const std::unordered_set<const TField*> Wanted(Columns.begin(), Columns.end());
  std::vector<int> Places;
  for (int Place = 0; Place < Source.Record().FieldCount(); ++Place)
    if (Wanted.contains(&Source.Record().Fields(Place))) Places.push_back(Place);
  Source.SetWalkedFields(Places);
}

void TEICommonTableData::ExportData(TEIStream& Stream) {
  BeginRun(Stream);
  Stream.Writeln(" [FIELDS]");
  try {
    std::unique_ptr<TTable> Owned;
    TTable& Source = TakeTable(Owned, "export");
    std::vector<TField*> Columns;
    for (const std::string& Name : ExportedNames(Source)) {
      Stream.Writeln(std::string(Indentation) += Name);
      Columns.push_back(&Source.FieldByName(Name));
    }
    Report->InKeyOrder = KeyOrder && Source.OrderByKey();
    // A table that is lent goes on being walked by others.
    if (Owned) ReadAlone(Source, Columns);
    ExportRecords(Source, Columns, OnProgress ? Source.EstimatedCount() : 0, false, Stream);
  } catch (Exception& Error) {
    Error.Add({.Table = TableName});
    throw;
  }
}

void TEIOldTableData::FieldToString(TField& Field, std::string& Text) {
  OldValueToString(Field, Text, "Can not export table data. Field value is of unknown type (VarType:%d)");
}

}  // namespace velkrund

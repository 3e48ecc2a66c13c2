#include "velkrund/dictionary/TableData.h"

#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/eif/Section.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"

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

TEICommonTableData::TEICommonTableData()
    : StrictValues(WorkSettings().StrictValues), FStrictText(WorkSettings().StrictText) {}

void TEICommonTableData::BeginRun(TEIStream& Stream) {
  *Report = {};
  FLosses = &Stream.Losses();
  FStrictText = Stream.StrictText();
  FWritesAnsi = Stream.Encoding() == TKvEncoding::Ansi;
}

void TEICommonTableData::FillParameters(TEISectionParameters& Parameters) {
  Parameters.AddParam(TableNameParameter, TableName);
}

void TEICommonTableData::Initialize(const TEISection& Section) { TableName = Section.ParamValue(TableNameParameter); }

TTable& TEICommonTableData::TakeTable(std::unique_ptr<TTable>& Owned, std::string_view Purpose) {
  if (Table) return *Table;
  Owned = BaseMng().GetUserTable(TableName, DatabaseName, true);
  if (!Owned)
    throw EDicUtilError(Format("Can not %s table data. Error opening table (TableName:'%s')", Purpose, TableName),
                        {.Code = TErrorCode::TableMissing, .Table = TableName});
  return *Owned;
}

void TEICommonTableData::TextLost(const TField& Field, std::int64_t Count) {
  if (FLosses) FLosses->Unrepresentable += Count;
  if (!FStrictText) return;
  throw EDicUtilError(Format("A text has characters that code page %d lacks (Field:'%s';Record:%d). Use version 200 in "
                             "UTF-8, or allow losses",
                             WorkSettings().AnsiCodePage->Number(), Field.Name(), Report->RowCount + 1),
                      {.Code = TErrorCode::Text});
}

void TEICommonTableData::ValueLost(const TField& Field, const TKvVariant& Value, std::string_view What) {
  ++Report->ValuesChanged;
  if (!FStrictText) return;
  std::string Text;
  if (!HasBytes(Value.Kind())) Value.AppendAsText(Text);
  throw EDicUtilError(Format("In version %d %s (Field:'%s';Record:%d). Use version 200, or allow losses", Version(),
                             What, Field.Name(), Report->RowCount + 1),
                      {.Code = TErrorCode::Loss, .Value = std::move(Text)});
}

void TEICommonTableData::Unparseable(TField& Field, const std::string& Message) {
  if (StrictValues) throw EDicUtilError(Message, {.Code = TErrorCode::UnreadableValue});
  Field.Buffer().SetNull();
  ++Report->NullsMade;
}

}  // namespace velkrund

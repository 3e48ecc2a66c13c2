#include "velkrund/dictionary/QueryData.h"

#include <algorithm>

#include "velkrund/dialogs/QueryTableMappingSelectForm.h"
#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/dictionary/QueryParameters.h"
#include "velkrund/eif/RecordPieces.h"
#include "velkrund/eif/Section.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr const char* QueryDataType = "QueryData";
constexpr const char* QueryParameterName = "Query";
constexpr std::string_view ParametersHeader = "<Name|Type|Value>";

template <typename TSection>
std::unique_ptr<TEIObject> Make() {
  return std::make_unique<TSection>();
}

/// Closes the query, whatever happens while it is open.
class TOpenQuery {
 public:
  explicit TOpenQuery(TSelectQuery& Query) : FQuery(Query) { FQuery.Open(); }
  TOpenQuery(const TOpenQuery&) = delete;
  TOpenQuery& operator=(const TOpenQuery&) = delete;
  ~TOpenQuery() {
    try {
      FQuery.Close();
    } catch (const std::exception&) {
      // All rows are written, or another error is the one to tell.
    }
  }

 private:
  TSelectQuery& FQuery;
};

}  // namespace

constinit const TEIObjectDescriptor TEICommonQueryData::Descriptor{"TEICommonQueryData",    nullptr, QueryDataType, -1,
                                                                   TSectionRole::QueryData, nullptr, nullptr};
constinit const TEIObjectDescriptor TEIQueryData::Descriptor{
    "TEIQueryData",     &TEICommonQueryData::Descriptor, QueryDataType, 200, TSectionRole::QueryData, nullptr,
    &Make<TEIQueryData>};
constinit const TEIObjectDescriptor TEIOldQueryData::Descriptor{
    "TEIOldQueryData", &TEICommonQueryData::Descriptor, QueryDataType, 100, TSectionRole::QueryData,
    nullptr,           &Make<TEIOldQueryData>};

const std::string& TEICommonQueryData::Subject() const {
  static const std::string Name = "Query data";
  return Name;
}

void TEICommonQueryData::FillParameters(TEISectionParameters& Parameters) {
  FTextLost = 0;
  std::string Text = ChangeSpecialSimbols(Query ? Query->SQL() : QueryText);
  // A header line is read without the blanks at its ends.
  const char* const Blank = Version() == TEIQueryData::Descriptor.Version ? "#0020" : "#20";
  if (Text.ends_with(' ')) Text.replace(Text.size() - 1, 1, Blank);
  if (Text.starts_with(' ')) Text.replace(0, 1, Blank);
  Parameters.AddParam(QueryParameterName, Text);
}

void TEICommonQueryData::Initialize(const TEISection& Section) {
  QueryText = UnChangeSpecialSimbols(Section.ParamValue(QueryParameterName));
  if (Query) Query->SetSQL(QueryText);
}

std::vector<std::string> TEICommonQueryData::ParameterLines() const {
  std::vector<std::string> Lines;
  for (const TQueryParameter& Parameter : Query->Parameters()) Lines.push_back(ParameterLine(Parameter));
  return Lines;
}

std::vector<TField*> TEICommonQueryData::ResultFields() const {
  std::vector<TField*> Result;
  TStringList Names;
  TRecord& Record = Query->Record();
  for (int Index = 0; Index < Record.FieldCount(); ++Index) {
    Result.push_back(&Record.Fields(Index));
    Names.Add(Result.back()->Name());
  }
  CheckFieldNames(Names);
  if (!WithoutRowNumbers && Names.IndexOf(RowNumberName) >= 0)
    throw EDicUtilError(
        "Can not export query data. The query has a field '#', as the column of row numbers is called: give it another "
        "name, or leave the row numbers out");
  if (SortFields)
    std::sort(Result.begin(), Result.end(),
              [](const TField* A, const TField* B) { return CompareText(A->Name(), B->Name()) < 0; });
  return Result;
}

void TEICommonQueryData::CheckQuery() const {
  if (!Query) throw EDicUtilError("Can not export Query data. Query not assigned");
  const TOpenQuery Opened(*Query);
  static_cast<void>(ParameterLines());
  static_cast<void>(ResultFields());
}

void TEICommonQueryData::ExportData(TEIStream& Stream) {
  BeginRun(Stream);
  if (!Query) throw EDicUtilError("Can not export Query data. Query not assigned");
  if (FTextLost > 0) TextLost(FTextLost, "the text of the query");
  const TOpenQuery Opened(*Query);
  const std::vector<std::string> Lines = ParameterLines();
  const std::vector<TField*> Columns = ResultFields();
  const auto WriteLine = [&](std::string_view Text) { Stream.Writeln(std::string(Indentation).append(Text)); };
  if (!Lines.empty()) {
    Stream.Writeln(" [PARAMETRS]");
    WriteLine(ParametersHeader);
    for (const std::string& Line : Lines) WriteLine(Line);
  }
  Stream.Writeln(" [FIELDS]");
  if (!WithoutRowNumbers) WriteLine(RowNumberName);
  for (const TField* Column : Columns) WriteLine(Column->Name());
  ExportRecords(*Query, Columns, 0, !WithoutRowNumbers, Stream);
}

void TEICommonQueryData::ImportData(TEIStream& Stream) {
  FLeftAlone = false;
  TEIRecordData::ImportData(Stream);
}

bool TEICommonQueryData::ReadUntilFields(TEIStream& Stream) {
  bool InParameters = false;
  for (int Number = 0; !Stream.Peek().empty();) {
    const std::string_view Line = NextLine(Stream);
    if (Line == "[FIELDS]") return true;
    if (!InParameters) {
      InParameters = Line == "[PARAMETRS]";
      continue;
    }
    const bool IsHeader = ++Number == 1;
    const std::string Fault = !IsHeader                  ? FaultOfParameterLine(Line)
                              : Line != ParametersHeader ? Format("it is not '%s'", ParametersHeader)
                                                         : std::string();
    if (!Fault.empty())
      ImportError(Format("Invalid parameter: %s (Position:%d;Line:'%s')", Fault, Stream.Position(), Shortened(Line)));
  }
  return false;
}

bool TEICommonQueryData::ChooseTable(const std::vector<std::string>& Names) {
  FieldNames = Names;
  if (TableName.empty() && !Table) Synchronize([this] { SetupTableFieldsMapping(); });
  FLeftAlone = TableName.empty() && !Table;
  return !FLeftAlone;
}

void TEICommonQueryData::SetupTableFieldsMapping() {
  // Nobody is to lose the rows of a table by merely confirming.
  TQueryTableMapping Mapping{TableName, FieldMapping, false};
  if (SelectQueryTableMapping(QueryText, FieldNames, DatabaseName, Mapping) != mrOk) return;
  TableName = Mapping.TableName;
  FieldMapping = Mapping.FieldMapping;
  Append = !Mapping.ClearTarget;
}

}  // namespace velkrund

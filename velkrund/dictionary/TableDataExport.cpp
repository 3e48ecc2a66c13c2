#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/dictionary/TableData.h"
#include "velkrund/eif/RecordPieces.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

// A field line is trimmed when it is read, and names are found without regard to case: other names would come back as
// something else.
void CheckFieldNames(const TStringList& Sorted) {
  for (int Index = 0; Index < Sorted.Count(); ++Index) {
    const std::string& Name = Sorted[Index];
    if (Name.empty() || Trim(Name) != Name || Name.front() == '[' || Name.find_first_of("\r\n") != std::string::npos)
      throw EDicUtilError(
          Format("Can not export table data. A field line cannot hold the name '%s': it is empty, begins "
                 "with '[', has blanks at an end or a line end inside",
                 Name));
    if (Index > 0 && SameText(Sorted[Index - 1], Name))
      throw EDicUtilError(Format("Can not export table data. The field names '%s' and '%s' differ in case only",
                                 Sorted[Index - 1], Name));
  }
}

}  // namespace

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
    Stream.Writeln(" [RECORDS]");
    ExportRecords(Source, Columns, Stream);
  } catch (Exception& Error) {
    Error.Add({.Table = TableName});
    throw;
  }
}

void TEICommonTableData::AppendValue(TField& Column) {
  try {
    FieldToString(Column, FRecord);
  } catch (Exception& Error) {
    Error.Add({.Column = Column.Name(), .Record = Report->RowCount + 1});
    throw;
  }
}

void TEICommonTableData::ExportRecords(TTable& Source, const std::vector<TField*>& Columns, TEIStream& Stream) {
  Report->InKeyOrder = KeyOrder && Source.OrderByKey();
  const std::int64_t Total = Source.RecordCount();
  for (bool Found = Source.First(); Found; Found = Source.Next()) {
    ShowProgress(Report->RowCount, Total, TableName);
    if (IsCanceled()) throw EAbort("Export of table data is cancelled");
    FRecord = Indentation;
    char Separator = '<';
    for (TField* Column : Columns) {
      FRecord += Separator;
      AppendValue(*Column);
      Separator = '|';
    }
    if (Columns.empty()) FRecord += '<';
    FRecord += '>';
    WriteRecordLines(Stream, FRecord);
    ++Report->RowCount;
  }
}

}  // namespace velkrund

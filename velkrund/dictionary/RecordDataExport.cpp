#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/dictionary/RecordData.h"
#include "velkrund/eif/RecordPieces.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

// A field line is trimmed when it is read, and names are found without regard to case: other names would come back as
// something else.
void TEIRecordData::CheckFieldNames(TStringList Names) const {
  Names.Sort();
  for (int Index = 0; Index < Names.Count(); ++Index) {
    const std::string& Name = Names[Index];
    if (Name.empty() || Trim(Name) != Name || Name.front() == '[' || Name.find_first_of("\r\n") != std::string::npos)
      throw EDicUtilError(
          Format("Can not export %s. A field line cannot hold the name '%s': it is empty, begins with "
                 "'[', has blanks at an end or a line end inside",
                 Content(), Name));
    if (Index > 0 && SameText(Names[Index - 1], Name))
      throw EDicUtilError(Names[Index - 1] == Name
                              ? Format("Can not export %s. There are two fields of the name '%s'", Content(), Name)
                              : Format("Can not export %s. The field names '%s' and '%s' differ in case only",
                                       Content(), Names[Index - 1], Name));
  }
}

void TEIRecordData::AppendValue(TField& Column) {
  try {
    FieldToString(Column, FRecord);
  } catch (Exception& Error) {
    Error.Add({.Column = Column.Name(), .Record = Report->RowCount + 1});
    throw;
  }
}

void TEIRecordData::ExportRecords(TRows& Source, const std::vector<TField*>& Columns, std::int64_t Total,
                                  bool IsNumbered, TEIStream& Stream) {
  Stream.Writeln(" [RECORDS]");
  FRecord = Indentation;
  for (bool Found = Source.First(); Found; Found = Source.Next()) {
    ShowProgress(Report->RowCount, Total, Subject());
    if (IsCanceled()) throw EAbort(Format("Export of %s is cancelled", Content()));
    // Every line begins alike.
    FRecord.resize(Indentation.size());
    char Separator = '<';
    if (IsNumbered) {
      FRecord += Separator;
      AppendInteger(FRecord, Report->RowCount + 1);
      Separator = '|';
    }
    for (TField* Column : Columns) {
      FRecord += Separator;
      AppendValue(*Column);
      Separator = '|';
    }
    if (Separator == '<') FRecord += Separator;
    FRecord += '>';
    WriteRecordLines(Stream, FRecord);
    ++Report->RowCount;
  }
}

}  // namespace velkrund

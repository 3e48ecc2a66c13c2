#include "velkrund/dictionary/RecordData.h"

#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

TEIRecordData::TEIRecordData() : StrictValues(WorkSettings().StrictValues), FStrictText(WorkSettings().StrictText) {}

void TEIRecordData::BeginRun(TEIStream& Stream) {
  *Report = {};
  FLosses = &Stream.Losses();
  FStrictText = Stream.StrictText();
  FWritesAnsi = Stream.Encoding() == TKvEncoding::Ansi;
}

TTable& TEIRecordData::TakeTable(std::unique_ptr<TTable>& Owned, std::string_view Verb) {
  if (Table) return *Table;
  Owned = BaseMng().GetUserTable(TableName, DatabaseName, true);
  if (!Owned)
    throw EDicUtilError(Format("Can not %s %s. Error opening table (TableName:'%s')", Verb, Content(), TableName),
                        {.Code = TErrorCode::TableMissing, .Table = TableName});
  return *Owned;
}

std::string TEIRecordData::PlaceOf(const TField& Field) const {
  return Format("Field:'%s';Record:%d", Field.Name(), Report->RowCount + 1);
}

void TEIRecordData::TextLost(std::int64_t Count, const std::string& Place) {
  if (FLosses) FLosses->Unrepresentable += Count;
  if (!FStrictText) return;
  throw EDicUtilError(
      Format("A text has characters that code page %d lacks (%s). Use version 200 in UTF-8, or allow losses",
             WorkSettings().AnsiCodePage->Number(), Place),
      {.Code = TErrorCode::Text});
}

// To be called where the version has no text for a value that brings it back. What: what would become of it.
void TEIRecordData::ValueLost(const TField& Field, const TKvVariant& Value, std::string_view What) {
  ++Report->ValuesChanged;
  if (!FStrictText) return;
  std::string Text;
  if (!HasBytes(Value.Kind())) Value.AppendAsText(Text);
  throw EDicUtilError(
      Format("In version %d %s (%s). Use version 200, or allow losses", Version(), What, PlaceOf(Field)),
      {.Code = TErrorCode::Loss, .Value = std::move(Text)});
}

// Raises Message, or makes the field NULL where values are not strict.
void TEIRecordData::Unparseable(TField& Field, const std::string& Message) {
  if (StrictValues) throw EDicUtilError(Message, {.Code = TErrorCode::UnreadableValue});
  Field.Buffer().SetNull();
  ++Report->NullsMade;
}

}  // namespace velkrund

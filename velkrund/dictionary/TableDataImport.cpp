#include <algorithm>
#include <cstring>
#include <set>

#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/dictionary/TableData.h"
#include "velkrund/eif/RecordPieces.h"
#include "velkrund/platform/database/EmptyTable.h"
#include "velkrund/platform/database/Relations.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::string_view Prefix = "Can not import table data. ";

// What the field lines may take in memory. Where the "[RECORDS]" line is damaged, the records are field lines too,
// however many there are; no engine has as many columns.
constexpr std::size_t MaxFieldLines = 16 * 1024 * 1024;

[[noreturn]] void ImportError(const std::string& What, TErrorInfo Info = {.Code = TErrorCode::Record}) {
  throw EDicUtilError(std::string(Prefix) + What, std::move(Info));
}

std::span<char> TrimInPlace(std::span<char> Text) {
  const std::string_view All(Text.data(), Text.size());
  const std::string_view Kept = Trim(All);
  return Text.subspan(static_cast<std::size_t>(Kept.data() - All.data()), Kept.size());
}

/// The value that begins at At, trimmed; At is moved to the next one. Behind End values are empty.
inline std::span<char> NextValue(char*& At, char* End) {
  char* const Start = std::min(At, End);
  const auto Left = static_cast<std::size_t>(End - Start);
  char* Stop = Left ? static_cast<char*>(std::memchr(Start, '|', Left)) : nullptr;
  if (!Stop) Stop = End;
  At = Stop + 1;
  return TrimInPlace({Start, Stop});
}

}  // namespace

struct TEICommonTableData::TImportField {
  std::string Name;
  TField* Target;  // null: the value is passed over
};

std::string_view TEICommonTableData::NextLine(TEIStream& Stream) {
  ShowProgress(Stream.Position(), Stream.Size(), TableName);
  const std::string_view Line = Trim(Stream.Readln());
  if (StrictLines && Line.find('\n') != std::string_view::npos)
    ImportError(Format("A line feed alone stands within a line, where it ends none (Position:%d)", Stream.Position()),
                {.Code = TErrorCode::LineFeeds});
  return Line;
}

bool TEICommonTableData::ReadUntil(TEIStream& Stream, std::string_view Marker, std::vector<std::string>* Lines) {
  std::size_t Kept = 0;
  // A file that another program cuts off meanwhile ends before its size.
  while (Kept <= MaxFieldLines && !Stream.Peek().empty()) {
    const std::string_view Line = NextLine(Stream);
    if (Line == Marker) return true;
    if (!Lines) continue;
    Lines->emplace_back(Line);
    Kept += sizeof(std::string) + Line.size();
  }
  return false;
}

std::vector<std::string> TEICommonTableData::ReadFieldNames(TEIStream& Stream) {
  std::vector<std::string> Names;
  if (!ReadUntil(Stream, "[FIELDS]", nullptr)) ImportError("Fields section not found");
  if (!ReadUntil(Stream, "[RECORDS]", &Names)) ImportError("Records section not found");
  return Names;
}

std::vector<TEICommonTableData::TImportField> TEICommonTableData::ResolveFields(TTable& Target,
                                                                                const std::vector<std::string>& Names) {
  std::vector<TImportField> Columns;
  std::set<const TField*> Taken;
  for (const std::string& Name : Names) {
    TField* Field = Target.FindField(Name);
    const bool Wanted = Selected(Name);
    // The last of the values would stand for all, and the field whose name is damaged would have none.
    if (Field && Wanted && !Taken.insert(Field).second) ImportError(Format("The field '%s' stands twice", Name));
    if (!Field && Wanted) {
      if (!SkipMissingFields)
        ImportError(Format("Import field '%s' is missing", Name), {.Code = TErrorCode::FieldMissing, .Column = Name});
      Report->SkippedFields.push_back(Name);
    }
    Columns.push_back({Name, Wanted ? Field : nullptr});
  }
  // Every row would be one of nothing but defaults. There are tables without a field, whose rows are merely counted.
  if (Taken.empty() && (!Names.empty() || Target.Record().FieldCount() > 0))
    ImportError(Format("The table '%s' has none of the fields that are to be loaded", Target.TableName()),
                {.Code = TErrorCode::FieldMissing});
  return Columns;
}

void TEICommonTableData::ImportData(TEIStream& Stream) {
  BeginRun(Stream);
  FStopped = false;
  FRecordStart = 0;
  try {
    const std::vector<std::string> Names = ReadFieldNames(Stream);
    FRecordsStart = Stream.Position();
    FRecordsLine = Stream.ReadLnCnt();
    std::unique_ptr<TTable> Owned;
    ImportInto(TakeTable(Owned, "import"), Names, Stream);
  } catch (Exception& Error) {
    PlaceError(Error, Stream);
    throw;
  }
}

/// Adds what the table's own errors do not know: the line in the file, which is that of their record. The engine may
/// have held rows back: then it is not the one last read.
void TEICommonTableData::PlaceError(Exception& Error, TEIStream& Stream) {
  Error.Add({.Table = TableName});
  if (!dynamic_cast<const EDatabaseError*>(&Error)) {
    if (FRecordStart > 0) Error.Add({.Record = Report->RowCount + 1});
    return;
  }
  Stream.SetErrorLine(-1);
  const std::int64_t Record = Error.Info().Record;
  if (Record < 1 || Record > Report->RowCount + 1) return;
  const std::int64_t LinesRead = Stream.ReadLnCnt();
  Stream.SetReadLnCnt(FRecordsLine);
  Stream.SetPosition(FRecordsStart);
  try {
    for (std::int64_t Before = 1; Before < Record; ++Before) ReadRecord(Stream);
    Stream.SetErrorLine(Stream.ReadLnCnt() + 1);
  } catch (const std::exception&) {
    // The file has changed meanwhile; the error itself is the one to tell.
  }
  Stream.SetReadLnCnt(LinesRead);
}

void TEICommonTableData::ImportInto(TTable& Target, const std::vector<std::string>& Names, TEIStream& Stream) {
  const std::vector<TImportField> Columns = ResolveFields(Target, Names);
  auto* const SQLTable = dynamic_cast<TODBCTable*>(&Target);
  if (!SQLTable || (!Loading && !Relations())) return ImportAlone(SQLTable, Target, Columns, Stream);
  std::unique_ptr<TTableLoading> Own;
  if (!Loading) Own = Relations()->Load(DatabaseName, {{Target.TableName(), !Append}}, {});
  if (Own) Own->Begin(0);
  Report->DeletedRows = (Own ? *Own : *Loading).TakeDeletedRows(Target.TableName());
  ImportRows(Target, Columns, Stream);
  if (Own) Own->End(!FStopped);
}

/// Where nobody minds what stands around the table.
void TEICommonTableData::ImportAlone(TODBCTable* SQLTable, TTable& Target, std::span<const TImportField> Columns,
                                     TEIStream& Stream) {
  TTransaction Transaction(DatabaseName);
  if (SQLTable && !Append) Report->DeletedRows = EmptyTable(*SQLTable, DatabaseName);
  ImportRows(Target, Columns, Stream);
  if (!FStopped) Transaction.Commit();
}

void TEICommonTableData::ImportRows(TTable& Target, std::span<const TImportField> Columns, TEIStream& Stream) {
  Target.SetCanRecreateAutoSequence(true);
  Target.SetAllowLoss(!StrictText());
  Target.BeginAppend();
  ImportRecords(Target, Columns, Stream);
  if (FStopped) return;
  Target.EndAppend();
  Report->ValuesChanged = Target.ChangedValues();
  // The engine may have taken its time over what it had held back.
  FStopped = IsCanceled();
}

void TEICommonTableData::ImportRecords(TTable& Target, std::span<const TImportField> Columns, TEIStream& Stream) {
  FColumn = nullptr;
  try {
    while (!FStopped && (FRecordStart = Stream.Position()) < Stream.Size()) {
      Target.ClearData();
      ReadRecord(Stream);
      RecordToFields(Columns, Stream);
      Target.AppendRecord();
      ++Report->RowCount;
      FStopped = IsCanceled();
    }
  } catch (Exception& Error) {
    if (!FColumn) throw;
    const auto Index = static_cast<std::size_t>(FColumn - Columns.data());
    Error.Add({.Column = FColumn->Name, .Record = Report->RowCount + 1, .Value = ValueInFile(Index, Stream)});
    throw;
  }
}

// Puts the pieces of the next record together, without its brackets.
void TEICommonTableData::ReadRecord(TEIStream& Stream) {
  FRecord = NextLine(Stream);
  if (FRecord.size() < 2 || FRecord.front() != '<') RecordError("'<' is missing", Stream);
  while (!FRecord.empty() && FRecord.back() == ContinuationMark) {
    if (Stream.Position() >= Stream.Size()) RecordError("Unexpected end of data section", Stream);
    const std::string_view Piece = NextLine(Stream);
    if (Piece.empty() || Piece.front() != ContinuationMark) RecordError("'@' is missing", Stream);
    FRecord.pop_back();
    FRecord += Piece.substr(1);
  }
  if (FRecord.size() < 2 || FRecord.back() != '>') RecordError("'>' is missing", Stream);
}

void TEICommonTableData::RecordToFields(std::span<const TImportField> Columns, TEIStream& Stream) {
  char* At = FRecord.data() + 1;
  char* const End = FRecord.data() + FRecord.size() - 1;
  for (const TImportField& Column : Columns) {
    FColumn = &Column;
    const std::span<char> Value = NextValue(At, End);
    if (Value.empty())
      ImportError(Format("Invalid record data structure. Field value is missing (Position:%d;Field:'%s')",
                         Stream.Position(), Column.Name));
    if (Column.Target) StringToField(Value, *Column.Target);
  }
  FColumn = nullptr;
}

/// Values are decoded where they stand: what was there is read again.
std::string TEICommonTableData::ValueInFile(std::size_t Column, TEIStream& Stream) {
  const std::int64_t LinesRead = Stream.ReadLnCnt();
  std::string Result;
  try {
    Stream.SetPosition(FRecordStart);
    ReadRecord(Stream);
    char* At = FRecord.data() + 1;
    char* const End = FRecord.data() + FRecord.size() - 1;
    for (std::size_t Before = 0; Before < Column; ++Before) NextValue(At, End);
    const std::span<char> Value = NextValue(At, End);
    Result = Shortened({Value.data(), Value.size()});
  } catch (const std::exception&) {
    // The file has changed meanwhile; the error on its way out is the one to tell.
  }
  Stream.SetReadLnCnt(LinesRead);
  return Result;
}

void TEICommonTableData::RecordError(std::string_view What, TEIStream& Stream) const {
  ImportError(Format("Invalid record data structure. %s (Position:%d)", What, Stream.Position()),
              {.Code = TErrorCode::Record, .Record = Report->RowCount + 1, .Value = Shortened(FRecord)});
}

}  // namespace velkrund

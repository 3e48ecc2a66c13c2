#include <algorithm>
#include <cstring>
#include <unordered_map>
#include <unordered_set>

#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/dictionary/RecordData.h"
#include "velkrund/eif/RecordPieces.h"
#include "velkrund/operations/TablePlan.h"
#include "velkrund/platform/database/EmptyTable.h"
#include "velkrund/platform/database/Relations.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

// What the field lines may take in memory. Where the "[RECORDS]" line is damaged, the records are field lines too,
// however many there are; no engine has as many columns.
constexpr std::size_t MaxFieldLines = 16 * 1024 * 1024;

std::span<char> TrimInPlace(std::span<char> Text) {
  // As writers leave it, which is not worth a call.
  if (!Text.empty() && Text.front() > ' ' && Text.back() > ' ') return Text;
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

struct TEIRecordData::TImportField {
  struct TCopy {
    TField* Target;
    std::string Text;  // of the value, which is decoded in place
  };

  std::string Name;
  TField* Target;             // null: the value is passed over
  std::vector<TCopy> Copies;  // further fields of the table that it fills
};

void TEIRecordData::ImportError(const std::string& What, TErrorInfo Info) const {
  throw EDicUtilError(Format("Can not import %s. %s", Content(), What), std::move(Info));
}

std::string_view TEIRecordData::NextLine(TEIStream& Stream, bool IsShort) {
  ShowProgress(Stream.Position(), Stream.Size(), Subject());
  const std::string_view Line = Trim(IsShort ? Stream.ReadShortLine() : Stream.Readln());
  if (StrictLines && Line.find('\n') != std::string_view::npos)
    ImportError(Format("A line feed alone stands within a line, where it ends none (Position:%d)", Stream.Position()),
                {.Code = TErrorCode::LineFeeds});
  return Line;
}

bool TEIRecordData::ReadUntil(TEIStream& Stream, std::string_view Marker, std::vector<std::string>* Lines) {
  std::size_t Kept = 0;
  // A file that another program cuts off meanwhile ends before its size.
  while (Kept <= MaxFieldLines && !Stream.Peek().empty()) {
    const std::string_view Line = NextLine(Stream, true);
    if (Line == Marker) return true;
    if (!Lines) continue;
    Lines->emplace_back(Line);
    Kept += sizeof(std::string) + Line.size();
  }
  return false;
}

bool TEIRecordData::ReadUntilFields(TEIStream& Stream) { return ReadUntil(Stream, "[FIELDS]", nullptr); }

std::vector<std::string> TEIRecordData::ReadFieldNames(TEIStream& Stream) {
  std::vector<std::string> Names;
  if (!ReadUntilFields(Stream)) ImportError("Fields section not found");
  if (!ReadUntil(Stream, "[RECORDS]", &Names)) ImportError("Records section not found");
  return Names;
}

/// Where the fields of a file go, by their names. A file may have as many as it likes, and so may a mapping.
class TEIRecordData::TFieldTargets {
 public:
  TFieldTargets(TRecord& Record, const TStringPairs& Mapping) {
    // Exact names come before those that differ in case only, as everywhere.
    for (int Index = Record.FieldCount() - 1; Index >= 0; --Index) {
      TField& Field = Record.Fields(Index);
      FExact[Field.Name()] = &Field;
      FSimilar[LowerCase(Field.Name())] = &Field;
    }
    for (const auto& [FileField, TableField] : Mapping) {
      TMapped& Mapped = FMapped[LowerCase(FileField)];
      TField* const Field = Find(TableField);
      if (Field) Mapped.Fields.push_back(Field);
      FTaken.insert(Field);
      Mapped.GoesNowhere = Mapped.GoesNowhere || TableField.empty();
    }
  }

  /// Of a pair, else that of its own name unless a pair names it.
  std::vector<TField*> Of(const std::string& Name) const {
    if (const auto Mapped = FMapped.find(LowerCase(Name)); Mapped != FMapped.end()) return Mapped->second.Fields;
    TField* const Own = Find(Name);
    return Own && !FTaken.contains(Own) ? std::vector{Own} : std::vector<TField*>();
  }
  /// By a pair without a field of the table.
  bool GoesNowhere(const std::string& Name) const {
    const auto Mapped = FMapped.find(LowerCase(Name));
    return Mapped != FMapped.end() && Mapped->second.GoesNowhere;
  }

 private:
  struct TMapped {
    std::vector<TField*> Fields;
    bool GoesNowhere = false;
  };

  TField* Find(const std::string& Name) const {
    if (const auto Exact = FExact.find(Name); Exact != FExact.end()) return Exact->second;
    const auto Similar = FSimilar.find(LowerCase(Name));
    return Similar == FSimilar.end() ? nullptr : Similar->second;
  }

  std::unordered_map<std::string, TField*> FExact, FSimilar;
  std::unordered_map<std::string, TMapped> FMapped;  // by field of the file, in lower case
  std::unordered_set<const TField*> FTaken;          // by pairs
};

// A slip in a name would leave a field of the table without its values.
void TEIRecordData::CheckMapping(const std::vector<std::string>& Names) const {
  const TStringList Known(Names);
  for (const auto& [FileField, TableField] : FieldMapping)
    if (Known.IndexOf(FileField) < 0)
      ImportError(Format("The mapping names the field '%s', which the section lacks", FileField),
                  {.Code = TErrorCode::FieldMissing, .Column = FileField});
}

std::vector<TEIRecordData::TImportField> TEIRecordData::ResolveFields(TTable& Target,
                                                                      const std::vector<std::string>& Names) {
  CheckMapping(Names);
  std::vector<TImportField> Columns;
  const TFieldTargets Targets(Target.Record(), FieldMapping);
  std::unordered_map<const TField*, std::string> Taken;
  for (const std::string& Name : Names) {
    TImportField& Column = Columns.emplace_back(TImportField{Name, nullptr, {}});
    if (!Selected(Name)) continue;
    for (TField* const Field : Targets.Of(Name)) {
      const auto [Before, IsNew] = Taken.emplace(Field, Name);
      // The last of the values would stand for all, and the field whose name is damaged would have none.
      if (!IsNew && SameText(Before->second, Name)) ImportError(Format("The field '%s' stands twice", Name));
      if (!IsNew)
        ImportError(Format("The fields '%s' and '%s' would both fill the field '%s' of the table", Before->second, Name,
                           Field->Name()));
      if (Column.Target)
        Column.Copies.push_back({Field, {}});
      else
        Column.Target = Field;
    }
    if (Column.Target) continue;
    if (!MayLack(Name) && !Targets.GoesNowhere(Name))
      ImportError(Format("Import field '%s' is missing", Name), {.Code = TErrorCode::FieldMissing, .Column = Name});
    Report->SkippedFields.push_back(Name);
  }
  // Every row would be one of nothing but defaults. There are tables without a field, whose rows are merely counted.
  if (Taken.empty() && (!Names.empty() || Target.Record().FieldCount() > 0))
    ImportError(Format("The table '%s' has none of the fields that are to be loaded", Target.TableName()),
                {.Code = TErrorCode::FieldMissing});
  return Columns;
}

void TEIRecordData::ImportData(TEIStream& Stream) {
  BeginRun(Stream);
  FStopped = false;
  FRecordStart = 0;
  try {
    const std::vector<std::string> Names = ReadFieldNames(Stream);
    FRecordsStart = Stream.Position();
    FRecordsLine = Stream.ReadLnCnt();
    if (!ChooseTable(Names)) return;
    std::unique_ptr<TTable> Owned;
    ImportInto(TakeTable(Owned, "import"), Names, Stream);
  } catch (Exception& Error) {
    PlaceError(Error, Stream);
    throw;
  }
}

/// Adds what the table's own errors do not know: the line in the file, which is that of their record. The engine may
/// have held rows back: then it is not the one last read.
void TEIRecordData::PlaceError(Exception& Error, TEIStream& Stream) {
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

void TEIRecordData::ImportInto(TTable& Target, const std::vector<std::string>& Names, TEIStream& Stream) {
  std::vector<TImportField> Columns = ResolveFields(Target, Names);
  auto* const SQLTable = dynamic_cast<TODBCTable*>(&Target);
  if (!SQLTable || (!Loading && !Relations())) return ImportAlone(SQLTable, Target, Columns, Stream);
  std::unique_ptr<TTableLoading> Own;
  if (!Loading)
    Own = Relations()->Load(DatabaseName, {{Target.TableName(), !Append, HoldsManyRows(Stream.Size())}}, {});
  if (Own) Own->Begin(0);
  Report->DeletedRows = (Own ? *Own : *Loading).TakeDeletedRows(Target.TableName());
  ImportRows(Target, Columns, Stream);
  if (Own) Own->End(!FStopped);
}

/// Where nobody minds what stands around the table.
void TEIRecordData::ImportAlone(TODBCTable* SQLTable, TTable& Target, std::span<TImportField> Columns,
                                TEIStream& Stream) {
  TTransaction Transaction(DatabaseName);
  if (SQLTable && !Append) Report->DeletedRows = EmptyTable(*SQLTable, DatabaseName);
  ImportRows(Target, Columns, Stream);
  if (!FStopped) Transaction.Commit();
}

void TEIRecordData::ImportRows(TTable& Target, std::span<TImportField> Columns, TEIStream& Stream) {
  Target.SetCanRecreateAutoSequence(true);
  Target.SetAllowLoss(!FStrictText);
  Target.BeginAppend();
  ImportRecords(Target, Columns, Stream);
  if (FStopped) return;
  Target.EndAppend();
  Report->ValuesChanged = Target.ChangedValues();
  // The engine may have taken its time over what it had held back.
  FStopped = IsCanceled();
}

void TEIRecordData::ImportRecords(TTable& Target, std::span<TImportField> Columns, TEIStream& Stream) {
  FColumn = nullptr;
  bool IsReading = true;
  try {
    while (!FStopped && (FRecordStart = Stream.Position()) < Stream.Size()) {
      Target.ClearData();
      ReadRecord(Stream);
      RecordToFields(Columns, Stream);
      IsReading = false;
      Target.AppendRecord();
      IsReading = true;
      ++Report->RowCount;
      FStopped = IsCanceled();
    }
  } catch (Exception& Error) {
    // Records before it may not have reached the engine yet: one that it refuses is the first to tell. The transaction
    // takes the others back, which no other table has.
    if (IsReading && dynamic_cast<TODBCTable*>(&Target)) Target.EndAppend();
    if (!FColumn) throw;
    const auto Index = static_cast<std::size_t>(FColumn - Columns.data());
    Error.Add({.Column = FColumn->Name, .Record = Report->RowCount + 1, .Value = ValueInFile(Index, Stream)});
    throw;
  }
}

// Puts the pieces of the next record together, without its brackets.
void TEIRecordData::ReadRecord(TEIStream& Stream) {
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

void TEIRecordData::RecordToFields(std::span<TImportField> Columns, TEIStream& Stream) {
  char* At = FRecord.data() + 1;
  char* const End = FRecord.data() + FRecord.size() - 1;
  for (TImportField& Column : Columns) {
    FColumn = &Column;
    const std::span<char> Value = NextValue(At, End);
    if (Value.empty())
      ImportError(Format("Invalid record data structure. Field value is missing (Position:%d;Field:'%s')",
                         Stream.Position(), Column.Name));
    if (Column.Target) ValueToFields(Value, Column);
  }
  FColumn = nullptr;
}

void TEIRecordData::ValueToFields(std::span<char> Value, TImportField& Column) {
  for (TImportField::TCopy& Copy : Column.Copies) Copy.Text.assign(Value.data(), Value.size());
  StringToField(Value, *Column.Target);
  for (TImportField::TCopy& Copy : Column.Copies) StringToField(Copy.Text, *Copy.Target);
}

/// Values are decoded where they stand: what was there is read again.
std::string TEIRecordData::ValueInFile(std::size_t Column, TEIStream& Stream) {
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

void TEIRecordData::RecordError(std::string_view What, TEIStream& Stream) const {
  ImportError(Format("Invalid record data structure. %s (Position:%d)", What, Stream.Position()),
              {.Code = TErrorCode::Record, .Record = Report->RowCount + 1, .Value = Shortened(FRecord)});
}

}  // namespace velkrund

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

[[noreturn]] void ImportError(const std::string& What) { throw EDicUtilError(std::string(Prefix) + What); }

std::span<char> TrimInPlace(std::span<char> Text) {
  const std::string_view All(Text.data(), Text.size());
  const std::string_view Kept = Trim(All);
  return Text.subspan(static_cast<std::size_t>(Kept.data() - All.data()), Kept.size());
}

/// The loading of one table alone; null where there are no foreign keys to mind.
std::unique_ptr<TTableLoading> LoadingOf(const TODBCTable& Table, bool Empty, const std::string& DatabaseName) {
  return Relations() ? Relations()->Load(DatabaseName, {{Table.TableName(), Empty}}) : nullptr;
}

}  // namespace

struct TEICommonTableData::TImportField {
  std::string Name;
  TField* Target;  // null: the value is passed over
};

std::string_view TEICommonTableData::NextLine(TEIStream& Stream) {
  ShowProgress(Stream.Position(), Stream.Size(), TableName);
  return Trim(Stream.Readln());
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
      if (!SkipMissingFields) ImportError(Format("Import field '%s' is missing", Name));
      Report->SkippedFields.push_back(Name);
    }
    Columns.push_back({Name, Wanted ? Field : nullptr});
  }
  // Every row would be one of nothing but defaults.
  if (Taken.empty() && !Names.empty())
    ImportError(Format("The table '%s' has none of the fields that are to be loaded", Target.TableName()));
  return Columns;
}

void TEICommonTableData::ImportData(TEIStream& Stream) {
  BeginRun(Stream);
  FStopped = false;
  const std::vector<std::string> Names = ReadFieldNames(Stream);
  std::unique_ptr<TTable> Owned;
  TTable& Target = TakeTable(Owned, "import");
  const std::vector<TImportField> Columns = ResolveFields(Target, Names);
  auto* const SQLTable = dynamic_cast<TODBCTable*>(&Target);
  TTransaction Transaction(DatabaseName);
  std::unique_ptr<TTableLoading> Alone;
  if (SQLTable && !Loading) Alone = LoadingOf(*SQLTable, !Append, DatabaseName);
  if (Alone) Alone->Begin();
  TTableLoading* const Together = SQLTable && Loading ? Loading : Alone.get();
  if (SQLTable && (Together ? Together->Empties(Target.TableName()) : !Append)) EmptyTable(*SQLTable, DatabaseName);
  ImportRows(Target, Columns, Stream);
  if (FStopped) return;
  if (Alone) Alone->End(true);
  Transaction.Commit();
  if (Together) Together->SetLoaded(Target.TableName());
}

void TEICommonTableData::ImportRows(TTable& Target, std::span<const TImportField> Columns, TEIStream& Stream) {
  Target.SetCanRecreateAutoSequence(true);
  Target.BeginAppend();
  ImportRecords(Target, Columns, Stream);
  if (FStopped) return;
  Target.EndAppend();
  // The engine may have taken its time over what it had held back.
  FStopped = IsCanceled();
}

void TEICommonTableData::ImportRecords(TTable& Target, std::span<const TImportField> Columns, TEIStream& Stream) {
  while (Stream.Position() < Stream.Size()) {
    Target.ClearData();
    ReadRecord(Stream);
    RecordToFields(Columns, Stream);
    Target.AppendRecord();
    ++Report->RowCount;
    if (IsCanceled()) {
      FStopped = true;
      return;
    }
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
    char* const Start = std::min(At, End);
    const auto Left = static_cast<std::size_t>(End - Start);
    char* Stop = Left ? static_cast<char*>(std::memchr(Start, '|', Left)) : nullptr;
    if (!Stop) Stop = End;
    At = Stop + 1;
    const std::span<char> Value = TrimInPlace({Start, Stop});
    if (Value.empty())
      ImportError(Format("Invalid record data structure. Field value is missing (Position:%d;Field:'%s')",
                         Stream.Position(), Column.Name));
    if (Column.Target) StringToField(Value, *Column.Target);
  }
}

void TEICommonTableData::RecordError(std::string_view What, TEIStream& Stream) const {
  ImportError(Format("Invalid record data structure. %s (Position:%d)", What, Stream.Position()));
}

}  // namespace velkrund

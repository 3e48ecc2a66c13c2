#include "standalone/tables/BlobTable.h"

#include <set>

#include "standalone/values/StoredValues.h"
#include "velkrund/platform/ormtools/Checksum.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

// Not to be changed: they are in databases and files. No text begins so, and few plain BLOBs by chance.
constexpr std::string_view Magic = "\x8BVKBT\r\n\x1A";
constexpr unsigned Version = 1;

constexpr std::size_t ChecksumSize = 4;
/// A kind and the length of a name of one byte.
constexpr std::size_t SmallestField = 3;
/// Its kind.
constexpr std::size_t SmallestValue = 1;

bool IsKind(unsigned Number) {
  const auto Kind = static_cast<TKvKind>(Number);
  return Kind == TKvKind::Null || HasBytes(Kind) || IsIntegerKind(Kind) || IsRealKind(Kind) || IsBooleanKind(Kind) ||
         IsMomentKind(Kind) || Kind == TKvKind::SysTime || Kind == TKvKind::UInt64 || Kind == TKvKind::Currency;
}

[[noreturn]] void Refuse(const std::string& Table, const std::string& Why, TErrorInfo Info = {}) {
  Info.Code = TErrorCode::BLOBTable;
  Info.Table = Table;
  throw EDatabaseError(Table.empty() ? Format("The BLOB table %s", Why) : Format("The BLOB table '%s' %s", Table, Why),
                       std::move(Info));
}

void CheckFields(const std::string& Table, const TBLOBTable::TFields& Fields) {
  if (Fields.empty()) Refuse(Table, "has no fields");
  std::set<std::string_view> Names;
  for (const auto& [Name, Kind] : Fields) {
    if (Name.empty()) Refuse(Table, "has a field without a name");
    if (!Names.insert(Name).second) Refuse(Table, Format("has the field '%s' twice", Name), {.Column = Name});
  }
}

std::string_view CheckedBody(std::string_view Bytes) {
  const auto Damaged = [](std::string_view Why) { Refuse("", Format("is damaged: %s", Why)); };
  if (Bytes.size() == Magic.size()) Damaged("it is cut off behind its first bytes");
  if (const unsigned Found = static_cast<unsigned char>(Bytes[Magic.size()]); Found > Version)
    Refuse("", Format("has a layout of version %d, and this program knows those up to %d: use a newer release of it",
                      Found, Version));
  else if (Found == 0)
    Damaged("its layout has the version 0");
  if (Bytes.size() < Magic.size() + 1 + ChecksumSize) Damaged("it is cut off");
  const std::string_view Body = Bytes.substr(0, Bytes.size() - ChecksumSize);
  if (TStoredBytes(Bytes, Body.size()).Fixed(ChecksumSize) != Crc32(Body))
    Damaged("its checksum is wrong, so that it was changed or cut off on its way");
  return Body;
}

TBLOBTable::TFields ReadFields(TStoredBytes& Bytes) {
  const std::uint64_t Count = Bytes.Number();
  if (Count > Bytes.Left() / SmallestField) throw EStoredValue("it cannot have so many fields");
  TBLOBTable::TFields Result;
  for (std::uint64_t I = 0; I < Count; ++I) {
    const unsigned Kind = Bytes.Byte();
    if (!IsKind(Kind)) throw EStoredValue(Format("unknown value kind %d", Kind));
    Result.emplace_back(Bytes.Text(), static_cast<TKvKind>(Kind));
  }
  return Result;
}

void ReadValue(TStoredBytes& Bytes, TKvVariant& Value) {
  const unsigned Kind = Bytes.Byte();
  ReadStoredValue(Bytes, static_cast<TKvKind>(Kind), Value);
}

/// Every value of every row once, so that none fails later.
void CheckRows(TStoredBytes& Bytes, const std::string& Table, const TBLOBTable::TFields& Fields, std::uint64_t Count) {
  TKvVariant Value;
  for (std::uint64_t Row = 1; Row <= Count; ++Row)
    for (const auto& [Name, Kind] : Fields) {
      const std::size_t Start = Bytes.Position();
      try {
        ReadValue(Bytes, Value);
      } catch (const EStoredValue& Error) {
        Refuse(Table, Format("is damaged at byte %d, in field '%s' of row %d: %s", Start, Name, Row, Error.what()),
               {.Column = Name, .Record = static_cast<std::int64_t>(Row)});
      }
    }
}

}  // namespace

bool TStandaloneBlobTable::IsOne(std::string_view Bytes) { return Bytes.starts_with(Magic); }

std::unique_ptr<TStandaloneBlobTable> TStandaloneBlobTable::Open(std::string_view Bytes) {
  const std::string_view Body = CheckedBody(Bytes);
  TStoredBytes Parts(Body, Magic.size() + 1);
  std::string Name;
  try {
    Name = Parts.Text();
    const TFields Fields = ReadFields(Parts);
    auto Result = std::make_unique<TStandaloneBlobTable>(Name, Fields);
    Result->FCount = Parts.Number();
    if (Result->FCount > Parts.Left() / (SmallestValue * Fields.size()))
      throw EStoredValue("it cannot have so many rows");
    const std::size_t Start = Parts.Position();
    CheckRows(Parts, Name, Fields, Result->FCount);
    if (Parts.Left() > 0) throw EStoredValue("something stands behind its last row");
    Result->FRows = Body.substr(Start);
    Result->FNext = Result->FRows.size();
    return Result;
  } catch (const EStoredValue& Error) {
    Refuse(Name, Format("is damaged at byte %d: %s", Parts.Position(), Error.what()));
  }
}

TStandaloneBlobTable::TStandaloneBlobTable(std::string Name, const TFields& Fields)
    : FName(std::move(Name)),
      FFields((CheckFields(FName, Fields), Fields)),
      FRecord(FName, Fields),
      FRow(Fields.size()) {}

bool TStandaloneBlobTable::First() {
  FNext = 0;
  return Next();
}

bool TStandaloneBlobTable::Next() {
  const bool Found = FNext < FRows.size();
  if (Found) ReadRow();
  FRecord.StandOn(Found ? &FRow : nullptr);
  return Found;
}

void TStandaloneBlobTable::ReadRow() {
  TStoredBytes Bytes(FRows, FNext);
  for (TKvVariant& Value : FRow) ReadValue(Bytes, Value);
  FNext = Bytes.Position();
}

void TStandaloneBlobTable::BeginAppend() {
  FAppended.clear();
  FAppendedCount = 0;
}

void TStandaloneBlobTable::AppendRecord() {
  const std::size_t Start = FAppended.size();
  for (int I = 0; I < FRecord.FieldCount(); ++I) {
    const TField& Field = FRecord.Fields(I);
    const TKvVariant& Value = Field.BufferedValue();
    if (!IsStorable(Value)) {
      FAppended.resize(Start);
      Refuse(FName,
             Format("cannot hold the value of field '%s' of record %d: its kind %d has no such value", Field.Name(),
                    FAppendedCount + 1, static_cast<int>(Value.Kind())),
             {.Column = Field.Name(), .Record = static_cast<std::int64_t>(FAppendedCount + 1)});
    }
    FAppended += static_cast<char>(Value.Kind());
    AppendStoredValue(FAppended, Value);
  }
  ++FAppendedCount;
}

void TStandaloneBlobTable::EndAppend() {
  FRecord.StandOn(nullptr);
  FRows += FAppended;
  FCount += FAppendedCount;
  FNext = FRows.size();
  BeginAppend();
}

std::string TStandaloneBlobTable::Bytes() const {
  std::string Result(Magic);
  Result += static_cast<char>(Version);
  AppendStoredText(Result, FName);
  AppendStoredNumber(Result, FFields.size());
  for (const auto& [Name, Kind] : FFields) {
    Result += static_cast<char>(Kind);
    AppendStoredText(Result, Name);
  }
  AppendStoredNumber(Result, FCount);
  Result += FRows;
  AppendStoredFixed(Result, Crc32(Result), ChecksumSize);
  return Result;
}

}  // namespace velkrund

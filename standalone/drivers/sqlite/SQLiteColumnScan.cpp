#include "standalone/drivers/sqlite/SQLiteColumnScan.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "standalone/drivers/KeysWithNulls.h"
#include "standalone/drivers/sqlite/SQLiteCursor.h"
#include "standalone/drivers/sqlite/SQLiteDatabase.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

/// What the cells of one column are.
struct TScanned {
  bool Integers = false, WideIntegers = false;  // wide: no double is exactly that
  bool Reals = false, Texts = false, Bytes = false;
  bool Declared = false;  // of the column's own kind, which is none of these
  std::int64_t LongestText = 0, MostBytes = 0;
  bool FitsDigits = true;
  bool Nulls = false;
};

std::int64_t PowerOfTen(int Exponent) {
  std::int64_t Result = 1;
  while (Exponent-- > 0) Result *= 10;
  return Result;
}

/// Whether the amount has no more digits than the field.
bool FitsDigits(TCurrency Amount, const TDicField& Field) {
  constexpr int Scale = 4;
  constexpr int MaxDigits = 18;
  const int FieldScale = Field.Scale.value_or(0);
  if (!Field.Size || FieldScale < 0 || *Field.Size - FieldScale > MaxDigits - Scale) return true;
  const std::int64_t Limit = PowerOfTen(std::max(0, *Field.Size - FieldScale + Scale));
  if (Amount.TenThousandths >= Limit || Amount.TenThousandths <= -Limit) return false;
  return FieldScale >= Scale || Amount.TenThousandths % PowerOfTen(Scale - FieldScale) == 0;
}

std::int64_t Characters(std::string_view Text) {
  return std::count_if(Text.begin(), Text.end(), [](char C) { return (static_cast<unsigned char>(C) & 0xC0) != 0x80; });
}

void Look(const TKvVariant& Cell, const TDicField& Field, TScanned& Seen) {
  switch (Cell.Kind()) {
    case TKvKind::Null:
      Seen.Nulls = true;
      break;
    case TKvKind::Int64:
      Seen.Integers = true;
      Seen.WideIntegers = Seen.WideIntegers || !IsExactAsReal(Cell.AsInteger());
      if (const auto Amount = RealToCurrency(static_cast<double>(Cell.AsInteger())))
        Seen.FitsDigits = Seen.FitsDigits && FitsDigits(*Amount, Field);
      break;
    case TKvKind::Double:
      Seen.Reals = true;
      break;
    case TKvKind::String:
      Seen.Texts = true;
      Seen.LongestText = std::max(Seen.LongestText, Characters(Cell.AsText()));
      break;
    case TKvKind::Bytes:
      Seen.Bytes = true;
      Seen.MostBytes = std::max(Seen.MostBytes, static_cast<std::int64_t>(Cell.AsText().size()));
      break;
    default:
      Seen.Declared = true;
      if (Cell.Kind() == TKvKind::Currency) Seen.FitsDigits = Seen.FitsDigits && FitsDigits(Cell.AsCurrency(), Field);
  }
}

bool IsExactType(TDicFieldType Type) { return Type == TDicFieldType::Decimal || Type == TDicFieldType::Money; }

TDicFieldType TypeOf(TScanned Seen, const TDicField& Field) {
  const bool IsExact = IsExactType(Field.Type);
  // Whole amounts are stored as integers.
  if (!Seen.Reals && !Seen.Texts && !Seen.Bytes && (IsExact || !Seen.Integers)) return Field.Type;
  // As what the engine stores them.
  if (Seen.Declared) (IsExact ? Seen.Reals : Field.Type == TDicFieldType::Boolean ? Seen.Integers : Seen.Texts) = true;
  const bool Numbers = Seen.Integers || Seen.Reals;
  if (static_cast<int>(Numbers) + static_cast<int>(Seen.Texts) + static_cast<int>(Seen.Bytes) != 1)
    return TDicFieldType::Any;
  if (Seen.Texts) return TDicFieldType::String;
  if (Seen.Bytes) return TDicFieldType::Bytes;
  if (!Seen.Reals) return TDicFieldType::Int64;
  return Seen.WideIntegers ? TDicFieldType::Any : TDicFieldType::Real64;
}

/// Types that are moved as texts are what the declaration says, as long as all cells are texts.
bool MovesAs(TDicFieldType Type, TDicFieldType Scanned) {
  if (Type == Scanned) return true;
  const bool IsText = Type == TDicFieldType::FixedString || Type == TDicFieldType::Uuid ||
                      Type == TDicFieldType::Json || Type == TDicFieldType::Interval ||
                      Type == TDicFieldType::ZonedTime;
  return IsText && Scanned == TDicFieldType::String;
}

void Narrow(const TScanned& Seen, TDicField& Field) {
  if (!Seen.Integers && !Seen.Reals && !Seen.Texts && !Seen.Bytes && !Seen.Declared) return;
  if (const TDicFieldType Type = TypeOf(Seen, Field); !MovesAs(Field.Type, Type)) {
    Field.Type = Type;
    Field.Size.reset();
    Field.Scale.reset();
  }
  const std::int64_t Longest = Field.Type == TDicFieldType::Bytes ? Seen.MostBytes : Seen.LongestText;
  if (!IsExactType(Field.Type) && Field.Size && Longest > *Field.Size) Field.Size.reset();
  if (IsExactType(Field.Type) && !Seen.FitsDigits) {
    Field.Size.reset();
    Field.Scale.reset();
  }
}

bool HasNulls(const TDicKey& Key, const std::vector<TDicField>& Fields, const std::vector<TScanned>& Seen) {
  for (std::size_t I = 0; I < Fields.size(); ++I)
    for (const TDicColumn& Column : Key.Columns)
      if (Seen[I].Nulls && Column.Name == Fields[I].Name) return true;
  return false;
}

}  // namespace

void ScanColumns(TSQLiteDatabase& Database, const TTableDescription& Table, TDicTableDescription& Result) {
  std::vector<int> Columns;
  for (std::size_t I = 0; I < Table.Columns.size(); ++I) Columns.push_back(static_cast<int>(I));
  TSQLiteCursor Cursor(Database.Handle(), Table, Columns, {}, Database.Texts().Wide);
  std::vector<TScanned> Seen(Columns.size());
  TKvVariant Cell;
  while (Cursor.Next())
    for (std::size_t I = 0; I < Columns.size(); ++I) {
      Cursor.Read(Columns[I], Cell);
      Look(Cell, Result.Fields[I], Seen[I]);
    }
  for (std::size_t I = 0; I < Columns.size(); ++I) Narrow(Seen[I], Result.Fields[I]);
  for (TDicKey& Key : Result.Keys)
    if (Key.Primary && HasNulls(Key, Result.Fields, Seen)) Key = KeyWithNulls(std::move(Key), "sqlite");
}

}  // namespace velkrund

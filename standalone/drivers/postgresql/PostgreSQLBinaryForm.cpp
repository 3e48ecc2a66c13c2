// The format (COPY, "Binary Format"): a header; then per row the number of cells in 16 bits and per cell its size in 32
// bits, -1 for NULL, and its bytes; at the end -1 in place of a number of cells. Moments are counted from 2000-01-01.

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "standalone/drivers/postgresql/BigEndian.h"
#include "standalone/drivers/postgresql/PostgreSQLForm.h"
#include "standalone/drivers/postgresql/PostgreSQLNumeric.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

constexpr std::string_view FileHeader("PGCOPY\n\xFF\r\n\0\0\0\0\0\0\0\0\0", 19);
constexpr std::string_view FileTrailer("\xFF\xFF", 2);
constexpr std::uint32_t NoCell = 0xFFFF'FFFF;
/// Larger ones the engine does not take either, and says so of their texts.
constexpr std::size_t MaxCellSize = std::size_t{1} << 30U;
constexpr std::int64_t MicrosecondsTo2000 = 10'957 * MicrosecondsPerDay;  // from 1970-01-01

/// The size of a number, and the number.
template <std::unsigned_integral T>
void AppendCell(std::string& Out, T Value) {
  char Cell[4 + sizeof(T)];
  WriteBigEndian(Cell, static_cast<std::uint32_t>(sizeof(T)));
  WriteBigEndian(Cell + 4, Value);
  Out.append(Cell, sizeof Cell);
}

template <std::unsigned_integral T>
void AppendNumber(std::string& Out, T Value) {
  char Bytes[sizeof(T)];
  WriteBigEndian(Bytes, Value);
  Out.append(Bytes, sizeof Bytes);
}

void AppendSigned(std::string& Out, std::int64_t Value) { AppendCell(Out, static_cast<std::uint64_t>(Value)); }

bool AppendBytes(std::string& Out, std::string_view Prefix, std::string_view Bytes) {
  if (Bytes.size() >= MaxCellSize) return false;
  AppendNumber(Out, static_cast<std::uint32_t>(Prefix.size() + Bytes.size()));
  Out += Prefix;
  Out += Bytes;
  return true;
}

/// Only of the form that the engine itself writes.
bool AppendUuid(std::string& Out, std::string_view Text) {
  constexpr std::size_t TextSize = 36, Size = 16;
  if (Text.size() != TextSize) return false;
  char Bytes[Size];
  std::size_t Count = 0;
  for (std::size_t At = 0; At < TextSize;) {
    if (At == 8 || At == 13 || At == 18 || At == 23) {
      if (Text[At++] != '-') return false;
      continue;
    }
    const std::optional<std::uint64_t> Byte = HexToUnsigned(Text.substr(At, 2));
    if (!Byte) return false;
    Bytes[Count++] = static_cast<char>(*Byte);
    At += 2;
  }
  return AppendBytes(Out, {}, {Bytes, Size});
}

class TBinaryForm final : public TPostgreSQLForm {
 public:
  std::string_view Options() const override { return " (FORMAT binary)"; }
  std::string_view Header() const override { return FileHeader; }
  std::string_view Trailer() const override { return FileTrailer; }
  void StartRow(std::size_t Columns, std::string& Out) const override {
    AppendNumber(Out, static_cast<std::uint16_t>(Columns));
  }
  void NextCell(std::string& /*Out*/) const override {}
  void EndRow(std::string& /*Out*/) const override {}
  std::size_t FirstRowSize(std::string_view Rows) const override;

  void Null(std::string& Out) const override { AppendNumber(Out, NoCell); }
  void Integer(std::int64_t Value, TPostgreSQLType Type, std::string& Out) const override;
  void Real(double Value, std::string& Out) const override {
    // What else the bits of "not a number" may say is lost in texts, too.
    if (std::isnan(Value)) Value = std::numeric_limits<double>::quiet_NaN();
    AppendCell(Out, std::bit_cast<std::uint64_t>(Value));
  }
  void Single(float Value, std::string& Out) const override {
    if (std::isnan(Value)) Value = std::numeric_limits<float>::quiet_NaN();
    AppendCell(Out, std::bit_cast<std::uint32_t>(Value));
  }
  void Boolean(bool Value, std::string& Out) const override { AppendCell(Out, static_cast<std::uint8_t>(Value)); }
  void Date(TDateTime Value, std::string& Out) const override {
    AppendCell(Out, static_cast<std::uint32_t>((Value.Microseconds - MicrosecondsTo2000) / MicrosecondsPerDay));
  }
  void Time(std::int64_t Value, std::string& Out) const override { AppendSigned(Out, Value); }
  void Timestamp(TDateTime Value, std::string& Out) const override {
    AppendSigned(Out, Value.Microseconds - MicrosecondsTo2000);
  }
  void Amount(TCurrency Value, std::string& Out) const override;
  bool Decimal(std::string_view Text, std::string& Out) const override;
  bool Money(std::string_view Decimal, int Scale, const TPostgreSQLMoney& Money, std::string& Out) const override;
  bool MomentText(std::string_view Text, TPostgreSQLType Type, std::string& Out) const override;
  bool Bytes(std::string_view Bytes, std::string& Out) const override { return AppendBytes(Out, {}, Bytes); }
  bool Characters(std::string_view Text, TPostgreSQLSending Sending, std::string& Out) const override;
};

std::size_t TBinaryForm::FirstRowSize(std::string_view Rows) const {
  std::size_t Size = 2;
  for (auto Cells = ReadBigEndian<std::uint16_t>(Rows.data()); Cells > 0; --Cells) {
    const auto Cell = ReadBigEndian<std::uint32_t>(Rows.data() + Size);
    Size += 4 + (Cell == NoCell ? 0 : Cell);
  }
  return Size;
}

void TBinaryForm::Integer(std::int64_t Value, TPostgreSQLType Type, std::string& Out) const {
  switch (Type) {
    case TPostgreSQLType::Int2:
      return AppendCell(Out, static_cast<std::uint16_t>(Value));
    case TPostgreSQLType::Int4:
    case TPostgreSQLType::Oid:
      return AppendCell(Out, static_cast<std::uint32_t>(Value));
    default:
      return AppendSigned(Out, Value);
  }
}

void TBinaryForm::Amount(TCurrency Value, std::string& Out) const {
  const std::size_t Start = Out.size();
  AppendNumber(Out, NoCell);
  AppendPostgreSQLAmount(Out, Value);
  WriteBigEndian(Out.data() + Start, static_cast<std::uint32_t>(Out.size() - Start - 4));
}

bool TBinaryForm::Decimal(std::string_view Text, std::string& Out) const {
  const std::size_t Start = Out.size();
  AppendNumber(Out, NoCell);
  if (!AppendPostgreSQLDecimal(Out, Text)) return Out.resize(Start), false;
  WriteBigEndian(Out.data() + Start, static_cast<std::uint32_t>(Out.size() - Start - 4));
  return true;
}

bool TBinaryForm::Money(std::string_view Decimal, int Scale, const TPostgreSQLMoney& /*Money*/,
                        std::string& Out) const {
  const bool Negative = Decimal.starts_with('-');
  if (Negative) Decimal.remove_prefix(1);
  const std::size_t Point = std::min(Decimal.find('.'), Decimal.size());
  const std::string_view Decimals = Decimal.substr(std::min(Point + 1, Decimal.size()));
  constexpr std::int64_t Limit = std::numeric_limits<std::int64_t>::max();
  std::int64_t Units = 0;
  const auto Take = [&](char Digit) {
    if (Digit < '0' || Digit > '9' || Units > (Limit - (Digit - '0')) / 10) return false;
    Units = Units * 10 + (Digit - '0');
    return true;
  };
  for (const char Digit : Decimal.substr(0, Point))
    if (!Take(Digit)) return false;
  for (std::size_t Place = 0; Place < static_cast<std::size_t>(Scale); ++Place)
    if (!Take(Place < Decimals.size() ? Decimals[Place] : '0')) return false;
  AppendSigned(Out, Negative ? -Units : Units);
  return true;
}

bool TBinaryForm::MomentText(std::string_view Text, TPostgreSQLType Type, std::string& Out) const {
  if (Type == TPostgreSQLType::Time) {
    const std::optional<std::int64_t> Value =
        Text == "24:00:00" ? std::optional(MicrosecondsPerDay) : StrToSysTime(Text);
    return Value && (Time(*Value, Out), true);
  }
  const bool IsDate = Type == TPostgreSQLType::Date;
  if (Text == "infinity" || Text == "-infinity") {
    const bool Ends = Text == "infinity";
    using TDays = std::numeric_limits<std::int32_t>;
    using TMicroseconds = std::numeric_limits<std::int64_t>;
    if (IsDate)
      AppendCell(Out, static_cast<std::uint32_t>(Ends ? TDays::max() : TDays::min()));
    else
      AppendSigned(Out, Ends ? TMicroseconds::max() : TMicroseconds::min());
    return true;
  }
  const std::optional<TDateTime> Value = IsDate ? StrToSysDate(Text) : SysStrToDateTime(Text);
  if (!Value) return false;
  IsDate ? Date(*Value, Out) : Timestamp(*Value, Out);
  return true;
}

bool TBinaryForm::Characters(std::string_view Text, TPostgreSQLSending Sending, std::string& Out) const {
  switch (Sending) {
    case TPostgreSQLSending::Characters:
      return AppendBytes(Out, {}, Text);
    case TPostgreSQLSending::Jsonb:
      return AppendBytes(Out, "\1", Text);  // the number of its format
    case TPostgreSQLSending::Uuid:
      return AppendUuid(Out, Text);
    case TPostgreSQLSending::OnlyText:
      break;
  }
  return false;
}

}  // namespace

const TPostgreSQLForm& PostgreSQLBinaryForm() {
  static const TBinaryForm Form;
  return Form;
}

bool HasPostgreSQLBinaryForm(const TPostgreSQLColumn& Column) {
  switch (Column.Type) {
    case TPostgreSQLType::Text:
    case TPostgreSQLType::TimeTz:
    case TPostgreSQLType::Other:
      return SendingOf(Column) != TPostgreSQLSending::OnlyText;
    default:
      return true;
  }
}

}  // namespace velkrund

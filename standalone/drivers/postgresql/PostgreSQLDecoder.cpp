#include "standalone/drivers/postgresql/PostgreSQLDecoder.h"

#include <bit>
#include <limits>

#include "standalone/drivers/postgresql/BigEndian.h"
#include "standalone/drivers/postgresql/PostgreSQLDates.h"
#include "standalone/drivers/postgresql/PostgreSQLNumeric.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

constexpr std::int64_t CurrencyUnits = 10'000;

/// How many bytes a value of the type has; 0: as many as it needs.
std::size_t SizeOf(TPostgreSQLType Type) {
  switch (Type) {
    case TPostgreSQLType::Boolean:
      return 1;
    case TPostgreSQLType::Int2:
      return 2;
    case TPostgreSQLType::Int4:
    case TPostgreSQLType::Oid:
    case TPostgreSQLType::Float4:
    case TPostgreSQLType::Date:
      return 4;
    case TPostgreSQLType::Int8:
    case TPostgreSQLType::Float8:
    case TPostgreSQLType::Money:
    case TPostgreSQLType::Time:
    case TPostgreSQLType::Timestamp:
    case TPostgreSQLType::TimestampTz:
      return 8;
    default:
      return 0;
  }
}

}  // namespace

TPostgreSQLDecoder::TPostgreSQLDecoder(const TPostgreSQLColumn& Column, const TPostgreSQLMoney& Money)
    : FType(Column.Type),
      FSending(SendingOf(Column)),
      FCurrency(Column.Info.Kind == TKvKind::Currency),
      FMinorUnits(Money.MinorUnits) {}

void TPostgreSQLDecoder::RaiseMalformed() const {
  throw EDatabaseError("Cannot read a value: the server sent it in a form that is not known here");
}

void TPostgreSQLDecoder::Decode(std::string_view Bytes, TKvVariant& Value) const {
  if (const std::size_t Size = SizeOf(FType); Size != 0 && Bytes.size() != Size) RaiseMalformed();
  const auto Signed64 = [&] { return static_cast<std::int64_t>(ReadBigEndian<std::uint64_t>(Bytes.data())); };
  switch (FType) {
    case TPostgreSQLType::Int2:
      return Value.SetInteger(static_cast<std::int16_t>(ReadBigEndian<std::uint16_t>(Bytes.data())), TKvKind::SmallInt);
    case TPostgreSQLType::Int4:
      return Value.SetInteger(static_cast<std::int32_t>(ReadBigEndian<std::uint32_t>(Bytes.data())), TKvKind::Integer);
    case TPostgreSQLType::Int8:
      return Value.SetInteger(Signed64());
    case TPostgreSQLType::Oid:
      return Value.SetInteger(ReadBigEndian<std::uint32_t>(Bytes.data()), TKvKind::LongWord);
    case TPostgreSQLType::Float4:
      return Value.SetReal(static_cast<double>(std::bit_cast<float>(ReadBigEndian<std::uint32_t>(Bytes.data()))));
    case TPostgreSQLType::Float8:
      return Value.SetReal(std::bit_cast<double>(ReadBigEndian<std::uint64_t>(Bytes.data())));
    case TPostgreSQLType::Numeric:
      if (!DecodePostgreSQLNumeric(Bytes, FCurrency, Value)) RaiseMalformed();
      return;
    case TPostgreSQLType::Money:
      return DecodeMoney(Signed64(), Value);
    case TPostgreSQLType::Boolean:
      return Value.SetBoolean(Bytes.front() != 0);
    case TPostgreSQLType::Bytes:
      return Value.BorrowText(Bytes, TKvKind::Bytes);
    case TPostgreSQLType::Date:
      return SetPostgreSQLDate(static_cast<std::int32_t>(ReadBigEndian<std::uint32_t>(Bytes.data())), Value);
    case TPostgreSQLType::Time:
      return SetPostgreSQLTime(Signed64(), Value);
    case TPostgreSQLType::Timestamp:
      return SetPostgreSQLTimestamp(Signed64(), false, Value);
    case TPostgreSQLType::TimestampTz:
      return SetPostgreSQLTimestamp(Signed64(), true, Value);
    case TPostgreSQLType::Text:
    case TPostgreSQLType::TimeTz:
    case TPostgreSQLType::Other:
      return DecodeText(Bytes, Value);
  }
}

void TPostgreSQLDecoder::DecodeText(std::string_view Bytes, TKvVariant& Value) const {
  constexpr char JsonbFormat = 1;
  constexpr std::size_t UuidSize = 16;
  switch (FSending) {
    case TPostgreSQLSending::Jsonb:
      if (!Bytes.starts_with(JsonbFormat)) RaiseMalformed();
      return Value.BorrowText(Bytes.substr(1));
    case TPostgreSQLSending::Uuid:
      break;
    default:
      return Value.BorrowText(Bytes);
  }
  if (Bytes.size() != UuidSize) RaiseMalformed();
  std::string& Text = Value.StartText();
  for (std::size_t I = 0; I < UuidSize; ++I) {
    constexpr std::string_view Digits = "0123456789abcdef";
    const auto Byte = static_cast<unsigned char>(Bytes[I]);
    if (I == 4 || I == 6 || I == 8 || I == 10) Text += '-';
    Text += Digits[Byte >> 4U];
    Text += Digits[Byte & 0xFU];
  }
  Value.FinishText();
}

void TPostgreSQLDecoder::DecodeMoney(std::int64_t MinorUnits, TKvVariant& Value) const {
  if (FMinorUnits <= CurrencyUnits) {
    const std::int64_t Factor = CurrencyUnits / FMinorUnits;
    if (MinorUnits >= std::numeric_limits<std::int64_t>::min() / Factor &&
        MinorUnits <= std::numeric_limits<std::int64_t>::max() / Factor)
      return Value.SetCurrency({MinorUnits * Factor});
  }
  const bool Negative = MinorUnits < 0;
  const auto Bits = static_cast<std::uint64_t>(MinorUnits);
  const std::uint64_t Magnitude = Negative ? 0 - Bits : Bits;
  std::string& Text = Value.StartText();
  if (Negative) Text += '-';
  const auto Units = static_cast<std::uint64_t>(FMinorUnits);
  AppendUnsigned(Text, Magnitude / Units);
  if (Units > 1) {
    Text += '.';
    std::string Decimals;
    AppendUnsigned(Decimals, Magnitude % Units + Units);
    // The leading one has kept the zeros behind the point.
    Text += std::string_view(Decimals).substr(1);
  }
  Value.FinishText();
}

}  // namespace velkrund

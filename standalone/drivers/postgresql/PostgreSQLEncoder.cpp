#include "standalone/drivers/postgresql/PostgreSQLEncoder.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "standalone/drivers/postgresql/PostgreSQLChecks.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

constexpr const char* WouldBeRounded = "the number would be rounded";
constexpr const char* FractionLost = "its fraction of a second would be rounded";

/// Whole doubles in the range of 64-bit integers, negative zero apart.
std::optional<std::int64_t> ExactInteger(double Value) {
  if (!(Value >= -0x1p63 && Value < 0x1p63) || Value != std::trunc(Value)) return std::nullopt;
  if (Value == 0 && std::signbit(Value)) return std::nullopt;
  return static_cast<std::int64_t>(Value);
}

}  // namespace

TPostgreSQLEncoder::TPostgreSQLEncoder(const TPostgreSQLColumn& Column, const TPostgreSQLMoney& Money,
                                       const TCodePage& CodePage, bool AllowLoss, const TPostgreSQLForm& Form)
    : FForm(&Form),
      FSending(SendingOf(Column)),
      FType(Column.Type),
      FMaxCharacters(Column.MaxCharacters),
      FMaxBytes(Column.MaxBytes),
      FScale(Column.Scale),
      FFraction(Column.Fraction),
      FMoney(Money),
      FCodePage(&CodePage),
      FAllowLoss(AllowLoss) {
  for (std::int64_t Units = Money.MinorUnits; Units > 1; Units /= 10) ++FMoneyScale;
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::Append(const TKvVariant& Value, std::string& Out) {
  FRefusedLoss = FLacksForm = FLost = false;
  switch (Value.Kind()) {
    case TKvKind::Null:
      FForm->Null(Out);
      return nullptr;
    case TKvKind::Byte:
    case TKvKind::SmallInt:
    case TKvKind::Word:
    case TKvKind::Integer:
    case TKvKind::LongWord:
    case TKvKind::Int64:
      return PutInteger(Value.AsInteger(), Out);
    case TKvKind::UInt64:
      return PutUnsigned(Value.AsUnsigned(), Out);
    case TKvKind::Double:
    case TKvKind::Extended:
      return PutReal(Value.AsReal(), Out);
    case TKvKind::Char:
    case TKvKind::String:
      return PutText(Value.AsText(), Out);
    case TKvKind::AnsiChar:
    case TKvKind::AnsiString:
      return PutAnsi(Value.AsText(), Out);
    case TKvKind::Bytes:
      return PutBytes(Value.AsText(), Out);
    case TKvKind::Boolean:
    case TKvKind::WordBool:
      return PutBoolean(Value.AsBoolean(), Out);
    case TKvKind::Currency:
      return PutCurrency(Value.AsCurrency(), Out);
    case TKvKind::SysDate:
    case TKvKind::SysTime:
    case TKvKind::DateTime:
      return PutMoment(Value, Out);
  }
  return "its kind is unknown";
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::Lose(TRefusal Refusal) {
  FRefusedLoss = !FAllowLoss;
  if (FRefusedLoss) return Refusal;
  ++FChangedValues;
  FLost = true;
  return nullptr;
}

void TPostgreSQLEncoder::TakeBack() {
  if (std::exchange(FLost, false)) --FChangedValues;
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::Written(bool IsWritten) {
  FLacksForm = !IsWritten;
  return IsWritten ? nullptr : "it has no form in which the engine would take it";
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutWhole(std::int64_t Value, std::int64_t Min, std::int64_t Max,
                                                          std::string& Out) {
  if (Value < Min || Value > Max) return "the integer is out of the column's range";
  FHighest = FHasIntegers ? std::max(FHighest, Value) : Value;
  FLowest = FHasIntegers ? std::min(FLowest, Value) : Value;
  FHasIntegers = true;
  FForm->Integer(Value, FType, Out);
  return nullptr;
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutInteger(std::int64_t Value, std::string& Out) {
  switch (FType) {
    case TPostgreSQLType::Int2:
      return PutWhole(Value, std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max(), Out);
    case TPostgreSQLType::Int4:
      return PutWhole(Value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max(), Out);
    case TPostgreSQLType::Int8:
      return PutWhole(Value, std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max(), Out);
    case TPostgreSQLType::Oid:
      return PutWhole(Value, 0, std::numeric_limits<std::uint32_t>::max(), Out);
    case TPostgreSQLType::Float4:
    case TPostgreSQLType::Float8:
      return IsExactAsReal(Value) ? PutFloat(static_cast<double>(Value), Out) : WouldBeRounded;
    case TPostgreSQLType::Boolean:
      if (Value != 0 && Value != 1) return "of the integers the column holds 0 and 1 only";
      return PutBoolean(Value == 1, Out);
    default:
      FScratch.clear();
      AppendInteger(FScratch, Value);
      return PutDecimal(FScratch, Out);
  }
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutUnsigned(std::uint64_t Value, std::string& Out) {
  if (Value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
    return PutInteger(static_cast<std::int64_t>(Value), Out);
  switch (FType) {
    case TPostgreSQLType::Numeric:
    case TPostgreSQLType::Text:
      FScratch.clear();
      AppendUnsigned(FScratch, Value);
      return PutDecimal(FScratch, Out);
    default:
      return "the integer is out of the column's range";
  }
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutReal(double Value, std::string& Out) {
  switch (FType) {
    case TPostgreSQLType::Float4:
    case TPostgreSQLType::Float8:
      return PutFloat(Value, Out);
    case TPostgreSQLType::Int2:
    case TPostgreSQLType::Int4:
    case TPostgreSQLType::Int8:
    case TPostgreSQLType::Oid: {
      const std::optional<std::int64_t> Integer = ExactInteger(Value);
      return Integer ? PutInteger(*Integer, Out) : WouldBeRounded;
    }
    case TPostgreSQLType::Money: {
      const std::optional<TCurrency> Amount = RealToCurrency(Value);
      return Amount ? PutCurrency(*Amount, Out) : WouldBeRounded;
    }
    case TPostgreSQLType::Numeric:
      if (Value == 0 && std::signbit(Value)) return "the column has no negative zero";
      [[fallthrough]];
    default:
      FScratch.clear();
      AppendReal(FScratch, Value);
      return PutDecimal(FScratch, Out);
  }
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutFloat(double Value, std::string& Out) const {
  if (FType == TPostgreSQLType::Float8) {
    FForm->Real(Value, Out);
    return nullptr;
  }
  if (std::isfinite(Value) && std::abs(Value) > static_cast<double>(std::numeric_limits<float>::max()))
    return "it is beyond the column's range";
  const auto Single = static_cast<float>(Value);
  if (static_cast<double>(Single) != Value && !std::isnan(Value)) return WouldBeRounded;
  FForm->Single(Single, Out);
  return nullptr;
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutCurrency(TCurrency Value, std::string& Out) {
  constexpr int CurrencyScale = 4;
  constexpr std::int64_t Powers[] = {1, 10, 100, 1'000, 10'000};
  constexpr std::int64_t Units = Powers[CurrencyScale];
  switch (FType) {
    case TPostgreSQLType::Float4:
    case TPostgreSQLType::Float8: {
      const double Real = CurrencyToReal(Value);
      return RealToCurrency(Real) == Value ? PutFloat(Real, Out) : WouldBeRounded;
    }
    case TPostgreSQLType::Int2:
    case TPostgreSQLType::Int4:
    case TPostgreSQLType::Int8:
    case TPostgreSQLType::Oid:
      return Value.TenThousandths % Units == 0 ? PutInteger(Value.TenThousandths / Units, Out) : WouldBeRounded;
    case TPostgreSQLType::Numeric:
      if (const int Scale = std::min(FScale.value_or(CurrencyScale), CurrencyScale); Scale >= 0) {
        if (Value.TenThousandths % Powers[CurrencyScale - Scale] != 0) return WouldBeRounded;
        FForm->Amount(Value, Out);
        return nullptr;
      }
      [[fallthrough]];
    default:
      FScratch.clear();
      AppendCurrency(FScratch, Value);
      return PutDecimal(FScratch, Out);
  }
}

/// A number into a column that is neither of integers nor of doubles.
TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutDecimal(std::string_view Decimal, std::string& Out) {
  switch (FType) {
    case TPostgreSQLType::Numeric:
      if (FScale && LastPlace(Decimal) > *FScale) return WouldBeRounded;
      return Written(FForm->Decimal(Decimal, Out));
    case TPostgreSQLType::Money:
      return PutMoney(Decimal, Out);
    case TPostgreSQLType::Text:
      return PutCharacters(Decimal, Out);
    default:
      return "the column holds no numbers";
  }
}

/// Decimal: digits, with a point where there are decimals.
TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutMoney(std::string_view Decimal, std::string& Out) {
  if (LastPlace(Decimal) > FMoneyScale) return WouldBeRounded;
  return Written(FForm->Money(Decimal, FMoneyScale, FMoney, Out));
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutBoolean(bool Value, std::string& Out) {
  if (FType == TPostgreSQLType::Text) return PutCharacters(Value ? "TRUE" : "FALSE", Out);
  if (FType != TPostgreSQLType::Boolean) return "the column holds no booleans";
  FForm->Boolean(Value, Out);
  return nullptr;
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutOwnText(const TKvVariant& Value, std::string& Out) {
  FScratch.clear();
  Value.AppendAsText(FScratch);
  return PutCharacters(FScratch, Out);
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutMoment(const TKvVariant& Value, std::string& Out) {
  constexpr std::int64_t Powers[] = {1'000'000, 100'000, 10'000, 1'000, 100, 10, 1};
  const bool IsTime = Value.Kind() == TKvKind::SysTime;
  const auto WouldRound = [&](std::int64_t Microseconds) {
    return Microseconds % Powers[std::clamp(FFraction.value_or(6), 0, 6)] != 0;
  };
  switch (FType) {
    case TPostgreSQLType::Text:
      return PutOwnText(Value, Out);
    case TPostgreSQLType::Date:
      if (IsTime) return "a time is not a date";
      if (Value.AsDateTime().Microseconds % MicrosecondsPerDay != 0) return "the column would drop its time";
      FForm->Date(Value.AsDateTime(), Out);
      return nullptr;
    case TPostgreSQLType::Time:
    case TPostgreSQLType::TimeTz:
      if (!IsTime) return "a date is not a time";
      if (WouldRound(Value.AsTimeOfDay())) return FractionLost;
      FForm->Time(Value.AsTimeOfDay(), Out);
      return nullptr;
    case TPostgreSQLType::Timestamp:
    case TPostgreSQLType::TimestampTz:
      if (IsTime) return "a time is not a date";
      if (WouldRound(Value.AsDateTime().Microseconds)) return FractionLost;
      FForm->Timestamp(Value.AsDateTime(), Out);
      return nullptr;
    default:
      return "the column holds no dates and times";
  }
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutBytes(std::string_view Bytes, std::string& Out) {
  if (FType != TPostgreSQLType::Bytes) return "the column holds no bytes";
  return Written(FForm->Bytes(Bytes, Out));
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutAnsi(std::string_view Bytes, std::string& Out) {
  if (FType == TPostgreSQLType::Bytes) return PutBytes(Bytes, Out);
  FDecoded.clear();
  FCodePage->Decode(Bytes, FDecoded);
  return PutText(FDecoded, Out);
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutText(std::string_view Text, std::string& Out) {
  switch (FType) {
    case TPostgreSQLType::Int2:
    case TPostgreSQLType::Int4:
    case TPostgreSQLType::Int8:
    case TPostgreSQLType::Oid:
    case TPostgreSQLType::Float4:
    case TPostgreSQLType::Float8:
    case TPostgreSQLType::Numeric:
    case TPostgreSQLType::Money:
      return PutNumberText(Text, Out);
    case TPostgreSQLType::Boolean:
      if (Text != "TRUE" && Text != "FALSE") return "of the texts the column holds TRUE and FALSE only";
      return PutBoolean(Text == "TRUE", Out);
    case TPostgreSQLType::Bytes:
      return "the column holds bytes only";
    case TPostgreSQLType::Date:
    case TPostgreSQLType::Time:
    case TPostgreSQLType::TimeTz:
    case TPostgreSQLType::Timestamp:
    case TPostgreSQLType::TimestampTz:
      return PutMomentText(Text, Out);
    case TPostgreSQLType::Other:
      if (FFraction && LongestFraction(Text) > *FFraction) return "its decimals would be rounded";
      [[fallthrough]];
    case TPostgreSQLType::Text:
      break;
  }
  return PutCharacters(Text, Out);
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutNumberText(std::string_view Text, std::string& Out) {
  constexpr const char* Refusal = "the text is not the plain form of a number that the column holds";
  switch (FType) {
    case TPostgreSQLType::Numeric:
      if (Text == "NaN" || Text == "Infinity" || Text == "-Infinity") return Written(FForm->Decimal(Text, Out));
      [[fallthrough]];
    case TPostgreSQLType::Money:
      return IsPlainDecimal(Text) ? PutDecimal(Text, Out) : Refusal;
    case TPostgreSQLType::Float4:
    case TPostgreSQLType::Float8:
      if (!IsPlainInteger(Text)) {
        const std::optional<double> Real = StrToReal(Text);
        return Real && Str(*Real) == Text ? PutFloat(*Real, Out) : Refusal;
      }
      [[fallthrough]];
    default:
      const std::optional<std::int64_t> Integer = IsPlainInteger(Text) ? StrToInt64(Text) : std::nullopt;
      return Integer ? PutInteger(*Integer, Out) : Refusal;
  }
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutMomentText(std::string_view Text, std::string& Out) {
  const bool HasDayAndTime = FType == TPostgreSQLType::Timestamp || FType == TPostgreSQLType::TimestampTz;
  if (HasDayAndTime && IsPostgreSQLDay(Text)) {
    const TRefusal Refusal = Lose("the text is a day without a time; allow losses to store its midnight");
    return Refusal ? Refusal : Written(FForm->MomentText(Text, FType, Out));
  }
  const auto Fits = [&] {
    switch (FType) {
      case TPostgreSQLType::Date:
        return IsPostgreSQLDate(Text);
      case TPostgreSQLType::Time:
        return IsPostgreSQLTime(Text, false);
      case TPostgreSQLType::TimeTz:
        return IsPostgreSQLTime(Text, true);
      default:
        return IsPostgreSQLTimestamp(Text, FType == TPostgreSQLType::TimestampTz);
    }
  };
  if (!Fits()) return "the text is not the plain form of a date or time that the column holds";
  if (FFraction && LongestFraction(Text) > *FFraction) return "its fraction of a second would be rounded";
  return Written(FForm->MomentText(Text, FType, Out));
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutCharacters(std::string_view Text, std::string& Out) {
  if (Text.find('\0') != std::string_view::npos) return "the engine has no character U+0000";
  if (!IsStrictUtf8(Text)) {
    FReplaced.clear();
    AppendStrictUtf8(FReplaced, Text);
    Text = FReplaced;
    if (const TRefusal Refusal = Lose("the text has malformed characters, which the engine does not hold; allow losses "
                                      "to store it with replacement characters"))
      return Refusal;
  }
  if (FMaxBytes && Text.size() > static_cast<std::size_t>(*FMaxBytes))
    return "the text is longer than the column takes";
  // Blanks beyond the length would be cut without a word.
  if (FMaxCharacters && Text.size() > static_cast<std::size_t>(*FMaxCharacters) &&
      CharacterCount(Text) > static_cast<std::size_t>(*FMaxCharacters))
    return "the text is longer than the column takes";
  return Written(FForm->Characters(Text, FSending, Out));
}

}  // namespace velkrund

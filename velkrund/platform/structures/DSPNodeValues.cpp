// What a node's value is, and what it can be taken for.

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/structures/DSPErrors.h"
#include "velkrund/platform/structures/DSPNode.h"

namespace velkrund {

namespace {

// Midnight of 1899-12-30, the day number 0.
constexpr TDateTime DayZero{-25'569 * MicrosecondsPerDay};

void SetZero(TKvVariant& Value, TKvKind Kind) {
  switch (Kind) {
    case TKvKind::Null:
      return Value.SetNull();
    case TKvKind::Char:
    case TKvKind::AnsiChar:
      return Value.SetText(std::string_view("\0", 1), Kind);
    case TKvKind::String:
    case TKvKind::AnsiString:
    case TKvKind::Bytes:
      return Value.SetText({}, Kind);
    case TKvKind::SysDate:
      return Value.SetSysDate(DayZero);
    case TKvKind::DateTime:
      return Value.SetDateTime(DayZero);
    default:
      return Value.SetInteger(0, Kind);
  }
}

}  // namespace

void TDSPNode::SetValueType(TDSPValueType Type) {
  FType = Type;
  SetZero(FValue, KindOfType(Type));
}

void TDSPNode::SetValue(TKvVariant Value) {
  if (!FitsType(FType, Value))
    throw EDSPError(Format("Node '%s' of type %d cannot hold a value of kind %d", FParent ? GetFullName() : FName,
                           static_cast<int>(FType), static_cast<int>(Value.Kind())));
  FValue = std::move(Value);
}

void TDSPNode::CanNotBe(std::string_view What) const {
  throw EDSPError(Format("The value of node '%s' (type %d) is not %s", FParent ? GetFullName() : FName,
                         static_cast<int>(FType), What));
}

std::string TDSPNode::GetAsString() const {
  std::string Text;
  if (IsAnsiKind(FValue.Kind()))
    WorkSettings().AnsiCodePage->Decode(FValue.AsText(), Text);
  else
    FValue.AppendAsText(Text);
  return Text;
}

bool TDSPNode::GetAsBoolean() const { return IsBooleanKind(FValue.Kind()) ? FValue.AsBoolean() : GetAsDouble() != 0; }

double TDSPNode::GetAsDouble() const {
  const TKvKind Kind = FValue.Kind();
  if (IsRealKind(Kind)) return FValue.AsReal();
  if (IsIntegerKind(Kind)) return static_cast<double>(FValue.AsInteger());
  if (Kind == TKvKind::UInt64) return static_cast<double>(FValue.AsUnsigned());
  if (Kind == TKvKind::Currency) return CurrencyToReal(FValue.AsCurrency());
  if (IsMomentKind(Kind)) return DateTimeToDayNumber(FValue.AsDateTime());
  if (Kind == TKvKind::SysTime) return static_cast<double>(FValue.AsTimeOfDay()) / MicrosecondsPerDay;
  CanNotBe("a number");
}

TDateTime TDSPNode::GetAsDateTime() const {
  const TKvKind Kind = FValue.Kind();
  if (IsMomentKind(Kind)) return FValue.AsDateTime();
  if (Kind == TKvKind::SysTime) return {DayZero.Microseconds + FValue.AsTimeOfDay()};
  const auto Moment = IsRealKind(Kind) ? DayNumberToDateTime(FValue.AsReal()) : std::nullopt;
  return Moment ? *Moment : (CanNotBe("a date"), DayZero);
}

TCurrency TDSPNode::GetAsCurrency() const {
  if (FValue.Kind() == TKvKind::Currency) return FValue.AsCurrency();
  const auto Amount = RealToCurrency(GetAsDouble());
  return Amount ? *Amount : (CanNotBe("an amount of money"), TCurrency());
}

std::string TDSPNode::GetAsANSIString() const {
  if (IsAnsiKind(FValue.Kind())) return std::string(FValue.AsText());
  std::string Bytes;
  WorkSettings().AnsiCodePage->Encode(GetAsString(), Bytes);
  return Bytes;
}

std::string_view TDSPNode::GetAsBinary() const {
  if (FValue.Kind() != TKvKind::Bytes) CanNotBe("a byte array");
  return FValue.AsText();
}

}  // namespace velkrund

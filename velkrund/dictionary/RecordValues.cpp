// Value texts of version 200.

#include <algorithm>

#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/dictionary/RecordData.h"
#include "velkrund/eif/TextEscapes.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/HexDigits.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

void ReadCurrency(std::string_view Text, TKvVariant& Value) {
  const auto Amount = StrToCurrency(Text);
  if (!Amount) throw EConvertError(Format("'%s' is not a valid currency value", Text));
  Value.SetCurrency(*Amount);
}

// What every date and time has is in no number.
bool LooksLikeDate(std::string_view Text) {
  return Text.size() >= 8 && (Text[2] == ':' || (Text.size() >= 10 && Text[4] == '-' && Text[7] == '-'));
}

bool ReadDate(std::string_view Text, TKvVariant& Value) {
  if (const auto Date = StrToSysDate(Text)) return Value.SetSysDate(*Date), true;
  if (const auto Time = StrToSysTime(Text)) return Value.SetSysTime(*Time), true;
  if (const auto Moment = SysStrToDateTime(Text)) return Value.SetDateTime(*Moment), true;
  return false;
}

bool IsDigit(char Character) { return Character >= '0' && Character <= '9'; }

bool IsWholeNumber(std::string_view Text) {
  const std::size_t Sign = Text[0] == '-' || Text[0] == '+' ? 1 : 0;
  return Text.size() > Sign && std::all_of(Text.begin() + static_cast<std::ptrdiff_t>(Sign), Text.end(), &IsDigit);
}

// Numbers and dates; false when the text is neither.
bool ReadPlain(std::string_view Text, TKvVariant& Value) {
  if (LooksLikeDate(Text)) return ReadDate(Text, Value);
  if (IsWholeNumber(Text)) {
    if (const auto Integer = StrToInt64(Text)) return Value.SetInteger(*Integer), true;
    if (const auto Unsigned = StrToUInt64(Text)) return Value.SetUnsigned(*Unsigned), true;
  }
  if (const auto Real = StrToReal(Text)) return Value.SetReal(*Real), true;
  return false;
}

bool ReadWord(std::string_view Text, TKvVariant& Value) {
  if (SameAsciiWord(Text, "NULL")) return Value.SetNull(), true;
  if (SameAsciiWord(Text, "TRUE")) return Value.SetBoolean(true), true;
  if (SameAsciiWord(Text, "FALSE")) return Value.SetBoolean(false), true;
  return false;
}

}  // namespace

void TEIRecordData::ReadText(std::span<char> Text, TKvVariant& Value) const {
  const std::span<char> Inside = Text.subspan(1, Text.size() - 2);
  std::string BadDigits;
  const std::size_t Length = UnescapeInPlace(Inside, BadDigits);
  if (!BadDigits.empty()) BadCharacter(BadDigits);
  Value.BorrowText({Inside.data(), Length});
}

void TEIRecordData::BadCharacter(std::string_view Digits) const {
  throw EDicUtilError(Format("Error importing %s. Invalid character (#$%s) in string constant.", Content(), Digits),
                      {.Code = TErrorCode::Value});
}

void TEIRecordData::ReadBytes(std::span<char> Digits, TKvVariant& Value) const {
  if (Digits.size() % 2 != 0)
    throw EDicUtilError(Format("Error importing %s. Incorrect binary value", Content()), {.Code = TErrorCode::Value});
  const std::size_t Good = DecodeHex({Digits.data(), Digits.size()}, Digits.data());
  if (Good < Digits.size())
    throw EConvertError(Format("'$%s' is not a valid integer value", std::string_view(&Digits[Good], 2)));
  Value.BorrowText({Digits.data(), Digits.size() / 2}, TKvKind::Bytes);
}

void TEIRecordData::ValueToString(TField& Field, std::string& Text) {
  const TKvVariant& Value = Field.Value();
  switch (Value.Kind()) {
    case TKvKind::Null:
      Text += "NULL";
      return;
    case TKvKind::Byte:
    case TKvKind::SmallInt:
    case TKvKind::Word:
    case TKvKind::Integer:
    case TKvKind::LongWord:
    case TKvKind::Int64:
      return AppendInteger(Text, Value.AsInteger());
    case TKvKind::UInt64:
      return AppendUnsigned(Text, Value.AsUnsigned());
    case TKvKind::Double:
    case TKvKind::Extended:
      return AppendReal(Text, Value.AsReal());
    case TKvKind::Boolean:
    case TKvKind::WordBool:
      Text += Value.AsBoolean() ? "TRUE" : "FALSE";
      return;
    case TKvKind::SysDate:
    case TKvKind::SysTime:
    case TKvKind::DateTime:
      return Value.AppendAsText(Text);
    case TKvKind::Currency:
      Text += '$';
      return AppendCurrency(Text, Value.AsCurrency());
    case TKvKind::Bytes:
      ReserveFor(Text, 2 * Value.AsText().size());
      Text += "0x";
      return AppendHex(Text, Value.AsText());
    case TKvKind::AnsiChar:
    case TKvKind::AnsiString:
    case TKvKind::Char:
    case TKvKind::String:
      return TextToString(Field, Value, Text);
  }
  throw EDicUtilError(
      Format("Can not exporttable data. Field value is of unknown type (VarType:%d)", static_cast<int>(Value.Kind())));
}

void TEIRecordData::TextToString(const TField& Field, const TKvVariant& Value, std::string& Text) {
  std::string_view Source = Value.AsText();
  std::string Decoded;
  if (IsAnsiKind(Value.Kind())) {
    WorkSettings().AnsiCodePage->Decode(Source, Decoded);
    Source = Decoded;
  }
  Text += '\'';
  const std::size_t Start = Text.size();
  AppendEscaped(Text, Source);
  if (FWritesAnsi) CheckRepresentable(Field, std::string_view(Text).substr(Start));
  Text += '\'';
}

// The stream would replace what the code page lacks; here field and record can still be named.
void TEIRecordData::CheckRepresentable(const TField& Field, std::string_view Text) {
  if (!FStrictText) return;
  FEncoded.clear();
  if (const std::int64_t Lost = WorkSettings().AnsiCodePage->Encode(Text, FEncoded)) TextLost(Lost, PlaceOf(Field));
}

void TEIRecordData::StringToValue(std::span<char> Text, TField& Field) {
  const std::string_view View(Text.data(), Text.size());
  TKvVariant& Value = Field.Buffer();
  const char First = View.front();
  if (First == '\'') {
    if (View.size() >= 2 && View.back() == '\'') return ReadText(Text, Value);
  } else if (View.starts_with("0x")) {
    return ReadBytes(Text.subspan(2), Value);
  } else if (First == '$') {
    return ReadCurrency(View.substr(1), Value);
  } else if ((!IsDigit(First) && ReadWord(View, Value)) || ReadPlain(View, Value)) {
    return;
  }
  Unparseable(Field, Format("Can not import %s. Invalid record data structure. Field value is incorrect "
                            "(Field:'%s'); Value: %s",
                            Content(), Field.Name(), View));
}

}  // namespace velkrund

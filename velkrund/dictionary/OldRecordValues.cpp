// Value texts of version 100.

#include <cmath>
#include <limits>

#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/dictionary/RecordData.h"
#include "velkrund/eif/TextEscapes.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/ByteWords.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/HexDigits.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::int64_t MinInteger = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t MaxInteger = std::numeric_limits<std::int32_t>::max();
constexpr TDateTime DayZero{-25'569 * MicrosecondsPerDay};  // 1899-12-30

template <typename T>
void AppendBounded(std::string& Text, T Value, const char* Content) {
  if (std::cmp_less(Value, MinInteger) || std::cmp_greater(Value, MaxInteger))
    throw EDicUtilError(Format("Can not export %s. Field value %s is out of bounds %d and %d.", Content,
                               std::to_string(Value), MinInteger, MaxInteger),
                        {.Code = TErrorCode::Value, .Value = std::to_string(Value)});
  AppendInteger(Text, static_cast<std::int64_t>(Value));
}

TDateTime TimeOnDayZero(std::int64_t TimeOfDay) { return {DayZero.Microseconds + TimeOfDay}; }

// A day number read into a column of dates; false when it is no such value.
bool SetDayNumber(TKvVariant& Value, TKvKind Column, double Number) {
  const auto Moment = DayNumberToDateTime(Number);
  if (!Moment) return false;
  const std::int64_t OfDay = (Moment->Microseconds - DayZero.Microseconds) % MicrosecondsPerDay;
  switch (Column) {
    case TKvKind::DateTime:
      return Value.SetDateTime(*Moment), true;
    case TKvKind::SysDate:
      return OfDay == 0 && (Value.SetSysDate(*Moment), true);
    case TKvKind::SysTime:
      return Moment->Microseconds - DayZero.Microseconds == OfDay && OfDay >= 0 && (Value.SetSysTime(OfDay), true);
    default:
      return false;
  }
}

// A number has no kind of its own here: it goes to that of the column. Returns the error text, empty on success.
std::string ReadNumber(std::string_view Text, TField& Field) {
  const TKvKind Column = Field.Kind();
  TKvVariant& Value = Field.Buffer();
  if (Column == TKvKind::Currency)
    if (const auto Amount = StrToCurrency(Text)) return Value.SetCurrency(*Amount), std::string();
  if (const auto Integer = StrToInt32(Text)) {
    if (!SetDayNumber(Value, Column, *Integer)) Value.SetInteger(*Integer, TKvKind::Integer);
    return {};
  }
  std::size_t ErrorPosition = 0;
  const auto Real = StrToReal(Text, ErrorPosition);
  if (!Real) return Format("Error at position: %d", ErrorPosition);
  // An amount with an exponent; an amount has no negative zero.
  if (Column == TKvKind::Currency)
    if (const auto Amount = RealToCurrency(*Real + 0.0)) return Value.SetCurrency(*Amount), std::string();
  if (!SetDayNumber(Value, Column, *Real)) Value.SetReal(*Real);
  return {};
}

constexpr bool IsDateKind(TKvKind Kind) { return IsMomentKind(Kind) || Kind == TKvKind::SysTime; }

// Whether a number is read as a date by a column of that kind.
bool IsDayNumber(double Number, TKvKind Column) {
  TKvVariant Ignored;
  return IsDateKind(Column) && SetDayNumber(Ignored, Column, Number);
}

bool KeepsMoment(TDateTime Moment) {
  // Up to here a double tells microseconds apart.
  constexpr std::int64_t Near = 65'535 * MicrosecondsPerDay;
  const std::int64_t Distance = Moment.Microseconds - DayZero.Microseconds;
  return (Distance > -Near && Distance < Near) || DayNumberToDateTime(DateTimeToDayNumber(Moment)) == Moment;
}

// What a reader would make of a value that it meets in a column of that kind, in words; null where it is the value
// itself. Numbers, dates and quoted texts have no kind in the file: they take that of the column.
const char* ChangeOf(const TKvVariant& Value, TKvKind Column) {
  switch (const TKvKind Kind = Value.Kind()) {
    case TKvKind::Null:
    case TKvKind::Boolean:
    case TKvKind::WordBool:
    case TKvKind::AnsiChar:
    case TKvKind::AnsiString:
      return nullptr;
    case TKvKind::Char:
    case TKvKind::String:
      return Column == TKvKind::Bytes ? "the text would come back as bytes" : nullptr;
    case TKvKind::Bytes:
      return Column != TKvKind::Bytes ? "the bytes would come back as a text" : nullptr;
    case TKvKind::Double:
    case TKvKind::Extended:
      if (Column == TKvKind::Currency && Value.AsReal() == 0 && std::signbit(Value.AsReal()))
        return "the negative zero would lose its sign";
      return IsDayNumber(Value.AsReal(), Column) ? "the number would come back as a date or time" : nullptr;
    case TKvKind::Currency:
      return Column != TKvKind::Currency ? "the amount would come back as another number" : nullptr;
    case TKvKind::SysDate:
    case TKvKind::SysTime:
    case TKvKind::DateTime:
      if (Column != Kind) return "the date or time would come back as another value";
      return Kind == TKvKind::DateTime && !KeepsMoment(Value.AsDateTime()) ? "the microseconds would be rounded"
                                                                           : nullptr;
    default:
      return IsDayNumber(static_cast<double>(Value.AsInteger()), Column)
                 ? "the number would come back as a date or time"
                 : nullptr;
  }
}

/// Turns a quoted text into bytes of the code page, in place.
class TOldTextReader {
 public:
  TOldTextReader(std::span<char> Text, const TCodePage& Page) : FText(Text), FPage(Page) {}

  /// The error text; empty on success, when Bytes holds the result.
  std::string Read();
  std::string_view Bytes() const { return {FText.data(), FLength}; }
  std::int64_t Lost() const { return FLost; }

 private:
  void Put(unsigned char Byte) { FText[FLength++] = static_cast<char>(Byte); }
  void ReadPlain();
  bool ReadEscape();
  bool ReadCharacter();
  bool Fail(std::string Error) { return FError = std::move(Error), false; }

  std::span<char> FText;
  const TCodePage& FPage;
  std::string FError;
  std::size_t FAt = 1;        // byte to read next
  std::size_t FPosition = 2;  // the same in characters, from 1
  std::size_t FLength = 0;
  std::int64_t FLost = 0;
};

std::string TOldTextReader::Read() {
  if (FText.size() < 2 || FText.back() != '\'') return "String closing quote not founded";
  while (FAt < FText.size() - 1) {
    const char First = FText[FAt];
    if (First == '#' ? !ReadEscape() : !ReadCharacter()) break;
    ReadPlain();
  }
  return std::move(FError);
}

/// ASCII characters that stand for themselves, eight at a time.
void TOldTextReader::ReadPlain() {
  for (std::size_t Count = WordSize; Count == WordSize;) {
    const std::size_t Left = FText.size() - 1 - FAt;
    const TByteWord Word = LoadUpTo(&FText[FAt], Left);
    const TByteWord NoControl = (Word & ~FlagBits) + EachByte(0x60);
    const TByteWord Other = ~NoControl | Word | EqualFlags(Word, '#') | EqualFlags(Word, '|');
    // Zeros stand for bytes behind the end.
    Count = FirstFlag(Other & FlagBits);
    StoreBytes(&FText[FLength], Word, Count);
    FLength += Count;
    FAt += Count;
    FPosition += Count;
  }
}

bool TOldTextReader::ReadEscape() {
  const std::string_view Behind(FText.data() + FAt + 1, FText.size() - FAt - 1);
  const std::size_t DigitBytes = Utf16Prefix(Behind, 2);
  if (DigitBytes == Behind.size()) return Fail(Format("Uncorrect symbol code on position:%d", FPosition));
  const unsigned High = HexValue(Behind[0]), Low = HexValue(Behind[1]);
  if ((High | Low) > 15) return Fail(Format("Uncorrect symbol code on position:%d", FPosition + 2));
  Put(static_cast<unsigned char>(High << 4U | Low));
  FAt += 3;
  FPosition += 3;
  return true;
}

bool TOldTextReader::ReadCharacter() {
  const auto First = static_cast<unsigned char>(FText[FAt]);
  if (First < 0x20 || First == '|')
    return Fail(Format("Uncorrect string symbol №%d symbol code:%d", FPosition, static_cast<int>(First)));
  if (First < 0x80) {
    Put(First);
    ++FAt;
    ++FPosition;
    return true;
  }
  const char32_t Code = NextCodePoint({FText.data(), FText.size()}, FAt);
  const auto Byte = FPage.FromUnicode(Code);
  if (!Byte) ++FLost;
  Put(Byte.value_or('?'));
  FPosition += Code > 0xFFFF ? 2 : 1;
  return true;
}

}  // namespace

void TEIRecordData::OldValueToString(TField& Field, std::string& Text, const char* UnknownKind) {
  const TKvVariant& Value = Field.Value();
  if (const char* Change = ChangeOf(Value, Field.Kind())) ValueLost(Field, Value, Change);
  const TCodePage& Page = *WorkSettings().AnsiCodePage;
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
      return AppendBounded(Text, Value.AsInteger(), Content());
    case TKvKind::UInt64:
      return AppendBounded(Text, Value.AsUnsigned(), Content());
    case TKvKind::Double:
    case TKvKind::Extended:
      return AppendReal(Text, Value.AsReal());
    case TKvKind::SysDate:
    case TKvKind::DateTime:
      return AppendReal(Text, DateTimeToDayNumber(Value.AsDateTime()));
    case TKvKind::SysTime:
      return AppendReal(Text, DateTimeToDayNumber(TimeOnDayZero(Value.AsTimeOfDay())));
    case TKvKind::Currency:
      return AppendCurrency(Text, Value.AsCurrency());
    case TKvKind::Boolean:
    case TKvKind::WordBool:
      Text += Value.AsBoolean() ? "TRUE" : "FALSE";
      return;
    case TKvKind::Char:
    case TKvKind::String:
      Text += '\'';
      if (const std::int64_t Lost = AppendOldEscaped(Text, Value.AsText(), Page)) TextLost(Lost, PlaceOf(Field));
      Text += '\'';
      return;
    case TKvKind::AnsiChar:
    case TKvKind::AnsiString:
    case TKvKind::Bytes:
      Text += '\'';
      AppendOldEscapedBytes(Text, Value.AsText(), Page);
      Text += '\'';
      return;
  }
  throw EDicUtilError(Format(UnknownKind, static_cast<int>(Value.Kind())));
}

void TEIRecordData::OldStringToValue(std::span<char> Text, TField& Field) {
  const std::string_view View(Text.data(), Text.size());
  std::string Error;
  if (View.front() == '\'') {
    TOldTextReader Reader(Text, *WorkSettings().AnsiCodePage);
    Error = Reader.Read();
    if (Error.empty()) {
      if (Reader.Lost()) TextLost(Reader.Lost(), PlaceOf(Field));
      return Field.Buffer().BorrowText(Reader.Bytes(), TKvKind::AnsiString);
    }
  } else if (SameAsciiWord(View, "NULL")) {
    return Field.Buffer().SetNull();
  } else if (SameAsciiWord(View, "TRUE") || SameAsciiWord(View, "FALSE")) {
    return Field.Buffer().SetBoolean(View.size() == 4);
  } else {
    Error = ReadNumber(View, Field);
    if (Error.empty()) return;
  }
  Unparseable(Field, Format("Can not import %s. Invalid record data structure. Field value is incorrect "
                            "(Field:'%s';Error:'%s')",
                            Content(), Field.Name(), Error));
}

}  // namespace velkrund

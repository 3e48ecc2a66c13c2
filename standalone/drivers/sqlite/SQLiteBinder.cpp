#include "standalone/drivers/sqlite/SQLiteBinder.h"

#include <sqlite3.h>

#include <cmath>

#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

constexpr std::uint64_t MaxInt64 = 0x7FFF'FFFF'FFFF'FFFF;

/// Of a text with just so many decimals: without the zeros at their end, and without a point that nothing follows.
std::string_view WithoutLastZeros(std::string_view Text, int Scale) {
  const std::size_t Point = Text.find('.');
  if (Scale <= 0 || Point == std::string_view::npos || Text.size() - Point - 1 != static_cast<std::size_t>(Scale))
    return Text;
  Text = Text.substr(0, Text.find_last_not_of('0') + 1);
  return Text.ends_with('.') ? Text.substr(0, Text.size() - 1) : Text;
}

}  // namespace

TSQLiteBinder::TRefusal TSQLiteBinder::Bind(const TKvVariant& Value) {
  FReplaced = FRefusedLoss = false;
  switch (Value.Kind()) {
    case TKvKind::Null:
      if (FColumn.IsRowNumber) return "it cannot hold NULL";
      return Result(sqlite3_bind_null(FStatement, FPlace));
    case TKvKind::Byte:
    case TKvKind::SmallInt:
    case TKvKind::Word:
    case TKvKind::Integer:
    case TKvKind::LongWord:
    case TKvKind::Int64:
      return BindInteger(Value.AsInteger());
    case TKvKind::UInt64:
      return BindUnsigned(Value.AsUnsigned());
    case TKvKind::Double:
    case TKvKind::Extended:
      return BindReal(Value.AsReal());
    case TKvKind::Char:
    case TKvKind::String:
      return BindText(Value.AsText());
    case TKvKind::AnsiChar:
    case TKvKind::AnsiString:
      return BindAnsi(Value.AsText());
    case TKvKind::Bytes:
      return BindBytes(Value.AsText());
    case TKvKind::Boolean:
    case TKvKind::WordBool:
      return Result(sqlite3_bind_int64(FStatement, FPlace, Value.AsBoolean() ? 1 : 0));
    case TKvKind::Currency:
      return BindCurrency(Value.AsCurrency());
    case TKvKind::SysDate:
    case TKvKind::SysTime:
    case TKvKind::DateTime:
      FScratch.clear();
      Value.AppendAsText(FScratch);
      return LendText(FScratch);
  }
  return "its kind is unknown";
}

TSQLiteBinder::TRefusal TSQLiteBinder::BindInteger(std::int64_t Value) {
  if (FColumn.Affinity == TAffinity::Real && !IsExactAsReal(Value)) return "the integer would be rounded";
  return Result(sqlite3_bind_int64(FStatement, FPlace, Value));
}

TSQLiteBinder::TRefusal TSQLiteBinder::BindUnsigned(std::uint64_t Value) {
  if (Value <= MaxInt64) return BindInteger(static_cast<std::int64_t>(Value));
  if (FColumn.Affinity != TAffinity::Text) return "the integer is above 9223372036854775807";
  FScratch.clear();
  AppendUnsigned(FScratch, Value);
  return LendText(FScratch);
}

TSQLiteBinder::TRefusal TSQLiteBinder::BindReal(double Value) {
  if (std::isnan(Value)) return "the engine has no NaN";
  if (FColumn.Affinity > TAffinity::Text && Value == 0 && std::signbit(Value)) return "it has no negative zero";
  if (FColumn.Affinity != TAffinity::Text) return Result(sqlite3_bind_double(FStatement, FPlace, Value));
  // The engine's own conversion keeps 15 digits only.
  FScratch.clear();
  AppendReal(FScratch, Value);
  return LendText(FScratch);
}

TSQLiteBinder::TRefusal TSQLiteBinder::BindCurrency(TCurrency Value) {
  if (FColumn.Affinity == TAffinity::Text) {
    FScratch.clear();
    AppendCurrency(FScratch, Value);
    return LendText(FScratch);
  }
  const double Real = CurrencyToReal(Value);
  if (RealToCurrency(Real) != Value) return "the amount would be rounded";
  return Result(sqlite3_bind_double(FStatement, FPlace, Real));
}

TSQLiteBinder::TRefusal TSQLiteBinder::BindText(std::string_view Text) {
  if (FColumn.Affinity > TAffinity::Text && !Text.empty() && Text.front() <= '9' && IsNumberText(Text))
    return BindNumberText(Text);
  return FTexts.Wide && !IsStrictUtf8(Text) ? BindReplaced(Text) : LendText(Text);
}

/// A text that UTF-16 cannot hold.
TSQLiteBinder::TRefusal TSQLiteBinder::BindReplaced(std::string_view Text) {
  FReplaced = FTexts.AllowLoss;
  FRefusedLoss = !FTexts.AllowLoss;
  if (FRefusedLoss)
    return "the text has characters that UTF-16 cannot hold; allow losses to store it with replacement characters";
  std::string Replaced;
  AppendStrictUtf8(Replaced, Text);
  FScratch = std::move(Replaced);
  return LendText(FScratch);
}

TSQLiteBinder::TRefusal TSQLiteBinder::LendText(std::string_view Text) {
  // A null pointer would be taken for NULL.
  return Result(sqlite3_bind_text64(FStatement, FPlace, Text.empty() ? "" : Text.data(), Text.size(), SQLITE_STATIC,
                                    SQLITE_UTF8));
}

TSQLiteBinder::TRefusal TSQLiteBinder::BindNumberText(std::string_view Text) {
  TKvVariant Number;
  TTextFate Fate = FateOfText(Text, FColumn.Affinity, Number);
  if (Fate == TTextFate::Changed) Fate = FateOfText(WithoutLastZeros(Text, FColumn.Scale), FColumn.Affinity, Number);
  switch (Fate) {
    case TTextFate::Integer:
      return Result(sqlite3_bind_int64(FStatement, FPlace, Number.AsInteger()));
    case TTextFate::Real:
      return Result(sqlite3_bind_double(FStatement, FPlace, Number.AsReal()));
    default:
      return "the text would be changed into a number";
  }
}

TSQLiteBinder::TRefusal TSQLiteBinder::BindBytes(std::string_view Bytes) {
  return Result(
      sqlite3_bind_blob64(FStatement, FPlace, Bytes.empty() ? "" : Bytes.data(), Bytes.size(), SQLITE_STATIC));
}

TSQLiteBinder::TRefusal TSQLiteBinder::BindAnsi(std::string_view Bytes) {
  if (FColumn.HoldsBytes) return BindBytes(Bytes);
  FScratch.clear();
  FTexts.CodePage->Decode(Bytes, FScratch);
  return BindText(FScratch);
}

TSQLiteBinder::TRefusal TSQLiteBinder::Result(int Code) { return Code == SQLITE_OK ? nullptr : sqlite3_errstr(Code); }

}  // namespace velkrund

// The format (COPY, "Text Format"): cells separated by tabs, a line for each row, NULL as \N; a backslash stands before
// what would be taken for one of these.

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "standalone/drivers/postgresql/PostgreSQLForm.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

/// Per byte the letter that stands for it behind a backslash; 0: it stands for itself.
constexpr auto Escapes = [] {
  std::array<char, 256> Result{};
  Result['\\'] = '\\';
  Result['\n'] = 'n';
  Result['\r'] = 'r';
  Result['\t'] = 't';
  return Result;
}();

void AppendEscaped(std::string& Out, std::string_view Text) {
  std::size_t Done = 0;
  for (std::size_t At = 0; At < Text.size(); ++At) {
    const char Letter = Escapes[static_cast<unsigned char>(Text[At])];
    if (Letter == 0) continue;
    Out.append(Text, Done, At - Done);
    Out += '\\';
    Out += Letter;
    Done = At + 1;
  }
  Out.append(Text, Done);
}

class TTextForm final : public TPostgreSQLForm {
 public:
  std::string_view Options() const override { return {}; }
  std::string_view Header() const override { return {}; }
  std::string_view Trailer() const override { return {}; }
  void StartRow(std::size_t /*Columns*/, std::string& /*Out*/) const override {}
  void NextCell(std::string& Out) const override { Out += '\t'; }
  void EndRow(std::string& Out) const override { Out += '\n'; }
  std::size_t FirstRowSize(std::string_view Rows) const override { return Rows.find('\n') + 1; }

  void Null(std::string& Out) const override { Out += "\\N"; }
  void Integer(std::int64_t Value, TPostgreSQLType /*Type*/, std::string& Out) const override {
    AppendInteger(Out, Value);
  }
  void Real(double Value, std::string& Out) const override { AppendReal(Out, Value); }
  void Single(float Value, std::string& Out) const override {
    if (!std::isfinite(Value)) return AppendReal(Out, static_cast<double>(Value));
    char Digits[32];
    Out.append(Digits, std::to_chars(std::begin(Digits), std::end(Digits), Value).ptr);
  }
  void Boolean(bool Value, std::string& Out) const override { Out += Value ? 't' : 'f'; }
  void Date(TDateTime Value, std::string& Out) const override { AppendSysDate(Out, Value); }
  void Time(std::int64_t Value, std::string& Out) const override { AppendSysTime(Out, Value); }
  void Timestamp(TDateTime Value, std::string& Out) const override { AppendSysDateTime(Out, Value); }
  void Amount(TCurrency Value, std::string& Out) const override { AppendCurrency(Out, Value); }
  bool Decimal(std::string_view Text, std::string& Out) const override { return Out += Text, true; }
  bool Money(std::string_view Decimal, int Scale, const TPostgreSQLMoney& Money, std::string& Out) const override;
  bool MomentText(std::string_view Text, TPostgreSQLType /*Type*/, std::string& Out) const override {
    return Out += Text, true;
  }
  bool Bytes(std::string_view Bytes, std::string& Out) const override {
    Out += "\\\\x";
    return AppendHex(Out, Bytes), true;
  }
  bool Characters(std::string_view Text, TPostgreSQLSending /*Sending*/, std::string& Out) const override {
    return AppendEscaped(Out, Text), true;
  }
};

bool TTextForm::Money(std::string_view Decimal, int Scale, const TPostgreSQLMoney& Money, std::string& Out) const {
  const bool Negative = Decimal.starts_with('-');
  if (Negative) Decimal.remove_prefix(1);
  const std::size_t Point = std::min(Decimal.find('.'), Decimal.size());
  // What stands for a minus differs from one setting to the next; brackets are always understood.
  if (Negative) Out += '(';
  Out += Decimal.substr(0, Point);
  if (Point < Decimal.size() && Scale > 0) {
    Out += Money.DecimalPoint;
    Out += Decimal.substr(Point + 1, static_cast<std::size_t>(Scale));
  }
  if (Negative) Out += ')';
  return true;
}

}  // namespace

const TPostgreSQLForm& PostgreSQLTextForm() {
  static const TTextForm Form;
  return Form;
}

}  // namespace velkrund

// The half of TPostgreSQLEncoder that takes texts.

#include <array>

#include "standalone/drivers/postgresql/PostgreSQLChecks.h"
#include "standalone/drivers/postgresql/PostgreSQLEncoder.h"
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

}  // namespace

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
      if (Text == "NaN" || Text == "Infinity" || Text == "-Infinity") {
        Out += Text;
        return nullptr;
      }
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

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutMomentText(std::string_view Text, std::string& Out) const {
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
  Out += Text;
  return nullptr;
}

TPostgreSQLEncoder::TRefusal TPostgreSQLEncoder::PutCharacters(std::string_view Text, std::string& Out) const {
  if (Text.find('\0') != std::string_view::npos) return "the engine has no character U+0000";
  if (!IsPostgreSQLText(Text)) return "the text has malformed characters, which the engine does not hold";
  if (FMaxBytes && Text.size() > static_cast<std::size_t>(*FMaxBytes))
    return "the text is longer than the column takes";
  // Blanks beyond the length would be cut without a word.
  if (FMaxCharacters && Text.size() > static_cast<std::size_t>(*FMaxCharacters) &&
      CharacterCount(Text) > static_cast<std::size_t>(*FMaxCharacters))
    return "the text is longer than the column takes";
  AppendEscaped(Out, Text);
  return nullptr;
}

}  // namespace velkrund

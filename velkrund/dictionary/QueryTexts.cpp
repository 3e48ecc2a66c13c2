// The texts of queries, and values, in both versions of query data.

#include "velkrund/dictionary/QueryData.h"
#include "velkrund/eif/TextEscapes.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::size_t OldEscapeDigits = 2;

}  // namespace

std::string TEIQueryData::ChangeSpecialSimbols(std::string_view Text) {
  std::string Result;
  AppendEscaped(Result, Text);
  return Result;
}

std::string TEIQueryData::UnChangeSpecialSimbols(std::string_view Text) {
  std::string Result(Text), BadDigits;
  Result.resize(UnescapeInPlace(Result, BadDigits));
  if (!BadDigits.empty()) BadCharacter(BadDigits);
  return Result;
}

std::string TEIOldQueryData::ChangeSpecialSimbols(std::string_view Text) {
  std::string Result;
  FTextLost += AppendOldEscaped(Result, Text, *WorkSettings().AnsiCodePage);
  return Result;
}

std::string TEIOldQueryData::UnChangeSpecialSimbols(std::string_view Text) {
  std::string Result;
  for (std::size_t At = 0; At < Text.size();) {
    const std::size_t Hash = std::min(Text.find('#', At), Text.size());
    Result += Text.substr(At, Hash - At);
    const std::string_view Rest = Text.substr(std::min(Hash + 1, Text.size()));
    const std::string_view Digits = Rest.substr(0, Utf16Prefix(Rest, OldEscapeDigits));
    if (Utf16Length(Digits) < OldEscapeDigits) break;
    const auto Byte = HexToUnsigned(Digits);
    if (!Byte || Digits.size() != OldEscapeDigits) BadCharacter(Digits);
    const char Code = static_cast<char>(*Byte);
    WorkSettings().AnsiCodePage->Decode({&Code, 1}, Result);
    At = Hash + 1 + OldEscapeDigits;
  }
  return Result;
}

void TEIOldQueryData::FieldToString(TField& Field, std::string& Text) {
  OldValueToString(Field, Text, "Can not exporttable data. Field value is of unknown type (VarType:%d)");
}

}  // namespace velkrund

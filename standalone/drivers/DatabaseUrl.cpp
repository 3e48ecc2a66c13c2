#include "standalone/drivers/DatabaseUrl.h"

#include <algorithm>

namespace velkrund {
namespace {

bool IsLetter(char C) { return (C >= 'a' && C <= 'z') || (C >= 'A' && C <= 'Z'); }

bool IsSchemeCharacter(char C) { return IsLetter(C) || (C >= '0' && C <= '9') || C == '+' || C == '-' || C == '.'; }

char ToLower(char C) { return C >= 'A' && C <= 'Z' ? static_cast<char>(C - 'A' + 'a') : C; }

std::string ToLower(std::string_view Text) {
  std::string Result(Text);
  std::transform(Result.begin(), Result.end(), Result.begin(), [](char C) { return ToLower(C); });
  return Result;
}

constexpr std::string_view Mask = "***";

void MaskUserInfo(std::string& Text) {
  const std::string_view Password = PasswordOf(Text);
  if (Password.data()) Text.replace(static_cast<std::size_t>(Password.data() - Text.data()), Password.size(), Mask);
}

std::size_t SkipBlanks(std::string_view Text, std::size_t At) {
  return std::min(Text.find_first_not_of(' ', At), Text.size());
}

/// Where the value that starts there ends. Braces or apostrophes may hold it together, a backslash keeps what follows
/// it from ending it.
std::size_t EndOfValue(std::string_view Text, std::size_t Start) {
  const char First = Start < Text.size() ? Text[Start] : ' ';
  if (First == '{') return std::min(Text.find('}', Start), Text.size() - 1) + 1;
  const std::string_view Enders = First == '\'' ? "'" : "&; ";
  std::size_t At = First == '\'' ? Start + 1 : Start;
  while (At < Text.size() && Enders.find(Text[At]) == std::string_view::npos) At += Text[At] == '\\' ? 2U : 1U;
  return std::min(First == '\'' ? At + 1 : At, Text.size());
}

void MaskParameter(std::string& Text, std::string_view Name) {
  for (std::size_t At = 0; (At = ToLower(Text).find(Name, At)) != std::string::npos;) {
    At = SkipBlanks(Text, At + Name.size());
    if (At == Text.size() || Text[At] != '=') continue;
    const std::size_t Start = SkipBlanks(Text, At + 1);
    Text.replace(Start, EndOfValue(Text, Start) - Start, Mask);
    At = Start + Mask.size();
  }
}

}  // namespace

std::optional<TDatabaseUrl> ParseDatabaseUrl(std::string_view Text) {
  const std::size_t Colon = Text.find(':');
  if (Colon == std::string_view::npos || Colon < 2) return std::nullopt;
  const std::string_view Scheme = Text.substr(0, Colon);
  if (!IsLetter(Scheme[0]) || !std::all_of(Scheme.begin(), Scheme.end(), IsSchemeCharacter)) return std::nullopt;
  return TDatabaseUrl{ToLower(Scheme), std::string(Text.substr(Colon + 1))};
}

std::string_view PasswordOf(std::string_view Text) {
  const std::size_t Slashes = Text.find("://");
  const std::size_t At = Text.rfind('@');
  if (Slashes == std::string_view::npos || At == std::string_view::npos) return {};
  const std::size_t Colon = Text.find(':', Slashes + 3);
  return Colon < At ? Text.substr(Colon + 1, At - Colon - 1) : std::string_view();
}

std::string PercentEncoded(std::string_view Text) {
  constexpr std::string_view Plain = "-._~";
  constexpr std::string_view Digits = "0123456789ABCDEF";
  std::string Result;
  for (const char C : Text) {
    const auto Byte = static_cast<unsigned char>(C);
    if (IsLetter(C) || (C >= '0' && C <= '9') || Plain.find(C) != std::string_view::npos)
      Result += C;
    else
      (((Result += '%') += Digits[Byte >> 4U]) += Digits[Byte & 0xFU]);
  }
  return Result;
}

std::string WithoutSecrets(std::string_view Text) {
  std::string Result(Text);
  MaskUserInfo(Result);
  MaskParameter(Result, "password");
  MaskParameter(Result, "pwd");
  return Result;
}

}  // namespace velkrund

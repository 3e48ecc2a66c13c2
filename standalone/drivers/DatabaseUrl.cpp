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

}  // namespace

std::optional<TDatabaseUrl> ParseDatabaseUrl(std::string_view Text) {
  const std::size_t Colon = Text.find(':');
  if (Colon == std::string_view::npos || Colon < 2) return std::nullopt;
  const std::string_view Scheme = Text.substr(0, Colon);
  if (!IsLetter(Scheme[0]) || !std::all_of(Scheme.begin(), Scheme.end(), IsSchemeCharacter)) return std::nullopt;
  return TDatabaseUrl{ToLower(Scheme), std::string(Text.substr(Colon + 1))};
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

}  // namespace velkrund

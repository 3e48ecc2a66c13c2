#include <algorithm>

#include "velkrund/platform/ormtools/CaseTable.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

char32_t Changed(char32_t Code, std::span<const TCaseRange> Ranges) {
  const auto Range =
      std::lower_bound(Ranges.begin(), Ranges.end(), Code, [](const TCaseRange& A, char32_t B) { return A.Last < B; });
  if (Range == Ranges.end() || Code < Range->First || (Code - Range->First) % Range->Step != 0) return Code;
  return static_cast<char32_t>(static_cast<std::int32_t>(Code) + Range->Distance);
}

bool IsAscii(char Byte) { return static_cast<unsigned char>(Byte) < 0x80; }

template <typename TChange>
std::string ChangeCase(std::string_view Text, TChange Change) {
  std::string Out;
  Out.reserve(Text.size());
  std::size_t At = 0;
  while (At < Text.size()) {
    if (IsAscii(Text[At])) {
      Out += static_cast<char>(Change(static_cast<char32_t>(Text[At++])));
      continue;
    }
    const std::size_t Start = At;
    const char32_t Code = NextCodePoint(Text, At);
    const char32_t Result = Change(Code);
    // What does not change is copied, malformed bytes included.
    if (Result == Code)
      Out += Text.substr(Start, At - Start);
    else
      AppendUtf8(Out, Result);
  }
  return Out;
}

}  // namespace

char32_t LowerCase(char32_t Code) {
  if (Code < 0x80) return Code >= 'A' && Code <= 'Z' ? Code + 0x20 : Code;
  return Changed(Code, LowerCaseRanges());
}

char32_t UpperCase(char32_t Code) {
  if (Code < 0x80) return Code >= 'a' && Code <= 'z' ? Code - 0x20 : Code;
  return Changed(Code, UpperCaseRanges());
}

std::string LowerCase(std::string_view Text) {
  return ChangeCase(Text, [](char32_t Code) { return LowerCase(Code); });
}

std::string UpperCase(std::string_view Text) {
  return ChangeCase(Text, [](char32_t Code) { return UpperCase(Code); });
}

bool SameText(std::string_view A, std::string_view B) { return A == B || CompareText(A, B) == 0; }

int CompareText(std::string_view A, std::string_view B) {
  std::size_t AtA = 0;
  std::size_t AtB = 0;
  while (AtA < A.size() && AtB < B.size()) {
    if (IsAscii(A[AtA]) && IsAscii(B[AtB])) {
      const char32_t LowerA = LowerCase(static_cast<char32_t>(A[AtA++]));
      const char32_t LowerB = LowerCase(static_cast<char32_t>(B[AtB++]));
      if (LowerA != LowerB) return LowerA < LowerB ? -1 : 1;
      continue;
    }
    const std::size_t StartA = AtA;
    const std::size_t StartB = AtB;
    const char32_t CodeA = NextCodePoint(A, AtA);
    const char32_t CodeB = NextCodePoint(B, AtB);
    if (CodeA == CodeB && CodeA != 0xFFFD) continue;
    const char32_t LowerA = LowerCase(CodeA);
    const char32_t LowerB = LowerCase(CodeB);
    if (LowerA != LowerB) return LowerA < LowerB ? -1 : 1;
    if (CodeA != 0xFFFD) continue;
    // Different malformed bytes are different texts.
    const int Bytes = A.substr(StartA, AtA - StartA).compare(B.substr(StartB, AtB - StartB));
    if (Bytes != 0) return Bytes < 0 ? -1 : 1;
  }
  if (AtA < A.size()) return 1;
  return AtB < B.size() ? -1 : 0;
}

bool SameAsciiWord(std::string_view Text, std::string_view UpperCaseWord) {
  return std::equal(Text.begin(), Text.end(), UpperCaseWord.begin(), UpperCaseWord.end(),
                    [](char A, char B) { return (A >= 'a' && A <= 'z' ? static_cast<char>(A - 0x20) : A) == B; });
}

}  // namespace velkrund

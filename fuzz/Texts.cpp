// Any bytes as a text of each encoding: code pages carry every byte there and back, and the helpers that repair, count,
// cut, convert and compare UTF-8 texts agree with each other.

#include <algorithm>
#include <cstring>

#include "fuzz/FuzzPlatform.h"
#include "velkrund/platform/ormtools/CodePage.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

void CheckCodePage(const TCodePage& Page, std::string_view Bytes) {
  std::string Text, Back;
  Page.Decode(Bytes, Text);
  Require(Page.Encode(Text, Back) == 0 && Back == Bytes);

  // The other way round characters may be lost, but only once, and each as one question mark.
  std::string Encoded, Kept, Again;
  const std::int64_t Lost = Page.Encode(Bytes, Encoded);
  std::int64_t Missing = 0;
  for (std::size_t At = 0; At < Bytes.size();) {
    const std::optional<unsigned char> Byte = Page.FromUnicode(NextCodePoint(Bytes, At));
    Missing += !Byte;
    Kept += static_cast<char>(Byte.value_or('?'));
  }
  Require(Encoded == Kept && Lost == Missing);
}

std::string CheckRepair(std::string_view Bytes) {
  std::string Repaired(Bytes), Expected;
  const std::int64_t Count = RepairUtf8(Repaired);
  std::size_t FirstMalformed = std::string_view::npos;
  for (std::size_t At = 0; At < Bytes.size();) {
    const std::size_t Start = At;
    const char32_t Code = NextCodePoint(Bytes, At);
    if (Code == 0xFFFD && Bytes.substr(Start, At - Start) != ReplacementUtf8)
      FirstMalformed = std::min(FirstMalformed, Start);
    AppendUtf8(Expected, Code);
  }
  Require(Repaired == Expected && (Count == 0) == (Repaired == Bytes));
  Require(FindMalformedUtf8(Bytes) == FirstMalformed && (FirstMalformed == std::string_view::npos) == (Count == 0));
  Require(FindMalformedUtf8(Repaired) == std::string_view::npos);
  return Repaired;
}

void CheckUnits(std::string_view Text) {
  const std::u16string Units = ToUtf16(Text);
  Require(Utf16Length(Text) == Units.size());
  Require(ToUtf16(FromUtf16(Units)) == Units);
  for (std::size_t Limit = 0; Limit <= Units.size() + 1; Limit += Units.size() / 8 + 1) {
    const std::size_t Cut = Utf16Prefix(Text, Limit);
    const std::u16string Piece = ToUtf16(Text.substr(0, Cut));
    Require(Piece.size() <= Limit && Piece + ToUtf16(Text.substr(Cut)) == Units);
    if (Cut == Text.size() || Piece.size() == Limit) continue;
    std::size_t Next = Cut;
    Require(Piece.size() + 1 == Limit && NextCodePoint(Text, Next) > 0xFFFF);
  }
}

void CheckCase(std::string_view A, std::string_view B) {
  const std::string Lower = LowerCase(A);
  Require(LowerCase(Lower) == Lower && SameText(A, Lower));
  Require(CompareText(A, B) == -CompareText(B, A));
  Require(SameText(A, B) == (Lower == LowerCase(B)));
  Require(Utf16Length(UpperCase(A)) == Utf16Length(A));
}

}  // namespace
}  // namespace velkrund

// The first byte chooses the code page.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace velkrund;
  if (Size == 0) return 0;
  const std::string_view Bytes(reinterpret_cast<const char*>(Data) + 1, Size - 1);
  CheckCodePage(*TCodePage::Find(1250 + Data[0] % 9), Bytes);
  CheckUnits(Bytes);
  CheckUnits(CheckRepair(Bytes));
  std::u16string Units(Bytes.size() / 2, u'\0');
  if (!Units.empty()) std::memcpy(Units.data(), Bytes.data(), 2 * Units.size());
  Require(ToUtf16(FromUtf16(Units)) == Units);
  CheckCase(Bytes.substr(0, Bytes.size() / 2), Bytes.substr(Bytes.size() / 2));
  return 0;
}

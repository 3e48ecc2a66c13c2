#include "velkrund/platform/ormtools/CodePage.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "velkrund/platform/ormtools/CodePageTables.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

const std::vector<TCodePage>& BuiltInPages() {
  // Never freed: settings and codecs that refer to a page may outlive any order of destruction.
  static const auto& Pages = *[] {
    auto* Built = new std::vector<TCodePage>;
    for (const TCodePageTable& Table : CodePageTables()) Built->emplace_back(Table.Number, Table.Upper);
    return Built;
  }();
  return Pages;
}

std::size_t NonAsciiPrefix(std::string_view Bytes) {
  std::size_t Length = 0;
  while (Length < Bytes.size() && static_cast<unsigned char>(Bytes[Length]) >= 0x80) ++Length;
  return Length;
}

}  // namespace

const TCodePage* TCodePage::Find(int Number) {
  for (const TCodePage& Page : BuiltInPages())
    if (Page.FNumber == Number) return &Page;
  return nullptr;
}

const TCodePage& TCodePage::Default() {
  static const TCodePage& Page = *Find(1251);
  return Page;
}

TCodePage::TCodePage(int Number, const std::array<char16_t, 128>& Upper) : FNumber(Number) {
  for (std::size_t Byte = 0; Byte < 256; ++Byte) {
    const bool Defined = Byte >= 0x80 && Upper[Byte - 0x80] != 0;
    FToUnicode[Byte] = Defined ? Upper[Byte - 0x80] : static_cast<char16_t>(Byte);
  }
  for (std::size_t Byte = 0x80; Byte < 256; ++Byte) {
    const char16_t Code = FToUnicode[Byte];
    std::string Utf8;
    AppendUtf8(Utf8, Code);
    std::copy(Utf8.begin(), Utf8.end(), FUtf8[Byte - 0x80].begin());
    FUtf8Length[Byte - 0x80] = static_cast<std::uint8_t>(Utf8.size());
    if (Code >= FNear.size())
      FFar[FFarCount++] = {Code, static_cast<unsigned char>(Byte)};
    else if (FNear[Code] == 0)
      FNear[Code] = static_cast<unsigned char>(Byte);
  }
  std::stable_sort(FFar.begin(), FFar.begin() + static_cast<std::ptrdiff_t>(FFarCount),
                   [](const TBackward& A, const TBackward& B) { return A.Code < B.Code; });
}

unsigned char TCodePage::ByteOf(char32_t Code) const {
  if (Code < FNear.size()) return FNear[Code];
  const auto End = FFar.begin() + static_cast<std::ptrdiff_t>(FFarCount);
  const auto At = std::lower_bound(FFar.begin(), End, Code, [](const TBackward& A, char32_t B) { return A.Code < B; });
  return At != End && At->Code == Code ? At->Byte : 0;
}

std::optional<unsigned char> TCodePage::FromUnicode(char32_t Code) const {
  if (Code < 0x80) return static_cast<unsigned char>(Code);
  const unsigned char Byte = ByteOf(Code);
  if (Byte == 0) return std::nullopt;
  return Byte;
}

void TCodePage::Decode(std::string_view Bytes, std::string& Out) const {
  char Piece[3 * 128];
  while (!Bytes.empty()) {
    const std::size_t Ascii = AsciiPrefix(Bytes);
    Out += Bytes.substr(0, Ascii);
    Bytes.remove_prefix(Ascii);
    const std::size_t Run = NonAsciiPrefix(Bytes.substr(0, 128));
    char* To = Piece;
    for (std::size_t Index = 0; Index < Run; ++Index) {
      const auto Upper = static_cast<unsigned char>(Bytes[Index]) - std::size_t{0x80};
      // Three bytes always: a fixed length is quicker than the right one, and the next character overwrites the rest.
      std::memcpy(To, FUtf8[Upper].data(), 3);
      To += FUtf8Length[Upper];
    }
    Out.append(Piece, To);
    Bytes.remove_prefix(Run);
  }
}

std::int64_t TCodePage::Encode(std::string_view Text, std::string& Out) const {
  std::int64_t Replaced = 0;
  char Piece[256];
  std::size_t Filled = 0;
  std::size_t At = 0;
  while (At < Text.size()) {
    const std::size_t Ascii = AsciiPrefix(Text.substr(At));
    Out += Text.substr(At, Ascii);
    At += Ascii;
    for (Filled = 0; At < Text.size() && Filled < sizeof Piece && static_cast<unsigned char>(Text[At]) >= 0x80;
         ++Filled) {
      unsigned char Byte = ByteOf(NextCodePoint(Text, At));
      if (Byte == 0) {
        Byte = '?';
        ++Replaced;
      }
      Piece[Filled] = static_cast<char>(Byte);
    }
    Out.append(Piece, Filled);
  }
  return Replaced;
}

}  // namespace velkrund

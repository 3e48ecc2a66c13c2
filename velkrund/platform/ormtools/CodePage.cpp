#include "velkrund/platform/ormtools/CodePage.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "velkrund/platform/ormtools/ByteWords.h"
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

constexpr std::size_t PieceSize = 256;  // bytes that are converted on the stack before they are appended

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
    const char16_t Code = Defined ? Upper[Byte - 0x80] : static_cast<char16_t>(Byte);
    FToUnicode[Byte] = Code;
    std::string Utf8;
    AppendUtf8(Utf8, Code);
    std::copy(Utf8.begin(), Utf8.end(), FForward[Byte].Utf8);
    FForward[Byte].Length = static_cast<std::uint8_t>(Utf8.size());
    if (Byte < 0x80) continue;
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
  while (!Bytes.empty()) {
    const std::size_t Ascii = AsciiPrefix(Bytes);
    Out += Bytes.substr(0, Ascii);
    Bytes.remove_prefix(Ascii);
    char Piece[3 * PieceSize];
    char* To = Piece;
    const std::string_view From = Bytes.substr(0, PieceSize);
    for (const char Byte : From) {
      const TForward& Character = FForward[static_cast<unsigned char>(Byte)];
      // Always three bytes: a fixed length is quicker than the right one, and the next character overwrites the rest.
      std::memcpy(To, Character.Utf8, sizeof Character.Utf8);
      To += Character.Length;
    }
    Out.append(Piece, To);
    Bytes.remove_prefix(From.size());
  }
}

std::int64_t TCodePage::Encode(std::string_view Text, std::string& Out) const {
  std::int64_t Replaced = 0;
  for (std::size_t At = 0; At < Text.size();) {
    const std::size_t Ascii = AsciiPrefix(Text.substr(At));
    Out += Text.substr(At, Ascii);
    At += Ascii;
    char Piece[PieceSize];
    std::size_t Filled = 0;
    for (; At < Text.size() && Filled < PieceSize; ++Filled) {
      Piece[Filled] = Text[At];
      if (static_cast<unsigned char>(Text[At]) < 0x80) {
        ++At;
        continue;
      }
      const unsigned char Byte = ByteOf(NextHighCharacter(Text, At));
      Piece[Filled] = Byte != 0 ? static_cast<char>(Byte) : '?';
      Replaced += Byte == 0;
    }
    Out.append(Piece, Filled);
  }
  return Replaced;
}

}  // namespace velkrund

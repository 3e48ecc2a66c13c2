#include <gtest/gtest.h>

#include <iterator>
#include <random>

#include "tests/dictionary/TableFixture.h"
#include "velkrund/platform/ormtools/CodePage.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

using TRandom = std::mt19937_64;

struct TExpected {
  std::string Bytes, Error;
};

/// A quoted text of version 100, character by character.
TExpected OldText(std::string_view Text) {
  TExpected Result;
  std::size_t Position = 2;
  const auto Failed = [&](const std::string& Error) { return Result.Error = Error, Result; };
  for (std::size_t At = 1; At < Text.size() - 1; ++Position) {
    if (Text[At] == '#') {
      const std::string_view Behind = Text.substr(At + 1);
      if (Utf16Length(Behind) <= 2) return Failed(Format("Uncorrect symbol code on position:%d", Position));
      const auto Byte = HexToUnsigned(Behind.substr(0, 2));
      if (!Byte) return Failed(Format("Uncorrect symbol code on position:%d", Position + 2));
      Result.Bytes += static_cast<char>(*Byte);
      At += 3;
      Position += 2;
      continue;
    }
    const char32_t Code = NextCodePoint(Text, At);
    if (Code < 0x20 || Code == '|')
      return Failed(Format("Uncorrect string symbol №%d symbol code:%d", Position, static_cast<int>(Code)));
    Result.Bytes += static_cast<char>(TCodePage::Default().FromUnicode(Code).value_or('?'));
    Position += Code > 0xFFFF ? 1 : 0;
  }
  return Result;
}

std::string AnyOldText(TRandom& Random) {
  static constexpr std::string_view Pieces[] = {"#0A", "#ff", "#23", "#7C",  "ж", "Я",   "€",   "«", "'",
                                                "~",   "日",  "😀",   "\x7F", "#", "#0G", "#жж", "|", "\t"};
  constexpr std::size_t Damaging = 5;
  std::string Text = "'";
  for (std::size_t Left = Random() % 12; Left > 0; --Left) {
    if (Random() % 2 == 0)
      Text += std::string(Random() % 18, static_cast<char>('a' + Random() % 26));
    else
      Text += Pieces[Random() % (std::size(Pieces) - (Random() % 8 == 0 ? 0 : Damaging))];
  }
  return Text + "'";
}

TEST(OldText, IsReadAsCharacterByCharacter) {
  const TTestPlatform Platform;
  TEIOldTableData Section;
  TRandom Random(20261126);
  for (int Round = 0; Round < 30'000; ++Round) {
    const std::string Text = AnyOldText(Random);
    const TExpected Expected = OldText(Text);
    TMemoryTable Table("T", {{"F", TKvKind::String}});
    TField& Field = Table.Record().Fields(0);
    std::string Input = Text, Error;
    try {
      Section.StringToField(Input, Field);
    } catch (const EDicUtilError& Raised) {
      Error = Raised.what();
    }
    if (Expected.Error.empty()) {
      ASSERT_EQ(Error, "") << Text;
      ASSERT_EQ(Field.BufferedValue().AsText(), Expected.Bytes) << Text;
    } else {
      ASSERT_NE(Error.find("Error:'" + Expected.Error + "'"), std::string::npos) << Text << ": " << Error;
    }
  }
}

}  // namespace
}  // namespace velkrund::tests

#include "standalone/drivers/sqlite/SQLiteTokenReader.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

bool SameSQLiteName(std::string_view A, std::string_view B) {
  const auto Folded = [](char C) { return C >= 'A' && C <= 'Z' ? static_cast<char>(C - 'A' + 'a') : C; };
  return std::equal(A.begin(), A.end(), B.begin(), B.end(),
                    [&](char One, char Other) { return Folded(One) == Folded(Other); });
}

TSQLiteTokenReader::TSQLiteTokenReader(std::string_view Text, std::string What)
    : FText(Text), FWhat(std::move(What)), FTokens(SQLiteTokens(Text)) {}

const TSQLiteToken& TSQLiteTokenReader::Peek(std::size_t Ahead) const {
  return FTokens[std::min(FAt + Ahead, FTokens.size() - 1)];
}

const TSQLiteToken& TSQLiteTokenReader::Take() {
  if (IsAtEnd() || Peek().Kind == TSQLiteToken::TKind::Open) Fail();
  return FTokens[FAt++];
}

bool TSQLiteTokenReader::TakeIf(std::string_view Keyword) {
  const bool Found = Peek().Is(Keyword);
  if (Found) Take();
  return Found;
}

bool TSQLiteTokenReader::TakeIf(char Symbol) {
  const bool Found = Peek().IsSymbol(Symbol);
  if (Found) Take();
  return Found;
}

void TSQLiteTokenReader::Expect(std::string_view Keyword) {
  if (!TakeIf(Keyword)) Fail();
}

void TSQLiteTokenReader::Expect(char Symbol) {
  if (!TakeIf(Symbol)) Fail();
}

std::string TSQLiteTokenReader::TakeName() {
  if (!Peek().IsName()) Fail();
  return Take().Name();
}

std::string_view TSQLiteTokenReader::TakeBracketed() {
  Expect('(');
  const std::size_t Start = Peek().Start;
  std::size_t Behind = Start;
  for (int Depth = 1; Depth > 0;) {
    const TSQLiteToken& Token = Take();
    Depth += Token.IsSymbol('(') ? 1 : Token.IsSymbol(')') ? -1 : 0;
    if (Depth > 0) Behind = Token.Behind();
  }
  return FText.substr(Start, Behind - Start);
}

std::string_view TSQLiteTokenReader::Since(std::size_t Start) const {
  return FAt == 0 ? std::string_view() : FText.substr(Start, FTokens[FAt - 1].Behind() - Start);
}

void TSQLiteTokenReader::Fail() const {
  constexpr std::int64_t MaxShown = 60;
  const std::string Place = IsAtEnd()
                                ? "it ends too early"
                                : "not understood from here on: " + Shortened(FText.substr(Peek().Start), MaxShown);
  throw EDatabaseError(Format("Cannot read the declaration of %s, as the database keeps it: %s", FWhat, Place));
}

}  // namespace velkrund

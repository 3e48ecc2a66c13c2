#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velkrund {

enum class TExpressionPiece {
  End,
  Word,    // Text: as written
  Name,    // Text: unquoted; between "", `` or []
  String,  // Text: unquoted
  Bytes,   // Text: the digits of x'00'
  Number,  // Text: as NumberText
  Sign,    // Text: an operator or a bracket
};

/// A number as neutral expressions write it: decimal, without a plus, superfluous zeros in front and an exponent; one
/// with a point or an exponent keeps a point. "1e3" is 1000.0, ".5" 0.5, "0x1F" 31. Empty when Text is no number, or
/// one of too many digits.
std::string NumberText(std::string_view Text);

/// Cuts an expression into pieces, passing blanks and comments. Knows the quotings of all engines.
class TExpressionLexer {
 public:
  /// Text: borrowed. Raises ENotNeutral, as does Next.
  explicit TExpressionLexer(std::string_view Text) : FRest(Text) { Next(); }

  TExpressionPiece Kind() const { return FKind; }
  const std::string& Text() const { return FText; }
  /// A word, in any case. Word: in capitals.
  bool IsWord(std::string_view Word) const;
  bool IsSign(std::string_view Sign) const { return FKind == TExpressionPiece::Sign && FText == Sign; }
  void Next();

 private:
  void PassBlanks();
  void Pass(std::size_t Count, TExpressionPiece Kind, std::string Text);
  void TakeQuoted(char Close, TExpressionPiece Kind);
  void TakeWord();
  void TakeNumber();
  void TakeSign();

  std::string_view FRest;
  TExpressionPiece FKind = TExpressionPiece::End;
  std::string FText;
};

}  // namespace velkrund

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "standalone/drivers/sqlite/SQLiteTokens.h"

namespace velkrund {

/// Whether the engine takes both for the same name: it folds ASCII letters only.
bool SameSQLiteName(std::string_view A, std::string_view B);

/// Goes through the tokens of a declaration. What is not as expected raises EDatabaseError.
class TSQLiteTokenReader {
 public:
  /// Text outlives it. What: "table 'T'", for messages.
  TSQLiteTokenReader(std::string_view Text, std::string What);

  const TSQLiteToken& Peek(std::size_t Ahead = 0) const;
  const TSQLiteToken& Take();
  bool IsAtEnd() const { return Peek().Kind == TSQLiteToken::TKind::End; }

  // Keyword: in capitals.
  bool TakeIf(std::string_view Keyword);
  bool TakeIf(char Symbol);
  void Expect(std::string_view Keyword);
  void Expect(char Symbol);
  std::string TakeName();
  /// What stands between the bracket that comes next and the one that closes it.
  std::string_view TakeBracketed();
  /// The text of the tokens from that place to the last one that was taken.
  std::string_view Since(std::size_t Start) const;

  std::string_view Text() const { return FText; }
  [[noreturn]] void Fail() const;

 private:
  const std::string_view FText;
  const std::string FWhat;
  const std::vector<TSQLiteToken> FTokens;
  std::size_t FAt = 0;
};

}  // namespace velkrund

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

/// A piece of a statement between blanks and comments.
struct TSQLiteToken {
  enum class TKind {
    End,
    Word,    // a keyword or a plain name
    Quoted,  // a name between "", `` or []
    Text,    // 'a text', which the engine takes for a name where it needs one
    Number,
    Bytes,   // x'00'
    Symbol,  // one character
    Open,    // a quoted text without an end
  };

  TKind Kind = TKind::End;
  std::string_view Text = {};  // as it stands in the statement
  std::size_t Start = 0;

  std::size_t Behind() const { return Start + Text.size(); }
  bool IsSymbol(char C) const { return Kind == TKind::Symbol && Text.front() == C; }
  /// Keyword: in capitals.
  bool Is(std::string_view Keyword) const;
  bool IsName() const { return Kind == TKind::Word || Kind == TKind::Quoted || Kind == TKind::Text; }
  /// Without quotes.
  std::string Name() const;
};

/// Splits a statement as the engine does; the last token is End. Never fails.
std::vector<TSQLiteToken> SQLiteTokens(std::string_view Statement);

}  // namespace velkrund

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

/// What an engine's SQL has beside what all of them have: '..', "..", and comments behind -- and between /* and */.
struct TQuerySyntax {
  bool Backticks = false;                // `a name`
  bool Brackets = false;                 // [a name]
  bool Escapes = false;                  // E'a text in which \' is a quote'
  bool DollarQuotes = false;             // $tag$a text$tag$
  bool NestedComments = false;           // /* /* */ */
  std::string_view LineEnds = "\n";      // one of them ends a comment behind --
  std::string_view ParameterMarks = {};  // what begins parameters of the engine's own
};

/// The text of a query, and the parameters in it: ":NAME", of letters, digits and _, no digit first, outside of texts,
/// quoted names, comments and "::".
class TQueryText {
 public:
  TQueryText() = default;
  /// Never fails; Check says what is wrong.
  TQueryText(std::string Text, const TQuerySyntax& Syntax);

  const std::string& Text() const { return FText; }
  /// How an error message about it begins.
  std::string Failed() const;
  /// Each once, ignoring case, in the order in which and as they first stand there.
  const std::vector<std::string>& Parameters() const { return FParameters; }
  /// As it stands there; of what begins with no word its first character.
  std::string_view FirstWord() const { return std::string_view(FText).substr(FFirstStart, FFirstSize); }

  /// Raises EDatabaseError for what no engine is asked: nothing, several statements, other marks of parameters.
  void Check() const;
  /// The statement alone, without semicolons behind it, and in the place of each parameter the words for it. Index: in
  /// Parameters.
  std::string With(const std::function<std::string(std::size_t Index)>& WordsFor) const;

 private:
  friend class TQueryScan;
  struct TPlace {
    std::size_t Start, Size, Parameter;
  };

  std::string FText;
  std::vector<std::string> FParameters;
  std::vector<TPlace> FPlaces;  // of parameters
  std::size_t FFirstStart = 0, FFirstSize = 0;
  std::size_t FEnd = 0;                  // behind the statement
  std::string FTrouble = "it is empty";  // the first that was found; empty: none
};

}  // namespace velkrund

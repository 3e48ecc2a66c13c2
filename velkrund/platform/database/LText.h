#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

/// A text in the language of the user, for people, and in English for what programs read: documents, traces, errors.
class TLText {
 public:
  TLText() = default;
  /// What stands so in every language: a name, what an engine says.
  TLText(std::string Text) : FLocal(Text), FEnglish(std::move(Text)) {}
  TLText(const char* Text) : TLText(std::string(Text)) {}
  TLText(std::string Local, std::string English) : FLocal(std::move(Local)), FEnglish(std::move(English)) {}

  const std::string& Local() const { return FLocal; }
  const std::string& English() const { return FEnglish; }
  bool Empty() const { return FEnglish.empty(); }

  TLText& operator+=(const TLText& Other);
  friend TLText operator+(TLText A, const TLText& B) { return std::move(A += B); }
  bool operator==(const TLText&) const = default;

 private:
  std::string FLocal, FEnglish;
};

// Arguments of texts, in either language.
template <typename T>
const T& LocalOf(const T& Argument) {
  return Argument;
}
inline const std::string& LocalOf(const TLText& Argument) { return Argument.Local(); }
template <typename T>
const T& EnglishOf(const T& Argument) {
  return Argument;
}
inline const std::string& EnglishOf(const TLText& Argument) { return Argument.English(); }

/// The text of a message key as it stands.
TLText LPattern(std::string_view Key);
/// Of the forms that it has for numbers, as FormFor says, the one for Count.
TLText LPattern(std::string_view Key, std::int64_t Count);

/// The text of a message key, filled as Format does. A TLText among the arguments stands there in the same language.
template <typename... T>
TLText LText(std::string_view Key, const T&... Arguments) {
  const TLText Pattern = LPattern(Key);
  return {Format(Pattern.Local(), LocalOf(Arguments)...), Format(Pattern.English(), EnglishOf(Arguments)...)};
}
/// The same in the form for Count, which is among the arguments where the text has it.
template <typename... T>
TLText LCounted(std::string_view Key, std::int64_t Count, const T&... Arguments) {
  const TLText Pattern = LPattern(Key, Count);
  return {Format(Pattern.Local(), LocalOf(Arguments)...), Format(Pattern.English(), EnglishOf(Arguments)...)};
}

/// The items with ", " between them.
TLText LJoined(const std::vector<TLText>& Items);
/// The same for messages, as JoinedInShort.
TLText LJoinedInShort(const std::vector<TLText>& Items);
TLText LJoinedInShort(const std::vector<std::string>& Items);

/// In English, for documents.
std::vector<std::string> EnglishOf(const std::vector<TLText>& Texts);

}  // namespace velkrund

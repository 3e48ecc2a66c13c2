#include "standalone/drivers/sqlite/SQLiteTriggerText.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

void TakeUntil(std::string_view& Text, std::string_view End) {
  const std::size_t At = Text.find(End);
  Text.remove_prefix(At == std::string_view::npos ? Text.size() : At + End.size());
}

bool IsBlank(char C) { return C == ' ' || (C >= '\t' && C <= '\r'); }

bool IsOfWord(char C) {
  return (C >= '0' && C <= '9') || (C >= 'A' && C <= 'Z') || (C >= 'a' && C <= 'z') || C == '_' || C == '$' ||
         static_cast<unsigned char>(C) >= 0x80;
}

void PassBlanks(std::string_view& Text) {
  while (!Text.empty()) {
    if (IsBlank(Text.front()))
      Text.remove_prefix(1);
    else if (Text.starts_with("--"))
      TakeUntil(Text, "\n");
    else if (Text.starts_with("/*"))
      TakeUntil(Text, "*/");
    else
      return;
  }
}

/// The next word in capitals; of a quoted name, or a single other character, that it is there.
std::string TakeWord(std::string_view& Text) {
  PassBlanks(Text);
  if (Text.empty()) return {};
  const char First = Text.front();
  if (First == '"' || First == '\'' || First == '`' || First == '[') {
    const char Close = First == '[' ? ']' : First;
    // Two quotes in a row are one of the name, and the name goes on.
    do {
      Text.remove_prefix(1);
      TakeUntil(Text, {&Close, 1});
    } while (First != '[' && Text.starts_with(Close));
    return "?";
  }
  const auto End = std::max<std::ptrdiff_t>(std::find_if_not(Text.begin(), Text.end(), IsOfWord) - Text.begin(), 1);
  std::string Word = UpperCase(Text.substr(0, static_cast<std::size_t>(End)));
  Text.remove_prefix(static_cast<std::size_t>(End));
  return Word;
}

}  // namespace

std::string SQLiteTriggerEvent(std::string_view Text) {
  // CREATE [TEMP] TRIGGER [IF NOT EXISTS] [SCHEMA.]NAME [BEFORE|AFTER|INSTEAD OF] DELETE|INSERT|UPDATE ...
  std::string Word;
  do Word = TakeWord(Text);
  while (!Word.empty() && Word != "TRIGGER");
  Word = TakeWord(Text);
  if (Word == "IF")
    for (int Words = 0; Words < 3; ++Words) TakeWord(Text);  // NOT EXISTS NAME
  for (Word = TakeWord(Text); Word == "."; Word = TakeWord(Text)) TakeWord(Text);
  if (Word == "INSTEAD") TakeWord(Text);
  if (Word == "BEFORE" || Word == "AFTER" || Word == "INSTEAD") Word = TakeWord(Text);
  return Word == "INSERT" || Word == "DELETE" || Word == "UPDATE" ? Word : std::string();
}

}  // namespace velkrund

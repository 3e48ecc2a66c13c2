#include "standalone/drivers/KeysWithNulls.h"

#include <string>
#include <utility>

namespace velkrund {

bool IsPrimaryWithNulls(const TDicKey& Key, std::string_view Engine) {
  const TDicWords* const Own = WordsOf(Key.Words, Engine);
  return !Key.Primary && Own && Own->Text && Own->Text->starts_with(PrimaryKeyWords);
}

TDicKey KeyOfEngine(TDicKey Key, std::string_view Engine) {
  if (!IsPrimaryWithNulls(Key, Engine)) return Key;
  Key.Primary = true;
  const auto Own = Key.Words.find(Engine);
  std::string Others = Own->second.Text->substr(PrimaryKeyWords.size());
  if (Others.empty())
    Key.Words.erase(Own);
  else
    Own->second.Text = Others.substr(1);
  return Key;
}

TDicKey KeyWithNulls(TDicKey Key, std::string_view Engine) {
  Key.Primary = false;
  std::optional<std::string>& Text = Key.Words[std::string(Engine)].Text;
  Text = std::string(PrimaryKeyWords) + (Text ? " " + *Text : std::string());
  return Key;
}

}  // namespace velkrund

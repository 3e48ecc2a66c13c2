#include "velkrund/platform/database/LText.h"

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

constexpr const char* MoreKey = "M_Velkrund_ComUtils_AndMore";

std::vector<std::string> LocalsOf(const std::vector<TLText>& Texts) {
  std::vector<std::string> Result;
  for (const TLText& Text : Texts) Result.push_back(Text.Local());
  return Result;
}

}  // namespace

TLText& TLText::operator+=(const TLText& Other) {
  FLocal += Other.FLocal;
  FEnglish += Other.FEnglish;
  return *this;
}

TLText LPattern(std::string_view Key) { return {BaseMng().LString(Key), BaseMng().EnglishString(Key)}; }

TLText LPattern(std::string_view Key, std::int64_t Count) {
  const TLText Forms = LPattern(Key);
  return {std::string(FormFor(Count, Forms.Local())), std::string(FormFor(Count, Forms.English()))};
}

TLText LJoined(const std::vector<TLText>& Items) { return {Joined(LocalsOf(Items)), Joined(EnglishOf(Items))}; }

TLText LJoinedInShort(const std::vector<TLText>& Items) {
  const TLText More = LPattern(MoreKey);
  return {JoinedInShort(LocalsOf(Items), More.Local()), JoinedInShort(EnglishOf(Items), More.English())};
}

TLText LJoinedInShort(const std::vector<std::string>& Items) {
  return LJoinedInShort(std::vector<TLText>(Items.begin(), Items.end()));
}

std::vector<std::string> EnglishOf(const std::vector<TLText>& Texts) {
  std::vector<std::string> Result;
  for (const TLText& Text : Texts) Result.push_back(Text.English());
  return Result;
}

}  // namespace velkrund

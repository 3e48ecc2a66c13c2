#include "jobs/dictionary/ScriptOrder.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <set>
#include <utility>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

using TNeeds = std::function<bool(std::size_t Object, std::size_t Other)>;

/// Depth first. Objects that need each other in a circle stay as they are.
class TOrder {
 public:
  TOrder(std::size_t Count, TNeeds Needs) : FNeeds(std::move(Needs)), FSeen(Count, false) {
    for (std::size_t I = 0; I < Count; ++I) Place(I);
  }

  void Apply(std::vector<TObjectScript>& Objects) const {
    std::vector<TObjectScript> Result;
    for (const std::size_t I : FOrder) Result.push_back(std::move(Objects[I]));
    Objects = std::move(Result);
  }

 private:
  void Place(std::size_t Index) {
    if (FSeen[Index]) return;
    FSeen[Index] = true;
    for (std::size_t I = 0; I < FSeen.size(); ++I)
      if (!FSeen[I] && FNeeds(Index, I)) Place(I);
    FOrder.push_back(Index);
  }

  TNeeds FNeeds;
  std::vector<bool> FSeen;
  std::vector<std::size_t> FOrder;
};

bool IsOfName(char C) {
  return (C >= 'a' && C <= 'z') || (C >= '0' && C <= '9') || C == '_' || C == '$' ||
         (static_cast<unsigned char>(C) & 0x80U) != 0;
}

/// What a script says, in lower case.
struct TWords {
  std::string Text;
  std::set<std::string, std::less<>> Words;

  explicit TWords(const TScript& Script) {
    for (const TScriptStatement& Statement : Script.Statements) Text += LowerCase(Statement.Text) + "\n";
    for (std::size_t From = 0; From < Text.size();) {
      std::size_t End = From;
      while (IsOfName(Text[End])) ++End;
      if (End > From) Words.insert(Text.substr(From, End - From));
      From = End + 1;
    }
  }

  bool Calls(const std::string& Name) const {
    for (const char* Bracket : {"(", "\"("})
      for (std::size_t At = Text.find(Name + Bracket); At != std::string::npos; At = Text.find(Name + Bracket, At + 1))
        if (At == 0 || !IsOfName(Text[At - 1])) return true;
    return false;
  }

  bool Has(const std::string& Name) const {
    const bool IsWord = std::all_of(Name.begin(), Name.end(), IsOfName);
    return IsWord ? Words.contains(Name) : Text.find(Name) != std::string::npos;
  }
};

}  // namespace

void OrderByNeeds(std::vector<TObjectScript>& Objects) {
  std::vector<TWords> Words;
  std::vector<std::string> Names;
  for (const TObjectScript& Object : Objects) {
    Words.emplace_back(Object.Script);
    std::string& Name = Names.emplace_back();
    for (const char C : LowerCase(Object.Name)) Name.append(C == '"' ? 2 : 1, C);
  }
  TOrder(Objects.size(), [&](std::size_t Object, std::size_t Other) {
    if (!Objects[Object].IsTable) return Words[Object].Has(Names[Other]);
    const std::vector<std::string>& Needs = Objects[Object].Script.Needs;
    return std::find(Needs.begin(), Needs.end(), Objects[Other].FullName) != Needs.end() ||
           (!Objects[Other].IsTable && Words[Object].Calls(Names[Other]));
  }).Apply(Objects);
}

}  // namespace velkrund

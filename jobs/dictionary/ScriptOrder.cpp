#include "jobs/dictionary/ScriptOrder.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <set>
#include <utility>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

using TNeeds = std::function<bool(const TObjectScript& Object, const TObjectScript& Other)>;

/// Depth first. Objects that need each other in a circle stay as they are.
class TOrder {
 public:
  TOrder(std::vector<TObjectScript>& Objects, TNeeds Needs)
      : FObjects(Objects), FNeeds(std::move(Needs)), FSeen(Objects.size(), false) {}

  void Run() {
    for (std::size_t I = 0; I < FObjects.size(); ++I) Place(I);
    std::vector<TObjectScript> Result;
    for (const std::size_t I : FOrder) Result.push_back(std::move(FObjects[I]));
    FObjects = std::move(Result);
  }

 private:
  void Place(std::size_t Index) {
    if (FSeen[Index]) return;
    FSeen[Index] = true;
    for (std::size_t I = 0; I < FObjects.size(); ++I)
      if (!FSeen[I] && FNeeds(FObjects[Index], FObjects[I])) Place(I);
    FOrder.push_back(Index);
  }

  std::vector<TObjectScript>& FObjects;
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

  bool Has(const std::string& Name) const {
    const bool IsWord = std::all_of(Name.begin(), Name.end(), IsOfName);
    return IsWord ? Words.contains(Name) : Text.find(Name) != std::string::npos;
  }
};

}  // namespace

void OrderByNeeds(std::vector<TObjectScript>& Tables) {
  TOrder(Tables, [](const TObjectScript& Table, const TObjectScript& Other) {
    return std::find(Table.Script.Needs.begin(), Table.Script.Needs.end(), Other.FullName) != Table.Script.Needs.end();
  }).Run();
}

void OrderByNames(std::vector<TObjectScript>& Objects) {
  std::vector<TWords> Words;
  std::vector<std::string> Names;
  for (const TObjectScript& Object : Objects) {
    Words.emplace_back(Object.Script);
    std::string& Name = Names.emplace_back();
    for (const char C : LowerCase(Object.Name)) Name.append(C == '"' ? 2 : 1, C);
  }
  const TObjectScript* const First = Objects.data();
  TOrder(Objects, [&](const TObjectScript& Object, const TObjectScript& Other) {
    return Words[static_cast<std::size_t>(&Object - First)].Has(Names[static_cast<std::size_t>(&Other - First)]);
  }).Run();
}

}  // namespace velkrund

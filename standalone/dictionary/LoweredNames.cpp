#include "standalone/dictionary/LoweredNames.h"

#include <string>
#include <utility>
#include <vector>

#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

void Lower(std::string& Name) { Name = LowerCase(Name); }

/// The columns of a neutral expression, which alone stand between double quotes.
void LowerColumns(std::string& Expression) {
  std::string Result;
  for (std::size_t At = 0; At < Expression.size();) {
    const char Quote = Expression[At];
    std::size_t End = At + 1;
    if (Quote == '"' || Quote == '\'') {
      const std::size_t Close = Expression.find(Quote, At + 1);
      End = Close == std::string::npos ? Expression.size() : Close + 1;
    }
    const std::string Piece = Expression.substr(At, End - At);
    Result += Quote == '"' ? LowerCase(Piece) : Piece;
    At = End;
  }
  Expression = std::move(Result);
}

void Lower(std::vector<TDicColumn>& Columns) {
  for (TDicColumn& Column : Columns) {
    if (Column.Expression)
      LowerColumns(Column.Name);
    else
      Lower(Column.Name);
  }
}

void LowerForeignKey(TDicForeignKey& Key) {
  Lower(Key.Name);
  Lower(Key.Table);
  Lower(Key.Schema);
  for (TDicForeignKey::TPair& Pair : Key.Columns) {
    Lower(Pair.Column);
    Lower(Pair.To);
  }
}

/// Takes parts out whose own words hold names.
class TLowering {
 public:
  TLowering(TDicTableDescription& Table, std::string_view Engine, std::vector<TScriptGap>& Gaps)
      : FTable(Table), FEngine(Engine), FGaps(Gaps), FOwner(Format("table '%s'", Table.FullName())) {}

  void Fields() {
    for (TDicField& Field : FTable.Fields) {
      const std::string What = Format("field '%s' of %s", Field.Name, FOwner);
      if (TakesOut(Field.Words, "Computed")) Lack("computed", "how " + What + " is computed");
      if (TakesOut(Field.Words, "Default", "nextval")) Lack("defaults", "the default of " + What);
      Lower(Field.Name);
      Lower(Field.Owned);
      if (Field.Computed && Field.Computed->empty()) Field.Computed.reset();
      if (Field.Computed) LowerColumns(*Field.Computed);
    }
  }
  template <typename TItems>
  void TakeOut(TItems& Items, const char* Kind, const char* Noun) {
    std::erase_if(Items, [&](const auto& Item) {
      const TDicWords* const Own = WordsOf(Item.Words, FEngine);
      const bool Goes = Own && (Own->Text || !Own->Lines.empty());
      if (Goes) Lack(Kind, Format("the %s '%s' of %s", Noun, Item.Name, FOwner));
      return Goes;
    });
  }
  void Keys() {
    for (TDicKey& Key : FTable.Keys) {
      const TDicWords* const Own = WordsOf(Key.Words, FEngine);
      if (Own && Own->Text && Own->Text->find_first_of("\"(") != std::string::npos) {
        Lack("keys", Format("the words '%s' of the key '%s' of %s", *Own->Text, Key.Name, FOwner));
        Key.Words.erase(Key.Words.find(FEngine));
      }
      Lower(Key.Name);
      Lower(Key.Columns);
    }
  }
  void Options() {
    const auto Own = FTable.Words.find(FEngine);
    if (Own == FTable.Words.end() || Own->second.Parts.empty()) return;
    Lack("options", "what " + FOwner + " is a part of, or is made of");
    Own->second.Parts.clear();
  }

 private:
  bool TakesOut(TDicEngineWords& Words, std::string_view Part, std::string_view With = {}) const {
    const auto Own = Words.find(FEngine);
    if (Own == Words.end()) return false;
    const auto Found = Own->second.Parts.find(Part);
    if (Found == Own->second.Parts.end() || Found->second.find(With) == std::string::npos) return false;
    Own->second.Parts.erase(Found);
    return true;
  }
  void Lack(const char* Kind, std::string What) {
    FGaps.push_back({Kind, std::move(What), "names stand in its text, which are to be others"});
  }

  TDicTableDescription& FTable;
  const std::string_view FEngine;
  std::vector<TScriptGap>& FGaps;
  const std::string FOwner;
};

}  // namespace

TDicTableDescription WithLoweredNames(TDicTableDescription Table, std::string_view Engine,
                                      std::vector<TScriptGap>& Gaps) {
  TLowering Lowering(Table, Engine, Gaps);
  Lowering.Fields();
  Lowering.TakeOut(Table.Indexes, "indexes", "index");
  Lowering.TakeOut(Table.Checks, "checks", "check");
  Lowering.TakeOut(Table.Triggers, "triggers", "trigger");
  Lowering.Keys();
  Lowering.Options();
  Lower(Table.Name);
  Lower(Table.Schema);
  for (TDicIndex& Index : Table.Indexes) {
    Lower(Index.Name);
    Lower(Index.Columns);
  }
  for (TDicForeignKey& Key : Table.ForeignKeys) LowerForeignKey(Key);
  for (TDicCheck& Check : Table.Checks) {
    Lower(Check.Name);
    if (Check.Text) LowerColumns(*Check.Text);
  }
  for (TDicTrigger& Trigger : Table.Triggers) Lower(Trigger.Name);
  return Table;
}

}  // namespace velkrund

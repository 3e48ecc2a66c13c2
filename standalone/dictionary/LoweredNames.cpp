#include "standalone/dictionary/LoweredNames.h"

#include <string>
#include <utility>
#include <vector>

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

void LowerField(TDicField& Field, std::string_view Engine) {
  Lower(Field.Name);
  Lower(Field.Owned);
  if (Field.Computed) LowerColumns(*Field.Computed);
  if (const auto Own = Field.Words.find(Engine); Own != Field.Words.end()) Own->second.Parts.erase("Computed");
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

template <typename TItem>
void DropWords(TItem& Item, std::string_view Engine) {
  if (const auto Own = Item.Words.find(Engine); Own != Item.Words.end()) Item.Words.erase(Own);
}

}  // namespace

TDicTableDescription WithLoweredNames(TDicTableDescription Table, std::string_view Engine) {
  Lower(Table.Name);
  Lower(Table.Schema);
  for (TDicField& Field : Table.Fields) LowerField(Field, Engine);
  for (TDicKey& Key : Table.Keys) {
    Lower(Key.Name);
    Lower(Key.Columns);
  }
  for (TDicIndex& Index : Table.Indexes) {
    Lower(Index.Name);
    Lower(Index.Columns);
    DropWords(Index, Engine);
  }
  for (TDicForeignKey& Key : Table.ForeignKeys) LowerForeignKey(Key);
  for (TDicCheck& Check : Table.Checks) {
    Lower(Check.Name);
    if (Check.Text) LowerColumns(*Check.Text);
    DropWords(Check, Engine);
  }
  for (TDicTrigger& Trigger : Table.Triggers) {
    Lower(Trigger.Name);
    DropWords(Trigger, Engine);
  }
  return Table;
}

}  // namespace velkrund

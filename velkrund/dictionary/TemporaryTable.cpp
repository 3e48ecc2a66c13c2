#include "velkrund/dictionary/TemporaryTable.h"

namespace velkrund {

namespace {

/// A default would need what the rows bring anyway, and tie the table to a sequence of the old one.
void TakeAsItComes(TDicField& Field) {
  Field.Auto = TDicAutoKey::None;
  Field.Default.reset();
  for (auto& [Engine, Words] : Field.Words) Words.Parts.erase("Default");
}

}  // namespace

TDicTableDescription TemporaryTable(TDicTableDescription Table,
                                    const std::function<bool(const TDicField& Field)>& HasSource) {
  Table.Name = TemporaryTableName;
  Table.Schema.clear();
  Table.Comment.clear();
  Table.Indexes.clear();
  Table.ForeignKeys.clear();
  Table.Triggers.clear();
  for (TDicField& Field : Table.Fields) {
    if (HasSource(Field)) TakeAsItComes(Field);
    Field.Owned.clear();
    Field.Comment.clear();
    for (auto& [Engine, Words] : Field.Words) Words.Parts.erase("Sequence");
  }
  for (TDicKey& Key : Table.Keys) Key.Name.clear();
  for (TDicCheck& Check : Table.Checks) Check.Name.clear();
  for (auto& [Engine, Words] : Table.Words)
    for (const char* const Part : {"Partition", "PartitionOf", "Inherits"}) Words.Parts.erase(Part);
  return Table;
}

}  // namespace velkrund

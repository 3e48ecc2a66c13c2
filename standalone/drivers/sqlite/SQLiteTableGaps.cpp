// What of a table SQLite has no words for.

#include "standalone/drivers/sqlite/SQLiteTableScript.h"
#include "standalone/drivers/sqlite/SQLiteWords.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

void TSQLiteTableScript::AddGap(std::string_view Kind, const std::string& What, const std::string& Why, bool Harmless) {
  FScript.Gaps.push_back({std::string(Kind), Format("%s of table '%s'", What, FName), Why, Harmless});
}

std::pair<std::string, std::string> TSQLiteTableScript::Hindrance() const {
  if (FTable.Fields.empty()) return {"all", "it has no fields, and SQLite makes no such table"};
  const TForeignWords Foreign = ForeignWords(FTable.Words);
  const std::string* const Whole = Foreign.Words ? Foreign.Words->Part("PartitionOf") : nullptr;
  if (!Whole || WordsOf(FTable.Words, "sqlite")) return {};
  return {"all", Format("it is a part of another table (%s), which SQLite keeps as one", *Whole)};
}

void TSQLiteTableScript::AddTableGaps() {
  if (!FTable.Schema.empty())
    AddGap("schemas", Format("the schema '%s'", FTable.Schema), "SQLite has none; it is a part of the table's name",
           true);
  const TForeignWords Foreign = ForeignWords(FTable.Words);
  if (Foreign.Words && !WordsOf(FTable.Words, "sqlite")) {
    const std::string Why = Format("SQLite has no such words of %s's", Foreign.Engine);
    if (Foreign.Words->Text) AddGap("options", Format("'%s'", *Foreign.Words->Text), Why);
    for (const auto& [Name, Text] : Foreign.Words->Parts) AddGap("options", Format("%s '%s'", Name, Text), Why);
  }
  int Lengths = 0;
  for (const TDicField& Field : FTable.Fields)
    if (!WordsOf(Field.Words, "sqlite") && (Field.Size || Field.Scale)) ++Lengths;
  if (Lengths > 0)
    AddGap("types", "the lengths and precisions of " + Counted(Lengths, "field"),
           "SQLite takes longer values, and gives them back", true);
}

void TSQLiteTableScript::AddFieldGaps(const TDicField& Field) {
  const TDicWords* Own = WordsOf(Field.Words, "sqlite");
  const TForeignWords Foreign = ForeignWords(Field.Words);
  const std::string OfField = Format("field '%s'", Field.Name);
  const std::string Why = Format("its text is %s's alone", Foreign.Engine);
  const auto IsForeign = [&](std::string_view Part) {
    return Foreign.Words && Foreign.Words->Part(Part) && !(Own && Own->Part(Part));
  };
  if (IsForeign("Default") && !Field.Default) AddGap("defaults", "the default of " + OfField, Why);
  if (IsForeign("Computed") && Field.Computed.value_or("").empty())
    AddGap("computed", "the computation of " + OfField, Why);
  if (IsForeign("Collate")) AddGap("collations", "the collation of " + OfField, Why);
  if (Foreign.Words && (!Foreign.Words->Lines.empty() || Foreign.Words->Part("Base")))
    AddGap("types", "the allowed values of " + OfField, "SQLite takes every value", true);
  if (Field.Type == TDicFieldType::Other && !Own)
    AddGap("types", "the type of " + OfField, "SQLite keeps its values as texts", true);
  if (Field.Auto == TDicAutoKey::None) return;
  if (!IsAutomatic(Field))
    return AddGap("defaults", "the automatic numbers of " + OfField, "SQLite numbers the primary key alone");
  const TDicCounter& Counter = Field.Counter;
  if (Counter.Step.value_or("1") != "1" || Counter.Min || Counter.Max || Counter.Cycle)
    AddGap("keys", "the step and limits of the automatic " + OfField, "SQLite counts by 1 and without end");
  if (Field.Auto == TDicAutoKey::Always)
    AddGap("keys", "the refusal of rows that bring a number for the automatic " + OfField, "SQLite takes them", true);
}

}  // namespace velkrund

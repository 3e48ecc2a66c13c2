#include "standalone/drivers/sqlite/SQLiteTableScript.h"

#include <algorithm>

#include "standalone/drivers/ComputedElsewhere.h"
#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/TableWords.h"
#include "standalone/drivers/TextLines.h"
#include "standalone/drivers/sqlite/SQLiteDeclarations.h"
#include "standalone/drivers/sqlite/SQLiteFieldTypes.h"
#include "standalone/drivers/sqlite/SQLiteTableDefinition.h"
#include "standalone/drivers/sqlite/SQLiteWords.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

constexpr std::string_view AutoIncrement = "AUTOINCREMENT";

const TDicWords* OwnWords(const TDicEngineWords& Words) { return WordsOf(Words, "sqlite"); }

const std::string* OwnPart(const TDicEngineWords& Words, std::string_view Name) {
  const TDicWords* Own = OwnWords(Words);
  return Own ? Own->Part(Name) : nullptr;
}

std::string OwnText(const TDicEngineWords& Words) {
  const TDicWords* Own = OwnWords(Words);
  return Own ? Own->Text.value_or("") : "";
}

std::string ConstraintName(const std::string& Name) {
  return Name.empty() ? std::string() : "CONSTRAINT " + QuoteStandardName(Name) + " ";
}

/// "the check 'C'", or "a check" where it has no name.
std::string Named(std::string_view What, const std::string& Name) {
  return Name.empty() ? Format("a %s", What) : Format("the %s '%s'", What, Name);
}

}  // namespace

TSQLiteTableScript::TSQLiteTableScript(const TDicTableDescription& Table) : FTable(Table), FName(Table.FullName()) {
  for (const TDicKey& Key : Table.Keys)
    if (Key.Primary && Key.Columns.size() == 1) FPrimary = &Key;
}

TScript TSQLiteTableScript::Write(const TTableParts& Parts, const std::string& Pattern) {
  if (const auto [What, Why] = Hindrance(); !What.empty()) {
    if (Parts.Table) AddGap("options", What, Why);
    return std::move(FScript);
  }
  if (Parts.Table) WriteTable(Pattern);
  if (Parts.Indexes)
    for (const TDicIndex& Index : FTable.Indexes) WriteIndex(Index);
  if (Parts.Triggers)
    for (const TDicTrigger& Trigger : FTable.Triggers) WriteTrigger(Trigger);
  const auto HasComment = [](const TDicField& Field) { return !Field.Comment.empty(); };
  if (Parts.Comments &&
      (!FTable.Comment.empty() || std::any_of(FTable.Fields.begin(), FTable.Fields.end(), HasComment)))
    AddGap("comments", "the comments", "SQLite has none", true);
  return std::move(FScript);
}

void TSQLiteTableScript::WriteTable(const std::string& Pattern) {
  AddTableGaps();
  const std::string Quoted = QuoteStandardName(FName);
  const std::string What = Format("table '%s'", FName);
  FScript.Makes.push_back(FoldedSQLiteName(FName));
  if (const std::string* Virtual = OwnPart(FTable.Words, "Virtual")) {
    FScript.Statements.push_back({Format("CREATE VIRTUAL TABLE %s %s", Quoted, *Virtual), What});
    return;
  }
  std::string Items;
  const auto Add = [&](const std::string& Item) {
    if (!Item.empty()) Items += (Items.empty() ? "\n  " : ",\n  ") + Item;
  };
  for (const TDicField& Field : FTable.Fields) Add(FieldText(Field));
  for (const TDicKey& Key : FTable.Keys)
    if (!StandsInline(Key)) Add(KeyText(Key, false));
  for (const TDicCheck& Check : FTable.Checks) Add(CheckText(Check));
  for (const TDicForeignKey& Key : FTable.ForeignKeys) Add(ReferenceText(Key));
  const std::string Options = OwnText(FTable.Words);
  FScript.Statements.push_back(
      {FilledPattern(Pattern, Quoted, Items + "\n", Options.empty() ? Options : " " + Options), What});
  WriteCounter();
}

/// A counter starts at 1, unless the engine's list of counters says otherwise.
void TSQLiteTableScript::WriteCounter() {
  const TDicField* Field = FPrimary ? FieldOf(*FPrimary) : nullptr;
  if (!Field || !Counts(*FPrimary) || !Field->Counter.Start) return;
  const std::optional<std::int64_t> Start = StrToInt64(*Field->Counter.Start);
  if (!Start || *Start < 1)
    return AddGap("keys", Format("the start %s of the automatic key '%s'", *Field->Counter.Start, Field->Name),
                  "SQLite counts from 1 upwards");
  if (*Start == 1) return;
  std::string Name;
  for (const char C : FName) Name.append(C == '\'' ? 2 : 1, C);
  FScript.Statements.push_back({Format("INSERT INTO sqlite_sequence (name, seq) VALUES ('%s', %d)", Name, *Start - 1),
                                Format("the counter of table '%s'", FName)});
}

std::string TSQLiteTableScript::FieldText(const TDicField& Field) {
  AddFieldGaps(Field);
  const std::string Type = TypeText(Field);
  std::string Result = QuoteStandardName(Field.Name);
  if (!Type.empty()) Result += " " + Type;
  if (FPrimary && StandsInline(*FPrimary) && FieldOf(*FPrimary) == &Field) Result += " " + KeyText(*FPrimary, true);
  if (const std::string* Collate = OwnPart(Field.Words, "Collate")) Result += " COLLATE " + QuoteStandardName(*Collate);
  if (Field.NotNull) Result += " NOT NULL";
  if (const std::string* Conflict = OwnPart(Field.Words, "NotNull"); Conflict && Field.NotNull)
    Result += " " + *Conflict;
  return Result + DefaultText(Field, Type) + ComputedText(Field);
}

std::string TSQLiteTableScript::TypeText(const TDicField& Field) const {
  if (const TDicWords* Own = OwnWords(Field.Words); Own && Own->Text) return *Own->Text;
  return IsAutomatic(Field) ? "INTEGER" : DeclaredTypeFor(Field);
}

std::string TSQLiteTableScript::DefaultText(const TDicField& Field, const std::string& Type) {
  if (const std::string* Own = OwnPart(Field.Words, "Default")) return " DEFAULT " + *Own;
  if (!Field.Default) return {};
  std::string Value = *ExpressionIn(*Field.Default, SQLiteExpressionWords());
  // A column of texts would keep 1.50 as '1.5'.
  if (KeepsNumbersAsTexts(Field.Type, Type) && Value.find_first_not_of("+-.0123456789") == Value.npos)
    Value = "'" + Value + "'";
  return " DEFAULT " + Value;
}

std::string TSQLiteTableScript::ComputedText(const TDicField& Field) {
  const std::string* Own = OwnPart(Field.Words, "Computed");
  if (!Own && Field.Computed.value_or("").empty()) return {};
  if (const std::string Why = Own || OwnWords(Field.Words) ? "" : OthersValue(*Field.Computed, &Field); !Why.empty()) {
    AddGap("computed", Format("the computation of field '%s'", Field.Name), Why);
    return {};
  }
  const std::string Text = Own ? *Own : ExpressionText(*Field.Computed);
  return Format(" GENERATED ALWAYS AS (%s) %s", Text, Field.Stored ? "STORED" : "VIRTUAL");
}

std::string TSQLiteTableScript::ExpressionText(const std::string& Neutral) const {
  TExpressionWords Words = SQLiteExpressionWords();
  Words.Quoted = [this](std::string_view Name) {
    std::string Quoted = QuoteStandardName(Name);
    for (const TDicField& Field : FTable.Fields)
      if (Field.Name == Name && KeepsNumbersAsTexts(Field.Type, TypeText(Field)))
        return Format("CAST(%s AS NUMERIC)", Quoted);
    return Quoted;
  };
  return *ExpressionIn(Neutral, Words);
}

/// Why a neutral expression has another value on the engine that the fields come from; empty: it has the same.
std::string TSQLiteTableScript::OthersValue(const std::string& Neutral, const TDicField* Computed) const {
  const auto HasOtherDigits = [this](const TDicField& Field) {
    return !OwnWords(Field.Words) && KeepsNumbersAsTexts(Field.Type, TypeText(Field));
  };
  const auto HasOtherOrder = [](const TDicField& Field) {
    const TForeignWords Foreign = ForeignWords(Field.Words);
    return !OwnWords(Field.Words) && Foreign.Words && Foreign.Words->Part("Collate");
  };
  return OtherValueOf(Neutral, FTable.Fields, Computed, {HasOtherDigits, HasOtherOrder});
}

std::string TSQLiteTableScript::ColumnList(const std::vector<TDicColumn>& Columns) const {
  std::string Result;
  for (const TDicColumn& Column : Columns) {
    if (!Result.empty()) Result += ", ";
    // The brackets keep the last word of an expression from being taken for one of the list.
    Result += Column.Expression ? "(" + ExpressionText(Column.Name) + ")" : QuoteStandardName(Column.Name);
    if (Column.Descending) Result += " DESC";
  }
  return Result;
}

const TDicField* TSQLiteTableScript::FieldOf(const TDicKey& Key) const {
  const auto Found = std::find_if(FTable.Fields.begin(), FTable.Fields.end(),
                                  [&](const TDicField& Field) { return Field.Name == Key.Columns.front().Name; });
  return Found == FTable.Fields.end() ? nullptr : &*Found;
}

bool TSQLiteTableScript::IsAutomatic(const TDicField& Field) const {
  return Field.Auto != TDicAutoKey::None && FPrimary && FieldOf(*FPrimary) == &Field;
}

/// Behind its field: the key of an automatic one, as people write it; a descending one, which makes no key of the
/// number of the row there, and does so everywhere else.
bool TSQLiteTableScript::StandsInline(const TDicKey& Key) const {
  if (&Key != FPrimary || OwnText(Key.Words).starts_with("(")) return false;
  const TDicField* Field = FieldOf(Key);
  return Field && (Field->Auto == TDicAutoKey::None) == Key.Columns.front().Descending;
}

/// A number is never given out twice: of other engines' automatic keys that is always so.
bool TSQLiteTableScript::Counts(const TDicKey& Key) const {
  if (&Key != FPrimary) return false;
  if (const TDicWords* Own = OwnWords(Key.Words)) return Own->Text.value_or("").starts_with(AutoIncrement);
  const TDicField* Field = FieldOf(Key);
  return Field && (Field->Auto == TDicAutoKey::Always || Field->Auto == TDicAutoKey::ByDefault);
}

std::string TSQLiteTableScript::KeyText(const TDicKey& Key, bool Inline) {
  const std::string What = Key.Primary ? std::string("the primary key") : Named("unique key", Key.Name);
  const TForeignWords Foreign = ForeignWords(Key.Words);
  if (!OwnWords(Key.Words) && Foreign.Words && Foreign.Words->Text)
    AddGap("keys", Key.Columns.empty() ? What : Format("'%s' of %s", *Foreign.Words->Text, What),
           Format("its words are %s's alone", Foreign.Engine));
  if (Key.Columns.empty()) return {};
  if (Key.Deferrable != TDicDeferrable::No)
    AddGap("keys", "the deferred check of " + What, "SQLite checks unique keys at once");
  std::string Words = OwnText(Key.Words);
  const std::string Result = ConstraintName(Key.Name) + (Key.Primary ? "PRIMARY KEY" : "UNIQUE");
  if (Words.starts_with("(")) return Result + " " + Words;
  if (Words.starts_with(AutoIncrement)) Words.erase(0, std::min(AutoIncrement.size() + 1, Words.size()));
  if (!Words.empty()) Words = " " + Words;
  const std::string Counting = Counts(Key) ? " " + std::string(AutoIncrement) : "";
  if (Inline) return Result + (Key.Columns.front().Descending ? " DESC" : "") + Words + Counting;
  return Format("%s (%s%s)%s", Result, ColumnList(Key.Columns), Counting, Words);
}

std::string TSQLiteTableScript::ReferenceText(const TDicForeignKey& Key) {
  const TForeignWords Foreign = ForeignWords(Key.Words);
  if (!OwnWords(Key.Words) && Foreign.Words && Foreign.Words->Text)
    AddGap("references", Format("'%s' of %s", *Foreign.Words->Text, Named("foreign key", Key.Name)),
           Format("its words are %s's alone", Foreign.Engine));
  std::string Own;
  std::string To;
  for (const TDicForeignKey::TPair& Pair : Key.Columns) {
    Own += (Own.empty() ? "" : ", ") + QuoteStandardName(Pair.Column);
    if (!Pair.To.empty()) To += (To.empty() ? "" : ", ") + QuoteStandardName(Pair.To);
  }
  if (Own.empty()) return {};
  std::string Result =
      Format("%sFOREIGN KEY (%s) REFERENCES %s", ConstraintName(Key.Name), Own, QuoteStandardName(Key.FullTable()));
  if (!To.empty()) Result += " (" + To + ")";
  if (const std::string Words = OwnText(Key.Words); !Words.empty()) Result += " " + Words;
  if (Key.MatchFull) Result += " MATCH FULL";
  return Result + ActionWords("DELETE", Key.OnDelete) + ActionWords("UPDATE", Key.OnUpdate) +
         DeferrableWords(Key.Deferrable);
}

std::string TSQLiteTableScript::CheckText(const TDicCheck& Check) {
  std::string Text = OwnText(Check.Words);
  if (Text.empty() && Check.Text) Text = ExpressionText(*Check.Text);
  if (!Text.empty()) return Format("%sCHECK (%s)", ConstraintName(Check.Name), Text);
  AddGap("checks", Named("check", Check.Name), Format("its text is %s's alone", ForeignWords(Check.Words).Engine));
  return {};
}

void TSQLiteTableScript::WriteIndex(const TDicIndex& Index) {
  const std::string What = Format("index '%s' of table '%s'", Index.Name, FName);
  if (const std::string Own = OwnText(Index.Words); !Own.empty()) {
    FScript.Statements.push_back({RenamedIndex(Own, Index.Name, FName), What});
    FScript.Makes.push_back(FoldedSQLiteName(Index.Name));
    return;
  }
  if (const TForeignWords Foreign = ForeignWords(Index.Words); Foreign.Words || Index.Columns.empty())
    return AddGap("indexes", Format("the index '%s'", Index.Name), Format("its text is %s's alone", Foreign.Engine));
  for (const TDicColumn& Column : Index.Columns)
    if (const std::string Why = Column.Expression ? OthersValue(Column.Name, nullptr) : ""; !Why.empty())
      return AddGap("indexes", Format("the index '%s'", Index.Name), Why);
  std::vector<TDicColumn> Columns = Index.Columns;
  if (const std::string* Numbers = OwnPart(Index.Words, "Numbers"))
    for (TDicColumn& Column : Columns) {
      const std::string Quoted = QuoteStandardName(Column.Name);
      if (Column.Expression || (", " + *Numbers + ", ").find(", " + Quoted + ", ") == std::string::npos) continue;
      Column = {Quoted, true, Column.Descending};
    }
  FScript.Statements.push_back({Format("CREATE %sINDEX %s ON %s (%s)", Index.Unique ? "UNIQUE " : "",
                                       QuoteStandardName(Index.Name), QuoteStandardName(FName), ColumnList(Columns)),
                                What});
  FScript.Makes.push_back(FoldedSQLiteName(Index.Name));
}

void TSQLiteTableScript::WriteTrigger(const TDicTrigger& Trigger) {
  const TDicWords* Own = OwnWords(Trigger.Words);
  if (!Own || Own->Lines.empty())
    return AddGap("triggers", Format("the trigger '%s'", Trigger.Name),
                  Format("its text is %s's alone", ForeignWords(Trigger.Words).Engine));
  FScript.Statements.push_back({RenamedTrigger(JoinedLines(Own->Lines), Trigger.Name, FName),
                                Format("trigger '%s' of table '%s'", Trigger.Name, FName)});
}

}  // namespace velkrund

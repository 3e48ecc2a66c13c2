#include <algorithm>

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/KeysWithNulls.h"
#include "standalone/drivers/TableWords.h"
#include "standalone/drivers/TextLines.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "standalone/drivers/postgresql/PostgreSQLNeutralWords.h"
#include "standalone/drivers/postgresql/PostgreSQLScript.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

std::string NameWords(const std::string& Name, const std::string& What) {
  if (Name.empty()) return {};
  CheckPostgreSQLName(Name, What);
  return "CONSTRAINT " + QuoteStandardName(Name) + " ";
}

class TTableScript {
 public:
  TTableScript(const TDicTableDescription& Table, TPostgreSQLScript& Script)
      : FTable(Table),
        FScript(Script),
        FSQLName(PostgreSQLNameOf(Table)),
        FOwner(Format("table '%s'", Table.FullName())),
        FOwn(OwnWords(Table.Words)) {}

  void Write(const TTableParts& Parts, const std::string& Pattern) {
    CheckPostgreSQLName(FTable.Name, "a table");
    if (Parts.Table) AddTable(Pattern);
    if (Parts.Indexes) AddIndexes(FTable.Indexes, FTable.Fields, FSQLName, FOwner, FScript);
    if (Parts.ForeignKeys) {
      for (const TDicCheck& Check : FTable.Checks)
        if (IsNotChecked(Check)) AddLater(CheckClause(Check), "checks", "check", Check.Name);
      for (const TDicForeignKey& Key : FTable.ForeignKeys)
        AddLater(ReferenceClause(Key), "references", "reference", Key.Name);
    }
    if (Parts.Triggers) AddTriggers(FTable.Triggers, FSQLName, FOwner, FScript);
    if (Parts.Comments) AddComments();
  }

 private:
  std::string Of(std::string_view Part, const std::string& Name) const {
    return Format("%s%s of %s", Part, Name.empty() ? "" : " '" + Name + "'", FOwner);
  }

  void AddTable(const std::string& Pattern) {
    FScript.AddSchemaOf(FSQLName);
    TPostgreSQLScript After;
    std::string Items;
    const auto AddItem = [&](const std::string& Item) {
      if (!Item.empty()) Items += (Items.empty() ? "\n  " : ",\n  ") + Item;
    };
    for (const TDicField& Field : FTable.Fields) AddItem(PostgreSQLFieldClause(FTable, Field, FScript, After));
    for (const TDicKey& Key : FTable.Keys) AddItem(KeyClause(Key));
    for (const TDicCheck& Check : FTable.Checks)
      if (!IsNotChecked(Check)) AddItem(CheckClause(Check));
    if (!Items.empty()) Items += '\n';
    FScript.Add(FilledPattern(Pattern, FSQLName, Items, Words(After)), FOwner);
    FScript.Makes.push_back(FSQLName);
    for (const TDicKey& Key : FTable.Keys)
      if (!Key.Name.empty()) FScript.Makes.push_back(BesidePostgreSQLTable(Key.Name, FSQLName));
    for (TScriptStatement& Statement : After.Statements) FScript.Statements.push_back(std::move(Statement));
  }

  /// What stands behind the parenthesis; into After what is said of a table that is there.
  std::string Words(TPostgreSQLScript& After) {
    if (!FOwn) {
      if (OthersPart(FTable.Words, "Virtual"))
        FScript.Lack("options", "what keeps the rows of " + FOwner, "it is an extension of another engine");
      else if (const std::string* Text = OthersText(FTable.Words))
        FScript.Lack("options", Format("the words '%s' of %s", *Text, FOwner), "they are another engine's alone", true);
      return {};
    }
    std::string Text = FOwn->Text.value_or("");
    std::string Result;
    if (const std::string* Partition = FOwn->Part("Partition")) Result += " PARTITION " + *Partition;
    constexpr std::string_view Unlogged = "UNLOGGED";
    if (Text.starts_with(Unlogged)) {
      Text.erase(0, Unlogged.size());
      After.Add(Format("ALTER TABLE %s SET UNLOGGED", FSQLName), FOwner);
    } else if (!Text.empty()) {
      Text.insert(0, " ");
    }
    if (const std::string* Parents = FOwn->Part("Inherits"))
      for (const std::string& Parent : SplitPostgreSQLNames(*Parents)) {
        FScript.Needs.push_back(PlainPostgreSQLName(Parent));
        After.Add(Format("ALTER TABLE %s INHERIT %s", FSQLName, Parent), FOwner);
      }
    if (const std::string* Of = FOwn->Part("PartitionOf")) {
      const std::size_t End = EndOfPostgreSQLName(*Of);
      FScript.Needs.push_back(PlainPostgreSQLName(Of->substr(0, End)));
      After.Add(Format("ALTER TABLE %s ATTACH PARTITION %s%s", Of->substr(0, End), FSQLName, Of->substr(End)), FOwner);
    }
    return Result + Text;
  }

  std::string KeyClause(const TDicKey& Key) {
    const std::string What = Of(Key.Primary ? "the primary key" : "the unique key", Key.Name);
    const std::string Name = NameWords(Key.Name, "a key of " + FOwner);
    if (const TDicWords* Own = OwnWords(Key.Words); Own && Own->Text) return Name + *Own->Text;
    if (HasNoOrder(FTable.Fields, Key.Columns)) {
      FScript.Lack("keys", What, PostgreSQLNoOrder);
      return {};
    }
    for (const auto& [Engine, Words] : Key.Words) {
      if (!IsPrimaryWithNulls(Key, Engine)) continue;
      FScript.Lack("keys", "that it is the primary key, of " + What, "it has NULLs", true);
      TDicKey Others = KeyOfEngine(Key, Engine);
      Others.Primary = false;
      return KeyClause(Others);
    }
    // A sequence never gives a number twice either.
    if (const std::string* Text = OthersText(Key.Words); Text && *Text != "AUTOINCREMENT")
      FScript.Lack("keys", Format("the words '%s' of %s", *Text, What), "they are another engine's alone");
    for (const TDicColumn& Column : Key.Columns)
      if (Column.Descending) {
        FScript.Lack("keys", "the descending order of " + What, "keys of PostgreSQL have one order", true);
        break;
      }
    return Name + (Key.Primary ? "PRIMARY KEY (" : "UNIQUE (") + PostgreSQLColumns(Key.Columns) + ")" +
           DeferrableWords(Key.Deferrable);
  }

  /// Rows that are there before it need not obey: it is added to them.
  static bool IsNotChecked(const TDicCheck& Check) {
    const TDicWords* Own = OwnWords(Check.Words);
    return Own && Own->Text && Own->Text->ends_with(" NOT VALID");
  }

  std::string CheckClause(const TDicCheck& Check) {
    const std::string Name = NameWords(Check.Name, "a check of " + FOwner);
    if (const TDicWords* Own = OwnWords(Check.Words); Own && Own->Text)
      return Name + (Own->Text->starts_with("EXCLUDE ") ? "" : "CHECK ") + *Own->Text;
    if (Check.Text)
      if (const auto Words = ConditionWords(*Check.Text, FTable.Fields, TDicFieldType::Boolean))
        return Name + "CHECK (" + *Words + ")";
    FScript.Lack("checks", Of("the check", Check.Name),
                 Check.Text ? PostgreSQLNoWords : "its text is another engine's alone");
    return {};
  }

  std::string ReferenceClause(const TDicForeignKey& Key) {
    const std::string What = Of("the reference", Key.Name);
    const std::string Name = NameWords(Key.Name, "a reference of " + FOwner);
    if (const TDicWords* Own = OwnWords(Key.Words); Own && Own->Text) return Name + *Own->Text;
    if (const std::string* Text = OthersText(Key.Words))
      FScript.Lack("references", Format("the words '%s' of %s", *Text, What), "they are another engine's alone");
    std::vector<TDicColumn> Columns, To;
    for (const TDicForeignKey::TPair& Pair : Key.Columns) {
      const auto IsMixed = [&](const TDicField& Field) {
        return Field.Name == Pair.Column && Field.Type == TDicFieldType::Any;
      };
      if (std::any_of(FTable.Fields.begin(), FTable.Fields.end(), IsMixed)) {
        FScript.Lack("references", What, Format("the values of field '%s' would all be texts", Pair.Column));
        return {};
      }
      Columns.push_back({Pair.Column});
      if (!Pair.To.empty()) To.push_back({Pair.To});
    }
    if (!To.empty() && To.size() != Columns.size())
      throw EDatabaseError(Format("Cannot make %s: some of its columns name no column of the other table", What));
    std::string Result = Name + "FOREIGN KEY (" + PostgreSQLColumns(Columns) + ") REFERENCES " +
                         PostgreSQLNameOf({.Name = Key.Table, .Schema = Key.Schema});
    if (!To.empty()) Result += " (" + PostgreSQLColumns(To) + ")";
    if (Key.MatchFull) Result += " MATCH FULL";
    return Result + ActionWords("DELETE", Key.OnDelete) + ActionWords("UPDATE", Key.OnUpdate) +
           DeferrableWords(Key.Deferrable) + (Key.NotChecked ? " NOT VALID" : "");
  }

  void AddLater(const std::string& Clause, const char* Kind, std::string_view Part, const std::string& Name) {
    if (Clause.empty()) return;
    FScript.Add(Format("ALTER TABLE %s ADD %s", FSQLName, Clause), Of(Part, Name));
    FScript.Statements.back().Kind = Kind;
  }

  void AddComments() {
    if (!FTable.Comment.empty())
      FScript.Add(Format("COMMENT ON TABLE %s IS %s", FSQLName, QuotePostgreSQLText(FTable.Comment)),
                  "the comment of " + FOwner);
    for (const TDicField& Field : FTable.Fields)
      if (!Field.Comment.empty())
        FScript.Add(Format("COMMENT ON COLUMN %s.%s IS %s", FSQLName, QuoteStandardName(Field.Name),
                           QuotePostgreSQLText(Field.Comment)),
                    Format("the comment of field '%s' of %s", Field.Name, FOwner));
  }

  const TDicTableDescription& FTable;
  TPostgreSQLScript& FScript;
  const std::string FSQLName, FOwner;
  const TDicWords* FOwn;
};

}  // namespace

void WritePostgreSQLTable(const TDicTableDescription& Table, const TTableParts& Parts, const std::string& Pattern,
                          TPostgreSQLScript& Script) {
  TTableScript(Table, Script).Write(Parts, Pattern);
}

}  // namespace velkrund

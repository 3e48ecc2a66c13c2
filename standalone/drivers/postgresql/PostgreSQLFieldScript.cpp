#include <algorithm>

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/postgresql/PostgreSQLFieldTypes.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "standalone/drivers/postgresql/PostgreSQLNeutralWords.h"
#include "standalone/drivers/postgresql/PostgreSQLScript.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr std::string_view SystemColumns[] = {"tableoid", "xmin", "cmin", "xmax", "cmax", "ctid"};

/// Without the brackets of arrays.
std::string ElementType(std::string Type) {
  while (Type.ends_with("[]")) Type.resize(Type.size() - 2);
  return Type;
}

/// One without a schema is of the current one: another of its name, further down the search path, is another type.
void AddType(const std::string& Name, const std::string& Statement, TPostgreSQLScript& Script) {
  Script.AddSchemaOf(Name);
  const std::string Text = QuotePostgreSQLText(Name);
  const std::string Whole =
      EndOfPostgreSQLSchema(Name) > 0
          ? Text
          : "pg_catalog.concat(pg_catalog.quote_ident(pg_catalog.current_schema()), '.', " + Text + ")";
  const std::string Unless = "SELECT 1 WHERE pg_catalog.to_regtype(" + Whole + ") IS NOT NULL";
  const auto IsThere = [&](const TScriptStatement& Known) { return Known.Unless == Unless; };
  if (std::none_of(Script.Statements.begin(), Script.Statements.end(), IsThere))
    Script.Add(Statement, "type " + Name, Unless);
}

/// An enumeration, a domain over whatever type, a composite or a range, which the type of a field needs to be there.
void AddTypes(const TDicWords& Words, TPostgreSQLScript& Script) {
  const std::string Type = ElementType(Words.Text.value_or(""));
  const std::string* Base = Words.Part("Base");
  if (!Words.Lines.empty()) {
    const std::string Name = Base ? Base->substr(0, EndOfPostgreSQLName(*Base)) : Type;
    std::string Values;
    for (const std::string& Value : Words.Lines) Values += (Values.empty() ? "" : ", ") + QuotePostgreSQLText(Value);
    AddType(Name, "CREATE TYPE " + Name + " AS ENUM (" + Values + ")", Script);
  }
  if (!Base) return;
  if (Base->starts_with('(') || Base->starts_with("RANGE (")) {
    AddType(Type, "CREATE TYPE " + Type + " AS " + *Base, Script);
    return;
  }
  const std::string* Check = Words.Part("Check");
  AddType(Type, "CREATE DOMAIN " + Type + " AS " + *Base + (Check ? " " + *Check : ""), Script);
}

class TFieldScript {
 public:
  TFieldScript(const TDicTableDescription& Table, const TDicField& Field, TPostgreSQLScript& Script,
               TPostgreSQLScript& After)
      : FTable(Table), FField(Field), FScript(Script), FAfter(After), FOwn(OwnWords(Field.Words)) {}

  std::string Clause() {
    CheckPostgreSQLName(FField.Name, Format("a field of table '%s'", FTable.FullName()));
    if (std::find(std::begin(SystemColumns), std::end(SystemColumns), FField.Name) != std::end(SystemColumns))
      throw EDatabaseError(
          Format("Cannot make %s: PostgreSQL has a column '%s' of its own in every table; give the field another name",
                 What(), FField.Name));
    std::string Result = QuoteStandardName(FField.Name) + " " + Type();
    if (const std::string* Collate = OwnPart("Collate"))
      Result += " COLLATE " + *Collate;
    else if (OthersPart(FField.Words, "Collate"))
      FScript.Lack("collations", "the order of " + What(), "PostgreSQL has none of its name");
    Result += Value();
    const std::string* Base = OwnPart("Base");
    if (FField.NotNull && !(Base && Base->ends_with(" NOT NULL"))) Result += " NOT NULL";
    return Result;
  }

 private:
  std::string What() const { return Format("field '%s' of table '%s'", FField.Name, FTable.FullName()); }
  const std::string* OwnPart(std::string_view Name) const { return FOwn ? FOwn->Part(Name) : nullptr; }

  std::string Type() {
    if (FOwn && FOwn->Text) {
      AddTypes(*FOwn, FScript);
      FDeclared = *FOwn->Text;
      FIsIdentity = FDeclared.ends_with(PostgreSQLIdentityWords);
      if (FIsIdentity) FDeclared.resize(FDeclared.size() - PostgreSQLIdentityWords.size());
      return FDeclared;
    }
    const TPostgreSQLDeclaration Declaration = DeclarationOf({FField.Type, FField.Size, FField.Scale});
    if (!Declaration.Loss.empty())
      FScript.Lack("types", "the type of " + What(), Declaration.Loss, Declaration.Harmless);
    else if (OthersLines(FField.Words))
      FScript.Lack("types", "the list of values of " + What(), "it is another engine's type", true);
    return FDeclared = Declaration.Type;
  }

  /// Where its values come from when a row brings none.
  std::string Value() {
    if (FField.Computed) return Computed();
    const std::string* Own = OwnPart("Default");
    const bool IsIdentity = FIsIdentity || FField.Auto == TDicAutoKey::Always || FField.Owned.empty();
    if (!IsIdentity) AddOwned();
    if (FField.Auto != TDicAutoKey::None) return IsIdentity ? Identity() : " DEFAULT " + Next();
    if (Own && Own->find('(') != std::string::npos) return Called(*Own);
    if (Own) return " DEFAULT " + *Own;
    if (const std::string* Base = OwnPart("Base"); Base && Base->find(" DEFAULT ") != std::string::npos) return {};
    if (FField.Default) {
      if (const auto Words = DefaultWords(*FField.Default, FField.Type)) return " DEFAULT " + *Words;
      FScript.Lack("defaults", "the default of " + What(),
                   Format("PostgreSQL takes no %s for its type", *FField.Default));
    } else if (OthersPart(FField.Words, "Default")) {
      FScript.Lack("defaults", "the default of " + What(), "its text is another engine's alone");
    }
    return {};
  }

  /// What calls something that may not be there, as a sequence is, is a statement of its own.
  std::string Called(const std::string& Default) {
    FAfter.Add(Format("ALTER TABLE %s ALTER COLUMN %s SET DEFAULT %s", PostgreSQLNameOf(FTable),
                      QuoteStandardName(FField.Name), Default),
               "default of " + What());
    FAfter.Statements.back().Kind = "defaults";
    return {};
  }

  std::string Computed() {
    std::optional<std::string> Expression;
    if (const std::string* Own = OwnPart("Computed"))
      Expression = *Own;
    else if (!FField.Computed->empty())
      Expression = ConditionWords(*FField.Computed, FTable.Fields, FField.Type);
    const bool IsOthers = !FOwn && !FField.Computed->empty();
    if (const std::string Why = IsOthers ? OthersValue(*FField.Computed, FTable.Fields, &FField) : ""; !Why.empty()) {
      FScript.Lack("computed", "how " + What() + " is computed", Why);
      return {};
    }
    if (!Expression) {
      FScript.Lack("computed", "how " + What() + " is computed",
                   FField.Computed->empty() ? "its text is another engine's alone" : "PostgreSQL has no words for it");
      return {};
    }
    if (!FField.Stored)
      FScript.Lack("computed", "that the values of " + What() + " take no room", "PostgreSQL keeps them in the row",
                   true);
    return " GENERATED ALWAYS AS (" + *Expression + ") STORED";
  }

  std::string OwnedName() const {
    return (FTable.Schema.empty() ? "" : QuoteStandardName(FTable.Schema) + ".") + QuoteStandardName(FField.Owned);
  }
  std::string Next() const { return "nextval(" + QuotePostgreSQLText(OwnedName()) + "::regclass)"; }

  /// What the engine's own words say of the sequence, with a blank before it.
  std::string SequenceWords() const {
    const std::string* const Own = OwnPart("Sequence");
    return Own ? " " + *Own : "";
  }

  std::string Identity() {
    if (FDeclared != "smallint" && FDeclared != "integer" && FDeclared != "bigint") {
      FScript.Lack("defaults", "the automatic numbers of " + What(), "PostgreSQL numbers integers alone");
      return {};
    }
    std::string Words = CounterWords(FField.Counter, What()) + SequenceWords();
    if (!FField.Owned.empty()) Words = " SEQUENCE NAME " + OwnedName() + Words;
    return std::string(" GENERATED ") + (FField.Auto == TDicAutoKey::Always ? "ALWAYS" : "BY DEFAULT") +
           " AS IDENTITY" + (Words.empty() ? "" : " (" + Words.substr(1) + ")");
  }

  /// A sequence that goes with the field, as of one declared as serial.
  void AddOwned() {
    const std::string Sequence = Format("sequence '%s' of table '%s'", FField.Owned, FTable.FullName());
    CheckPostgreSQLName(FField.Owned, Format("a sequence of table '%s'", FTable.FullName()));
    std::string Words = SequenceWords();
    if (!Words.starts_with(" AS ")) Words.insert(0, Format(" AS %s", SequenceTypeFor(FField.Type)));
    FScript.Add("CREATE SEQUENCE " + OwnedName() + Words + CounterWords(FField.Counter, Sequence), Sequence);
    FScript.Makes.push_back(OwnedName());
    FAfter.Add("ALTER SEQUENCE " + OwnedName() + " OWNED BY " + PostgreSQLNameOf(FTable) + "." +
                   QuoteStandardName(FField.Name),
               Sequence);
  }

  const TDicTableDescription& FTable;
  const TDicField& FField;
  TPostgreSQLScript& FScript;
  TPostgreSQLScript& FAfter;
  const TDicWords* FOwn;
  std::string FDeclared;
  bool FIsIdentity = false;
};

}  // namespace

std::string PostgreSQLFieldClause(const TDicTableDescription& Table, const TDicField& Field, TPostgreSQLScript& Script,
                                  TPostgreSQLScript& After) {
  return TFieldScript(Table, Field, Script, After).Clause();
}

}  // namespace velkrund

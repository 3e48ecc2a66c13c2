#include "standalone/drivers/postgresql/PostgreSQLScriptWriter.h"

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/GeneratorRange.h"
#include "standalone/drivers/TextLines.h"
#include "standalone/drivers/postgresql/PostgreSQLFieldTypes.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "standalone/drivers/postgresql/PostgreSQLNeutralWords.h"
#include "standalone/drivers/postgresql/PostgreSQLScript.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

void AddComment(const TDicObjectDescription& Object, const char* Kind, const std::string& Owner,
                TPostgreSQLScript& Script) {
  if (!Object.Comment.empty())
    Script.Add(Format("COMMENT ON %s %s IS %s", Kind, PostgreSQLNameOf(Object), QuotePostgreSQLText(Object.Comment)),
               "the comment of " + Owner);
}

std::string TypeOf(const TDicParameter& Parameter, const std::string& Owner, TPostgreSQLScript& Script) {
  if (const TDicWords* Own = OwnWords(Parameter.Words); Own && Own->Text) return *Own->Text;
  const TPostgreSQLDeclaration Declaration = DeclarationOf({Parameter.Type, Parameter.Size, Parameter.Scale});
  if (!Declaration.Loss.empty())
    Script.Lack("types", Format("the type of parameter '%s' of %s", Parameter.Name, Owner), Declaration.Loss,
                Declaration.Harmless);
  return Declaration.Type;
}

std::string ParameterClause(const TDicParameter& Parameter, const std::string& Owner, TPostgreSQLScript& Script) {
  constexpr std::string_view Variadic = "VARIADIC ";
  std::string Type = TypeOf(Parameter, Owner, Script);
  std::string Result;
  if (Parameter.Mode == TDicParameterMode::Out) Result = "OUT ";
  if (Parameter.Mode == TDicParameterMode::InOut) Result = "INOUT ";
  if (Type.starts_with(Variadic)) {
    Result = Variadic;
    Type.erase(0, Variadic.size());
  }
  if (!Parameter.Name.empty()) Result += QuoteStandardName(Parameter.Name) + " ";
  Result += Type;
  const TDicWords* Own = OwnWords(Parameter.Words);
  const std::string* Default = Own ? Own->Part("Default") : nullptr;
  std::optional<std::string> Words;
  if (Default)
    Words = *Default;
  else if (Parameter.Default)
    Words = DefaultWords(*Parameter.Default, Parameter.Type);
  if (Words)
    Result += " DEFAULT " + *Words;
  else if (Parameter.Default || OthersPart(Parameter.Words, "Default"))
    Script.Lack("defaults", Format("the default of parameter '%s' of %s", Parameter.Name, Owner),
                "PostgreSQL has no words for it");
  return Result;
}

std::string ParameterList(const std::vector<TDicParameter>& Parameters, const std::string& Owner,
                          TPostgreSQLScript& Script) {
  std::string Result;
  for (const TDicParameter& Parameter : Parameters)
    Result += (Result.empty() ? "" : ", ") + ParameterClause(Parameter, Owner, Script);
  return Result;
}

/// With a blank before; empty: as usual.
std::string CacheWords(const TDicGeneratorDescription& Generator, const std::string& Owner) {
  if (!Generator.Cache) return {};
  if (!StrToInt64(*Generator.Cache))
    throw EDatabaseError(Format("Cannot make %s: its cache '%s' is no number", Owner, *Generator.Cache));
  return " CACHE " + *Generator.Cache;
}

/// Between quotes that do not stand in it.
std::string BetweenDollars(const std::string& Body) {
  std::string Quote = "$body";
  while (Body.find(Quote) != std::string::npos) Quote += '_';
  Quote += '$';
  return Quote + Body + Quote;
}

/// A body between quotes; one in the standard's form has none.
std::string BodyWords(const std::string& Body, const std::string& Language) {
  if (Language == "sql" && (Body.starts_with("BEGIN ATOMIC") || Body.starts_with("RETURN "))) return Body;
  return "AS " + BetweenDollars(Body);
}

}  // namespace

std::string TPostgreSQLScriptWriter::TablePattern() const { return "CREATE TABLE {table} ({items}){words}"; }

TScript TPostgreSQLScriptWriter::Table(const TDicTableDescription& Table, const TTableParts& Parts,
                                       const std::string& Pattern) const {
  TPostgreSQLScript Result;
  WritePostgreSQLTable(Table, Parts, Pattern, Result);
  return Result;
}

TScript TPostgreSQLScriptWriter::View(const TDicViewDescription& View, bool Replace) const {
  CheckPostgreSQLName(View.Name, "a view");
  TPostgreSQLScript Result;
  const std::string Owner = Format("view '%s'", View.FullName());
  const std::string Name = PostgreSQLNameOf(View);
  const TDicWords* Own = OwnWords(View.Words);
  const std::vector<std::string>* Lines = Own && !Own->Lines.empty() ? &Own->Lines : OthersLines(View.Words);
  if (!Lines) {
    Result.Lack("views", "the " + Owner, "it has no text");
    return Result;
  }
  Result.AddSchemaOf(Name);
  std::string Text = View.Materialized ? "CREATE MATERIALIZED VIEW "
                     : Replace         ? "CREATE OR REPLACE VIEW "
                                       : "CREATE VIEW ";
  Text += Name;
  std::vector<TDicColumn> Columns;
  for (const std::string& Column : View.Columns) Columns.push_back({Column});
  if (!Columns.empty()) Text += " (" + PostgreSQLColumns(Columns) + ")";
  if (const std::string* Options = Own ? Own->Part("Options") : nullptr) Text += " " + *Options;
  Text += " AS\n" + JoinedLines(*Lines);
  if (const std::string* Check = Own ? Own->Part("Check") : nullptr)
    Text += *Check == "Local" ? "\nWITH LOCAL CHECK OPTION" : "\nWITH CASCADED CHECK OPTION";
  Result.Add(Text, Owner);
  Result.Makes.push_back(Name);
  AddIndexes(View.Indexes, {}, Name, Owner, Result);
  if (Replace)
    for (const TDicTrigger& Trigger : View.Triggers)
      Result.Add(Format("DROP TRIGGER IF EXISTS %s ON %s", QuoteStandardName(Trigger.Name), Name),
                 Format("trigger '%s' of %s", Trigger.Name, Owner));
  AddTriggers(View.Triggers, Name, Owner, Result);
  AddComment(View, View.Materialized ? "MATERIALIZED VIEW" : "VIEW", Owner, Result);
  return Result;
}

TScript TPostgreSQLScriptWriter::Generator(const TDicGeneratorDescription& Generator,
                                           std::optional<std::int64_t> Start) const {
  CheckPostgreSQLName(Generator.Name, "a generator");
  TPostgreSQLScript Result;
  const std::string Owner = Format("generator '%s'", Generator.FullName());
  const std::string Name = PostgreSQLNameOf(Generator);
  Result.AddSchemaOf(Name);
  std::string Text = "CREATE SEQUENCE " + Name;
  if (const TDicWords* Own = OwnWords(Generator.Words); Own && Own->Text) Text += " " + *Own->Text;
  Text += CounterWords(Generator.Counter, Owner);
  Text += CacheWords(Generator, Owner);
  Result.Add(Text, Owner);
  Result.Makes.push_back(Name);
  // What it counts from stays as described; a later start is where it stands.
  if (Start) Result.Add(Format("ALTER SEQUENCE %s RESTART WITH %d", Name, *Start), Owner);
  AddComment(Generator, "SEQUENCE", Owner, Result);
  return Result;
}

TScript TPostgreSQLScriptWriter::AlterGenerator(const TDicGeneratorDescription& Generator,
                                                std::optional<std::int64_t> Start) const {
  TPostgreSQLScript Result;
  const std::string Owner = Format("generator '%s'", Generator.FullName());
  // What is not said would stay as it is.
  TDicCounter Counter = Generator.Counter;
  const TGeneratorRange Range = RangeOf(Generator.FullName(), Counter);
  Counter.Start = std::to_string(Range.Start);
  Counter.Step = std::to_string(Range.Step);
  const TDicWords* Own = OwnWords(Generator.Words);
  std::string Text = "ALTER SEQUENCE " + PostgreSQLNameOf(Generator) + " ";
  Text += Own && Own->Text ? *Own->Text : "AS bigint";
  Text += CounterWords(Counter, Owner);
  if (!Counter.Min) Text += " NO MINVALUE";
  if (!Counter.Max) Text += " NO MAXVALUE";
  if (!Counter.Cycle) Text += " NO CYCLE";
  Text += Generator.Cache ? CacheWords(Generator, Owner) : " CACHE 1";
  if (Start) Text += Format(" RESTART WITH %d", *Start);
  Result.Add(Text, Owner);
  AddComment(Generator, "SEQUENCE", Owner, Result);
  return Result;
}

TScript TPostgreSQLScriptWriter::SetGenerator(const TDicGeneratorDescription& Generator, std::int64_t Value) const {
  TPostgreSQLScript Result;
  const std::string Owner = Format("generator '%s'", Generator.FullName());
  const std::string Name = PostgreSQLNameOf(Generator);
  const TGeneratorRange Range = RangeOf(Generator.FullName(), Generator.Counter);
  const std::int64_t Next = Range.After(Value).value_or(Range.Start);
  Result.Add(Format("ALTER SEQUENCE %s RESTART WITH %d", Name, Next), Owner);
  // Otherwise another number comes next, or none. A roll back takes it back with the statement before.
  const bool IsNext =
      static_cast<std::uint64_t>(Next) - static_cast<std::uint64_t>(Range.Step) == static_cast<std::uint64_t>(Value);
  if (!IsNext) Result.Add(Format("SELECT pg_catalog.setval(%s, %d)", QuotePostgreSQLText(Name), Value), Owner);
  return Result;
}

TScript TPostgreSQLScriptWriter::Procedure(const TDicProcedureDescription& Procedure, bool Replace) const {
  CheckPostgreSQLName(Procedure.Name, "a procedure");
  TPostgreSQLScript Result;
  const std::string Owner = Format("procedure '%s'", Procedure.FullName());
  const std::string Name = PostgreSQLNameOf(Procedure);
  const TDicWords* Own = OwnWords(Procedure.Words);
  const std::vector<std::string>* Lines = Own && !Own->Lines.empty() ? &Own->Lines : OthersLines(Procedure.Words);
  if (!Lines) {
    Result.Lack("procedures", "the " + Owner, "it has no text");
    return Result;
  }
  Result.AddSchemaOf(Name);
  std::string Options;
  if (const std::string* Part = Own ? Own->Part("Options") : nullptr) Options = *Part;
  const bool SaysResult = Options.starts_with("RETURNS ");
  std::string Text = Replace ? "CREATE OR REPLACE " : "CREATE ";
  Text += (Procedure.Selects || SaysResult ? "FUNCTION " : "PROCEDURE ") + Name + "(" +
          ParameterList(Procedure.Parameters, Owner, Result) + ")";
  if (Procedure.Selects && !SaysResult)
    Text += "\nRETURNS TABLE (" + ParameterList(Procedure.Result, Owner, Result) + ")";
  if (!Options.empty()) Text += "\n" + Options;
  const std::string Language = Procedure.Language.empty() ? "sql" : Procedure.Language;
  Text += "\nLANGUAGE " + QuoteStandardName(Language) + "\n" + BodyWords(JoinedLines(*Lines), Language);
  Result.Add(Text, Owner);
  AddComment(Procedure, "ROUTINE", Owner, Result);
  return Result;
}

std::string TPostgreSQLScriptWriter::ShellText(const TScriptStatement& Statement) const {
  if (Statement.Unless.empty()) return TScriptWriter::ShellText(Statement);
  return "DO " +
         BetweenDollars(Format("BEGIN IF NOT EXISTS (%s) THEN\n%s;\nEND IF; END", Statement.Unless, Statement.Text)) +
         ";\n";
}

std::string TPostgreSQLScriptWriter::DropTable(const TDicObjectDescription& Table) const {
  return "DROP TABLE " + PostgreSQLNameOf(Table);
}

std::string TPostgreSQLScriptWriter::DropView(const TDicViewDescription& View) const {
  return (View.Materialized ? "DROP MATERIALIZED VIEW " : "DROP VIEW ") + PostgreSQLNameOf(View);
}

std::string TPostgreSQLScriptWriter::DropGenerator(const TDicObjectDescription& Generator) const {
  return "DROP SEQUENCE " + PostgreSQLNameOf(Generator);
}

std::string TPostgreSQLScriptWriter::DropProcedure(const TDicProcedureDescription& Procedure) const {
  return "DROP ROUTINE " + PostgreSQLNameOf(Procedure);
}

}  // namespace velkrund

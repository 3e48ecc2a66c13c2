#include <map>

#include "standalone/drivers/postgresql/PostgreSQLDescribed.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"

namespace velkrund {
namespace {

/// A row per constraint of the tables $1 and column of it, the table last in it. What a partition has from its table
/// comes with that; checks have to be there before.
constexpr const char* ConstraintsStatement =
    "SELECT k.oid, k.conname, k.contype, k.condeferrable, k.condeferred, k.convalidated, "
    "pg_catalog.pg_get_constraintdef(k.oid), pg_catalog.pg_get_expr(k.conbin, k.conrelid), t.relname, "
    "CASE WHEN tn.nspname <> $2::pg_catalog.text THEN tn.nspname END, k.confdeltype, k.confupdtype, "
    "k.confmatchtype, a.attname, pg_catalog.quote_ident(a.attname), b.attname, pg_catalog.quote_ident(b.attname), "
    "k.confrelid::pg_catalog.regclass, EXISTS (SELECT FROM pg_catalog.pg_constraint o WHERE o.conname = k.conname "
    "AND o.connamespace = k.connamespace AND o.oid <> k.oid AND o.coninhcount = '0' AND o.conparentid = '0'), "
    "k.conrelid "
    "FROM pg_catalog.pg_constraint k "
    "LEFT JOIN pg_catalog.pg_class t ON t.oid = k.confrelid "
    "LEFT JOIN pg_catalog.pg_namespace tn ON tn.oid = t.relnamespace "
    "LEFT JOIN LATERAL ROWS FROM (pg_catalog.unnest(k.conkey), pg_catalog.unnest(k.confkey)) WITH ORDINALITY "
    "AS c (own, other, place) ON true "
    "LEFT JOIN pg_catalog.pg_attribute a ON a.attrelid = k.conrelid AND a.attnum = c.own "
    "LEFT JOIN pg_catalog.pg_attribute b ON b.attrelid = k.confrelid AND b.attnum = c.other "
    "WHERE k.conrelid = ANY ($1::pg_catalog.oid[]) AND k.contype = ANY ('{p,u,f,c,x}') "
    "AND (k.contype = 'c' OR k.conparentid = '0') ORDER BY k.conrelid, k.contype <> 'p', k.conname, k.oid, c.place";

struct TConstraint {
  std::string Name, Definition, Expression, Table, TableSchema, TableSQLName;
  char Kind, OnDelete, OnUpdate;
  bool Deferrable, Deferred, IsValid, MatchFull;
  bool SharesName;  // with another table's
  std::vector<std::string> Columns, To;
  std::string Quoted, QuotedTo;  // lists
};

void AddTo(std::string& List, std::string_view Name) { (List += List.empty() ? "" : ", ") += Name; }

std::vector<TConstraint> ConstraintsOf(const TDescribed& Table) {
  const TDescribedRows Rows = Table.Describing.RowsOf(Table.Oid, "constraints", ConstraintsStatement,
                                                      {Table.Describing.Dialect().CurrentSchema()});
  std::vector<TConstraint> Result;
  for (int Row = 0; Row < Rows.RowCount();) {
    const auto Letter = [&](int Column) {
      return Rows.Text(Row, Column).empty() ? ' ' : Rows.Text(Row, Column).front();
    };
    TConstraint Found{.Name = Rows.Copy(Row, 1),
                      .Definition = Rows.Copy(Row, 6),
                      .Expression = Rows.Copy(Row, 7),
                      .Table = Rows.Copy(Row, 8),
                      .TableSchema = Rows.Copy(Row, 9),
                      .TableSQLName = Rows.Copy(Row, 17),
                      .Kind = Letter(2),
                      .OnDelete = Letter(10),
                      .OnUpdate = Letter(11),
                      .Deferrable = Rows.Boolean(Row, 3),
                      .Deferred = Rows.Boolean(Row, 4),
                      .IsValid = Rows.Boolean(Row, 5),
                      .MatchFull = Letter(12) == 'f',
                      .SharesName = Rows.Boolean(Row, 18),
                      .Columns = {},
                      .To = {},
                      .Quoted = {},
                      .QuotedTo = {}};
    const std::string Oid = Rows.Copy(Row, 0);
    for (; Row < Rows.RowCount() && Rows.Text(Row, 0) == Oid; ++Row) {
      Found.Columns.push_back(Rows.Copy(Row, 13));
      Found.To.push_back(Rows.Copy(Row, 15));
      AddTo(Found.Quoted, Rows.Text(Row, 14));
      AddTo(Found.QuotedTo, Rows.Text(Row, 16));
    }
    Result.push_back(std::move(Found));
  }
  return Result;
}

TDicDeferrable DeferrableOf(const TConstraint& Constraint) {
  if (!Constraint.Deferrable) return TDicDeferrable::No;
  return Constraint.Deferred ? TDicDeferrable::Deferred : TDicDeferrable::Immediate;
}

TDicKeyAction ActionOf(char Letter) {
  switch (Letter) {
    case 'c':
      return TDicKeyAction::Cascade;
    case 'n':
      return TDicKeyAction::SetNull;
    case 'd':
      return TDicKeyAction::SetDefault;
    case 'r':
      return TDicKeyAction::Restrict;
    default:
      return TDicKeyAction::NoAction;
  }
}

std::string_view ActionWords(char Letter) {
  switch (Letter) {
    case 'c':
      return "CASCADE";
    case 'n':
      return "SET NULL";
    case 'd':
      return "SET DEFAULT";
    case 'r':
      return "RESTRICT";
    default:
      return {};
  }
}

std::string Ending(const TConstraint& Constraint) {
  std::string Result;
  if (Constraint.Deferrable) Result += " DEFERRABLE";
  if (Constraint.Deferred) Result += " INITIALLY DEFERRED";
  if (!Constraint.IsValid) Result += " NOT VALID";
  return Result;
}

/// Empty for the name that the engine gives by itself, which it does where no other table of the schema has it.
std::string NameOf(const TConstraint& Constraint, const std::string& Given) {
  return Constraint.Name == Given && !Constraint.SharesName ? std::string() : Constraint.Name;
}

class TConstraintReader {
 public:
  TConstraintReader(const TDescribed& Table, const TPostgreSQLExpressions& Expressions, TDicTableDescription& Result)
      : FTable(Table), FExpressions(Expressions), FResult(Result) {}

  void Take(const TConstraint& Constraint) {
    switch (Constraint.Kind) {
      case 'p':
      case 'u':
        return TakeKey(Constraint);
      case 'f':
        return TakeForeignKey(Constraint);
      case 'c':
        return TakeCheck(Constraint);
      default:
        // No other engine has rows exclude each other: a condition in words of this one.
        FResult.Checks.push_back({Constraint.Name, std::nullopt, {{"postgresql", {.Text = Constraint.Definition}}}});
    }
  }

 private:
  void TakeKey(const TConstraint& Constraint) {
    TDicKey Key;
    Key.Primary = Constraint.Kind == 'p';
    Key.Name =
        NameOf(Constraint, Key.Primary ? GivenPostgreSQLName(FTable.Name, "", "pkey")
                                       : GivenPostgreSQLName(FTable.Name, NamesInName(Constraint.Columns), "key"));
    for (const std::string& Column : Constraint.Columns) Key.Columns.push_back({Column});
    Key.Deferrable = DeferrableOf(Constraint);
    const std::string Plain =
        (Key.Primary ? "PRIMARY KEY (" : "UNIQUE (") + Constraint.Quoted + ")" + Ending(Constraint);
    if (Plain != Constraint.Definition) Key.Words["postgresql"].Text = Constraint.Definition;
    FResult.Keys.push_back(std::move(Key));
  }

  void TakeForeignKey(const TConstraint& Constraint) {
    TDicForeignKey Key;
    // The engine numbers those over the same columns in their order.
    const std::string Columns = NamesInName(Constraint.Columns);
    int& Unnamed = FUnnamed[Columns];
    Key.Name = NameOf(Constraint, GivenPostgreSQLName(FTable.Name, Columns,
                                                      Unnamed == 0 ? "fkey" : "fkey" + std::to_string(Unnamed)));
    if (Key.Name.empty()) ++Unnamed;
    Key.Table = Constraint.Table;
    Key.Schema = Constraint.TableSchema;
    for (std::size_t I = 0; I < Constraint.Columns.size(); ++I)
      Key.Columns.push_back({Constraint.Columns[I], Constraint.To[I]});
    Key.OnDelete = ActionOf(Constraint.OnDelete);
    Key.OnUpdate = ActionOf(Constraint.OnUpdate);
    Key.MatchFull = Constraint.MatchFull;
    Key.Deferrable = DeferrableOf(Constraint);
    Key.NotChecked = !Constraint.IsValid;
    std::string Plain = "FOREIGN KEY (" + Constraint.Quoted + ") REFERENCES " + Constraint.TableSQLName + "(" +
                        Constraint.QuotedTo + ")" + (Key.MatchFull ? " MATCH FULL" : "");
    for (const auto& [Words, Letter] :
         {std::pair(" ON UPDATE ", Constraint.OnUpdate), {" ON DELETE ", Constraint.OnDelete}})
      if (!ActionWords(Letter).empty()) Plain.append(Words).append(ActionWords(Letter));
    if (Plain + Ending(Constraint) != Constraint.Definition) Key.Words["postgresql"].Text = Constraint.Definition;
    FResult.ForeignKeys.push_back(std::move(Key));
  }

  void TakeCheck(const TConstraint& Constraint) {
    constexpr std::string_view Word = "CHECK ";
    const bool HasOne = Constraint.Columns.size() == 1;
    TDicCheck Check;
    Check.Name =
        NameOf(Constraint, GivenPostgreSQLName(FTable.Name, HasOne ? Constraint.Columns.front() : "", "check"));
    Check.Text = FExpressions.Expression(Constraint.Expression);
    if (!Check.Text || Constraint.Definition != "CHECK (" + Constraint.Expression + ")")
      Check.Words["postgresql"].Text = Constraint.Definition.substr(Word.size());
    FResult.Checks.push_back(std::move(Check));
  }

  const TDescribed& FTable;
  const TPostgreSQLExpressions& FExpressions;
  TDicTableDescription& FResult;
  std::map<std::string, int> FUnnamed;  // foreign keys that the engine has named, by their columns
};

}  // namespace

void ReadConstraints(const TDescribed& Table, const TPostgreSQLExpressions& Expressions, TDicTableDescription& Result) {
  TConstraintReader Reader(Table, Expressions, Result);
  for (const TConstraint& Constraint : ConstraintsOf(Table)) Reader.Take(Constraint);
}

}  // namespace velkrund

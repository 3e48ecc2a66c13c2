#include <limits>
#include <map>

#include "standalone/drivers/postgresql/PostgreSQLDescribed.h"
#include "standalone/drivers/postgresql/PostgreSQLFieldTypes.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"

namespace velkrund {
namespace {

/// A row per column of the tables $1, the table last in it. The type below domains; what it is ordered by where that is
/// not its type's own; the sequence that belongs to it.
constexpr const char* FieldsStatement =
    "SELECT a.attname, pg_catalog.quote_ident(a.attname), pg_catalog.format_type(a.atttypid, a.atttypmod), "
    "b.oid, b.modifier, pg_catalog.format_type(b.oid, NULL), b.typtype = 'e' OR b.typcategory = 'S', "
    "a.attnotnull OR b.typnotnull, a.attidentity, a.attgenerated, "
    "coalesce(pg_catalog.pg_get_expr(v.adbin, v.adrelid), b.standard), "
    "CASE WHEN l.collname IS NOT NULL THEN CASE WHEN ln.nspname = 'pg_catalog' OR ln.nspname = $2::pg_catalog.text "
    "THEN '' ELSE pg_catalog.concat(pg_catalog.quote_ident(ln.nspname), '.') END END, "
    "pg_catalog.quote_ident(l.collname), pg_catalog.col_description(a.attrelid, a.attnum), "
    "q.relname, q.seqstart, q.seqincrement, q.seqmin, q.seqmax, q.seqcycle, q.shown, "
    "t.typtype = 'd' OR tn.nspname <> 'pg_catalog', v.adbin IS NOT NULL, b.standard IS NOT NULL, "
    "q.seqcache, pg_catalog.format_type(q.seqtypid, NULL), a.attrelid "
    "FROM pg_catalog.pg_attribute a JOIN pg_catalog.pg_type t ON t.oid = a.atttypid "
    "JOIN pg_catalog.pg_namespace tn ON tn.oid = t.typnamespace "
    "LEFT JOIN pg_catalog.pg_attrdef v ON v.adrelid = a.attrelid AND v.adnum = a.attnum "
    "LEFT JOIN pg_catalog.pg_collation l ON l.oid = a.attcollation AND a.attcollation <> t.typcollation "
    "LEFT JOIN pg_catalog.pg_namespace ln ON ln.oid = l.collnamespace "
    "CROSS JOIN LATERAL (WITH RECURSIVE chain AS (SELECT 0 AS depth, t.oid, t.typtype, t.typbasetype, t.typtypmod, "
    "t.typnotnull, t.typcategory, a.atttypmod AS modifier, pg_catalog.pg_get_expr(t.typdefaultbin, "
    "'pg_catalog.pg_type'::pg_catalog.regclass) AS standard "
    "UNION ALL SELECT 1, n.oid, n.typtype, n.typbasetype, n.typtypmod, d.typnotnull OR n.typnotnull, n.typcategory, "
    "d.typtypmod, coalesce(d.standard, pg_catalog.pg_get_expr(n.typdefaultbin, "
    "'pg_catalog.pg_type'::pg_catalog.regclass)) FROM chain d JOIN pg_catalog.pg_type n ON n.oid = d.typbasetype "
    "WHERE d.typtype = 'd') SELECT * FROM chain WHERE typtype <> 'd') b "
    "LEFT JOIN LATERAL (SELECT c.relname, s.*, c.oid::pg_catalog.regclass::pg_catalog.text AS shown "
    "FROM pg_catalog.pg_depend p "
    "JOIN pg_catalog.pg_class c ON c.oid = p.objid AND c.relkind = 'S' "
    "JOIN pg_catalog.pg_sequence s ON s.seqrelid = c.oid "
    "WHERE p.classid = 'pg_catalog.pg_class'::pg_catalog.regclass::pg_catalog.oid AND p.refclassid = p.classid "
    "AND p.refobjid = a.attrelid AND p.refobjsubid = a.attnum AND p.deptype = ANY ('{a,i}') "
    "ORDER BY p.deptype DESC, c.relname LIMIT 1) q ON true "
    "WHERE a.attrelid = ANY ($1::pg_catalog.oid[]) AND a.attnum > 0 AND NOT a.attisdropped "
    "ORDER BY a.attrelid, a.attnum";

/// What the types of the tables' ($1) columns are made of, unless they are the engine's own or an extension's: a row
/// per column, and per value of an enumeration, the table last in it.
constexpr const char* TypesStatement =
    "SELECT a.attname, t.typtype, pg_catalog.concat(pg_catalog.format_type(t.typbasetype, t.typtypmod), "
    "(SELECT pg_catalog.concat(' COLLATE ', "
    "CASE WHEN w.nspname <> 'pg_catalog' THEN pg_catalog.concat(pg_catalog.quote_ident(w.nspname), '.') END, "
    "pg_catalog.quote_ident(l.collname)) FROM pg_catalog.pg_collation l JOIN pg_catalog.pg_namespace w "
    "ON w.oid = l.collnamespace JOIN pg_catalog.pg_type y ON y.oid = t.typbasetype WHERE l.oid = t.typcollation "
    "AND l.oid <> y.typcollation)), t.typnotnull, "
    "pg_catalog.pg_get_expr(t.typdefaultbin, 'pg_catalog.pg_type'::pg_catalog.regclass), "
    "(SELECT pg_catalog.string_agg(pg_catalog.concat('CONSTRAINT ', pg_catalog.quote_ident(k.conname), ' ', "
    "pg_catalog.pg_get_constraintdef(k.oid)), ' ' ORDER BY k.conname) FROM pg_catalog.pg_constraint k "
    "WHERE k.contypid = t.oid AND k.contype = 'c'), "
    "(SELECT pg_catalog.string_agg(pg_catalog.concat(pg_catalog.quote_ident(m.attname), ' ', "
    "pg_catalog.format_type(m.atttypid, m.atttypmod), (SELECT pg_catalog.concat(' COLLATE ', "
    "CASE WHEN w.nspname <> 'pg_catalog' THEN pg_catalog.concat(pg_catalog.quote_ident(w.nspname), '.') END, "
    "pg_catalog.quote_ident(l.collname)) FROM pg_catalog.pg_collation l JOIN pg_catalog.pg_namespace w "
    "ON w.oid = l.collnamespace JOIN pg_catalog.pg_type y ON y.oid = m.atttypid WHERE l.oid = m.attcollation "
    "AND l.oid <> y.typcollation)), ', ' ORDER BY m.attnum) FROM pg_catalog.pg_class c "
    "JOIN pg_catalog.pg_attribute m ON m.attrelid = c.oid AND m.attnum > 0 AND NOT m.attisdropped "
    "WHERE c.oid = t.typrelid AND c.relkind = 'c'), "
    "(SELECT pg_catalog.concat('RANGE (subtype=', pg_catalog.format_type(r.rngsubtype, NULL), "
    "(SELECT pg_catalog.concat(', subtype_opclass=', pg_catalog.quote_ident(w.nspname), '.', "
    "pg_catalog.quote_ident(k.opcname)) FROM pg_catalog.pg_opclass k JOIN pg_catalog.pg_namespace w "
    "ON w.oid = k.opcnamespace WHERE k.oid = r.rngsubopc AND NOT k.opcdefault), "
    "(SELECT pg_catalog.concat(', collation=', pg_catalog.quote_ident(w.nspname), '.', "
    "pg_catalog.quote_ident(l.collname)) FROM pg_catalog.pg_collation l JOIN pg_catalog.pg_namespace w "
    "ON w.oid = l.collnamespace JOIN pg_catalog.pg_type y ON y.oid = r.rngsubtype WHERE l.oid = r.rngcollation "
    "AND l.oid <> y.typcollation), "
    "(SELECT pg_catalog.concat(', subtype_diff=', pg_catalog.quote_ident(w.nspname), '.', "
    "pg_catalog.quote_ident(p.proname)) FROM pg_catalog.pg_proc p JOIN pg_catalog.pg_namespace w "
    "ON w.oid = p.pronamespace WHERE p.oid = r.rngsubdiff), ')') "
    "FROM pg_catalog.pg_range r WHERE r.rngtypid = t.oid), e.enumlabel IS NOT NULL, e.enumlabel, a.attrelid "
    "FROM pg_catalog.pg_attribute a JOIN pg_catalog.pg_type o ON o.oid = a.atttypid "
    "JOIN pg_catalog.pg_type t ON t.oid = CASE WHEN o.typcategory = 'A' AND o.typelem <> '0' AND o.typtype = 'b' "
    "THEN o.typelem ELSE o.oid END JOIN pg_catalog.pg_namespace n ON n.oid = t.typnamespace "
    "LEFT JOIN pg_catalog.pg_enum e ON e.enumtypid = CASE WHEN t.typtype = 'd' THEN t.typbasetype ELSE t.oid END "
    "WHERE a.attrelid = ANY ($1::pg_catalog.oid[]) AND a.attnum > 0 AND NOT a.attisdropped AND n.nspname <> "
    "'pg_catalog' "
    "AND NOT EXISTS (SELECT FROM pg_catalog.pg_depend p WHERE p.objid = t.oid AND p.deptype = 'e' "
    "AND p.classid = 'pg_catalog.pg_type'::pg_catalog.regclass::pg_catalog.oid) "
    "ORDER BY a.attrelid, a.attnum, e.enumsortorder";

std::int64_t HighestOf(std::string_view SequenceType) {
  if (SequenceType == "smallint") return std::numeric_limits<std::int16_t>::max();
  if (SequenceType == "integer") return std::numeric_limits<std::int32_t>::max();
  return std::numeric_limits<std::int64_t>::max();
}

class TFieldReader {
 public:
  explicit TFieldReader(const TDescribed& Table) : FTable(Table) {}

  std::vector<TDicField> Read(std::vector<TExpressionColumn>& Columns) {
    const TDescribedRows Rows =
        FTable.Describing.RowsOf(FTable.Oid, "fields", FieldsStatement, {FTable.Describing.Dialect().CurrentSchema()});
    for (int Row = 0; Row < Rows.RowCount(); ++Row) {
      const bool IsText = Rows.Boolean(Row, 6) || Rows.Text(Row, 5) == "text";
      Columns.push_back({Rows.Copy(Row, 0), Rows.Copy(Row, 1), Rows.Copy(Row, 5), IsText});
    }
    // Of all columns: a computed one names others.
    const TPostgreSQLExpressions Expressions(Columns);
    std::vector<TDicField> Result;
    bool OwnTypes = false;
    for (int Row = 0; Row < Rows.RowCount(); ++Row) {
      Result.push_back(Field(Rows, Row, Expressions));
      OwnTypes = OwnTypes || Rows.Boolean(Row, 21);
    }
    if (OwnTypes) AddTypes(Result);
    return Result;
  }

 private:
  TDicField Field(const TDescribedRows& Rows, int Row, const TPostgreSQLExpressions& Expressions) const {
    TDicField Result;
    TDicWords& Words = Result.Words["postgresql"];
    Result.Name = Rows.Copy(Row, 0);
    Words.Text = Rows.Copy(Row, 2);
    const TNeutralType Type = NeutralTypeOf(Rows.Integer(Row, 3), Rows.Integer(Row, 4), Rows.Boolean(Row, 6));
    Result.Type = Type.Type;
    Result.Size = Type.Size;
    Result.Scale = Type.Scale;
    Result.NotNull = Rows.Boolean(Row, 7);
    Result.Comment = Rows.Copy(Row, 13);
    if (!Rows.Text(Row, 12).empty()) Words.Parts["Collate"] = Rows.Copy(Row, 11) + Rows.Copy(Row, 12);
    AddSequence(Rows, Row, Result);
    const std::string Expression = Rows.Copy(Row, 10);
    if (Result.Auto != TDicAutoKey::None || Expression.empty()) return Result;
    if (Rows.Text(Row, 9).empty()) {
      Result.Default = Expressions.Default(Expression, Rows.Copy(Row, 5), Result);
      // Where a domain has one, what a column has instead of it is told from that by its words.
      const bool IsInsteadOfDomains = Rows.Boolean(Row, 22) && Rows.Boolean(Row, 23);
      if (!Result.Default || IsInsteadOfDomains) Words.Parts["Default"] = Expression;
      return Result;
    }
    Result.Stored = Rows.Text(Row, 9) == "s";
    Result.Computed = Expressions.Expression(Expression);
    if (!Result.Computed) {
      Result.Computed = "";
      Words.Parts["Computed"] = Expression;
    }
    return Result;
  }

  /// The number of an identity, or of a column declared as serial; of other defaults the sequence alone.
  void AddSequence(const TDescribedRows& Rows, int Row, TDicField& Field) const {
    const std::string Sequence = Rows.Copy(Row, 14);
    if (Sequence.empty()) return;
    const bool IsIdentity = !Rows.Text(Row, 8).empty();
    Field.Counter = CounterOf(
        {Rows.Copy(Row, 15), Rows.Copy(Row, 16), Rows.Copy(Row, 17), Rows.Copy(Row, 18), Rows.Boolean(Row, 19)},
        HighestOf(Rows.Text(Row, 25)));
    AddSequenceWords(Rows, Row, IsIdentity, Field);
    if (IsIdentity) {
      Field.Auto = Rows.Text(Row, 8) == "a" ? TDicAutoKey::Always : TDicAutoKey::ByDefault;
      if (Sequence == GivenPostgreSQLName(FTable.Name, Field.Name, "seq")) return;
      Field.Owned = Sequence;
      // What has a sequence with a name otherwise was declared as serial.
      if (Field.Auto == TDicAutoKey::ByDefault) Field.Words["postgresql"].Text->append(PostgreSQLIdentityWords);
      return;
    }
    Field.Owned = Sequence;
    const std::string Next = "nextval(" + QuotePostgreSQLText(Rows.Text(Row, 20)) + "::regclass)";
    if (Rows.Text(Row, 10) == Next) Field.Auto = TDicAutoKey::ByDefault;
  }

  /// What of a sequence is otherwise than in one that is made for the field.
  static void AddSequenceWords(const TDescribedRows& Rows, int Row, bool IsIdentity, TDicField& Field) {
    std::string Words;
    const std::string Type = Rows.Copy(Row, 25);
    if (!IsIdentity && Type != SequenceTypeFor(Field.Type)) Words = "AS " + Type;
    if (Rows.Text(Row, 24) != "1") Words += (Words.empty() ? "CACHE " : " CACHE ") + Rows.Copy(Row, 24);
    if (!Words.empty()) Field.Words["postgresql"].Parts["Sequence"] = Words;
  }

  void AddTypes(std::vector<TDicField>& Fields) const {
    std::map<std::string, TDicWords*> ByName;
    for (TDicField& Field : Fields) ByName[Field.Name] = &Field.Words["postgresql"];
    const TDescribedRows Rows = FTable.Describing.RowsOf(FTable.Oid, "types", TypesStatement);
    for (int Row = 0; Row < Rows.RowCount(); ++Row) {
      TDicWords& Words = *ByName.at(Rows.Copy(Row, 0));
      if (Rows.Boolean(Row, 8)) Words.Lines.push_back(Rows.Copy(Row, 9));
      if (Rows.Text(Row, 1) == "d") {
        std::string Base = Rows.Copy(Row, 2);
        if (!Rows.Text(Row, 4).empty()) Base += " DEFAULT " + Rows.Copy(Row, 4);
        if (Rows.Boolean(Row, 3)) Base += " NOT NULL";
        Words.Parts["Base"] = Base;
        if (!Rows.Text(Row, 5).empty()) Words.Parts["Check"] = Rows.Copy(Row, 5);
      }
      if (Rows.Text(Row, 1) == "c" && !Rows.Text(Row, 6).empty()) Words.Parts["Base"] = "(" + Rows.Copy(Row, 6) + ")";
      if (Rows.Text(Row, 1) == "r") Words.Parts["Base"] = Rows.Copy(Row, 7);
    }
  }

  const TDescribed& FTable;
};

}  // namespace

std::vector<TDicField> ReadFields(const TDescribed& Table, std::vector<TExpressionColumn>& Columns) {
  return TFieldReader(Table).Read(Columns);
}

}  // namespace velkrund

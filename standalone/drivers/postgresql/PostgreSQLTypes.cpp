#include "standalone/drivers/postgresql/PostgreSQLTypes.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/PostgreSQLMoment.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

// Numbers of the engine's own types; they are the same in every database.
constexpr std::int64_t CharType = 18;  // one byte: "char"
constexpr std::int64_t NameType = 19;
constexpr std::int64_t PaddedCharType = 1042;
constexpr std::int64_t VarCharType = 1043;
constexpr std::int64_t IntervalType = 1186;

struct TNumberedType {
  std::int64_t Oid;
  TPostgreSQLType Type;
  TKvKind Kind;
};

constexpr TNumberedType Types[] = {
    {16, TPostgreSQLType::Boolean, TKvKind::Boolean},
    {PostgreSQLBytesType, TPostgreSQLType::Bytes, TKvKind::Bytes},
    {NameType, TPostgreSQLType::Text, TKvKind::String},
    {20, TPostgreSQLType::Int8, TKvKind::Int64},
    {21, TPostgreSQLType::Int2, TKvKind::SmallInt},
    {23, TPostgreSQLType::Int4, TKvKind::Integer},
    {25, TPostgreSQLType::Text, TKvKind::String},
    {26, TPostgreSQLType::Oid, TKvKind::LongWord},
    {700, TPostgreSQLType::Float4, TKvKind::Double},
    {701, TPostgreSQLType::Float8, TKvKind::Double},
    {790, TPostgreSQLType::Money, TKvKind::Currency},
    {PaddedCharType, TPostgreSQLType::Text, TKvKind::String},
    {VarCharType, TPostgreSQLType::Text, TKvKind::String},
    {1082, TPostgreSQLType::Date, TKvKind::SysDate},
    {1083, TPostgreSQLType::Time, TKvKind::SysTime},
    {1114, TPostgreSQLType::Timestamp, TKvKind::DateTime},
    {1184, TPostgreSQLType::TimestampTz, TKvKind::DateTime},
    {1266, TPostgreSQLType::TimeTz, TKvKind::String},
    {1700, TPostgreSQLType::Numeric, TKvKind::String},
    {1790, TPostgreSQLType::Text, TKvKind::String},  // refcursor, whose output function is that of text
};

constexpr int MaxNameBytes = 63;
constexpr int MaxFraction = 6;
constexpr int MaxCurrencyScale = 4;
constexpr int ModifierHeader = 4;  // what the engine adds to lengths and precisions

int ScaleOf(std::int64_t Modifier) {
  // Eleven bits with a sign.
  return static_cast<int>((((Modifier - ModifierHeader) & 0x7FF) ^ 0x400) - 0x400);
}

const TNumberedType* Find(std::int64_t Oid) {
  const auto Found =
      std::find_if(std::begin(Types), std::end(Types), [&](const TNumberedType& Known) { return Known.Oid == Oid; });
  return Found == std::end(Types) ? nullptr : Found;
}

std::optional<int> FractionOf(std::int64_t Oid, TPostgreSQLType Type, std::int64_t Modifier) {
  switch (Type) {
    case TPostgreSQLType::Time:
    case TPostgreSQLType::TimeTz:
    case TPostgreSQLType::Timestamp:
    case TPostgreSQLType::TimestampTz:
      return Modifier < 0 ? MaxFraction : static_cast<int>(Modifier);
    case TPostgreSQLType::Numeric:
      if (Modifier >= ModifierHeader) return std::max(0, ScaleOf(Modifier));
      return std::nullopt;
    default:
      break;
  }
  if (Oid == IntervalType)
    return std::min(MaxFraction, Modifier < 0 ? MaxFraction : static_cast<int>(Modifier & 0xFFFF));
  return std::nullopt;
}

/// Element: the type of an array's elements, else 0. Category: pg_type.typcategory.
void SetType(TPostgreSQLColumn& Column, std::int64_t Oid, std::int64_t Modifier, std::int64_t Element,
             std::string_view Category) {
  Column.Info.Kind = TKvKind::String;
  if (const TNumberedType* Known = Find(Oid)) {
    Column.Type = Known->Type;
    Column.Info.Kind = Known->Kind;
    if (Known->Type != TPostgreSQLType::TimeTz) Column.OutputFunction.clear();
  } else if (Category == "S" || Oid == CharType) {
    Column.Type = TPostgreSQLType::Text;
  }
  if ((Oid == PaddedCharType || Oid == VarCharType) && Modifier >= ModifierHeader)
    Column.MaxCharacters = static_cast<int>(Modifier) - ModifierHeader;
  if (Oid == NameType) Column.MaxBytes = MaxNameBytes;
  if (Oid == CharType) Column.MaxBytes = 1;
  if (Column.Type == TPostgreSQLType::Numeric && Modifier >= ModifierHeader) {
    Column.Scale = ScaleOf(Modifier);
    if (*Column.Scale <= MaxCurrencyScale) Column.Info.Kind = TKvKind::Currency;
  }
  const TNumberedType* Elements = Find(Element);
  if (Column.Type != TPostgreSQLType::Numeric)
    Column.Fraction = Element == 0 ? FractionOf(Oid, Column.Type, Modifier)
                                   : FractionOf(Element, Elements ? Elements->Type : TPostgreSQLType::Other, Modifier);
}

/// Of tables by schema ($1) and name ($2): a row per column; one without a name for a table that has none.
std::string ColumnsStatement() {
  return CatalogueStatement(
      "SELECT c.oid, c.relkind, a.attname, pg_catalog.format_type(a.atttypid, a.atttypmod), "
      "NOT (a.attnotnull OR b.typnotnull), a.attgenerated <> '', "
      "(SELECT pg_catalog.array_position(k.conkey, a.attnum) FROM pg_catalog.pg_constraint k "
      "WHERE k.conrelid = c.oid AND k.contype = 'p'), "
      "b.oid, b.modifier, CASE WHEN b.typcategory = 'A' THEN b.typelem ELSE 0 END, b.typcategory, "
      "pg_catalog.quote_ident(pn.nspname) || '.' || pg_catalog.quote_ident(p.proname), "
      "EXISTS (SELECT FROM pg_catalog.pg_constraint k WHERE k.conrelid = c.oid AND k.contype = 'f' "
      "AND NOT k.condeferred AND (k.confrelid = c.oid OR k.confrelid = ANY ("
      "SELECT relid::pg_catalog.oid FROM pg_catalog.pg_partition_ancestors(c.oid)))), a.attcollation <> '0', "
      "c.relhastriggers OR c.relkind = 'p', CASE WHEN b.oid <> a.atttypid THEN b.sql_name END, q.place "
      "FROM ROWS FROM (pg_catalog.unnest($1::pg_catalog.text[]), pg_catalog.unnest($2::pg_catalog.text[])) "
      "WITH ORDINALITY AS q (schema, name, place) JOIN pg_catalog.pg_namespace n ON n.nspname = q.schema "
      "JOIN pg_catalog.pg_class c ON c.relnamespace = n.oid AND c.relname = q.name "
      "LEFT JOIN pg_catalog.pg_attribute a ON a.attrelid = c.oid AND a.attnum > 0 AND NOT a.attisdropped "
      "LEFT JOIN LATERAL (WITH RECURSIVE chain AS ("
      "SELECT t.oid, t.typtype, t.typbasetype, t.typtypmod, t.typnotnull, t.typcategory, t.typelem, t.typoutput, "
      "a.atttypmod AS modifier FROM pg_catalog.pg_type t WHERE t.oid = a.atttypid "
      "UNION ALL SELECT t.oid, t.typtype, t.typbasetype, t.typtypmod, d.typnotnull OR t.typnotnull, t.typcategory, "
      "t.typelem, t.typoutput, d.typtypmod FROM chain d JOIN pg_catalog.pg_type t ON t.oid = d.typbasetype "
      "WHERE d.typtype = 'd') SELECT chain.*, pg_catalog.quote_ident(bn.nspname) || '.' || "
      "pg_catalog.quote_ident(bt.typname) AS sql_name FROM chain JOIN pg_catalog.pg_type bt ON bt.oid = chain.oid "
      "JOIN pg_catalog.pg_namespace bn ON bn.oid = bt.typnamespace WHERE chain.typtype <> 'd') b ON true "
      "LEFT JOIN pg_catalog.pg_proc p ON p.oid = b.typoutput::pg_catalog.oid "
      "LEFT JOIN pg_catalog.pg_namespace pn ON pn.oid = p.pronamespace "
      "WHERE c.relkind = ANY ('{r,p,f,v,m}') ORDER BY q.place, a.attnum");
}

TPostgreSQLColumn ColumnIn(const TPostgreSQLResult& Rows, int Row) {
  TPostgreSQLColumn Result;
  Result.Info.Name = Rows.Copy(Row, 2);
  Result.Info.DeclaredType = Rows.Copy(Row, 3);
  Result.Info.Nullable = Rows.Boolean(Row, 4);
  Result.Info.Generated = Rows.Boolean(Row, 5);
  Result.Info.KeyPosition = static_cast<int>(Rows.Integer(Row, 6));
  Result.OutputFunction = Rows.Copy(Row, 11);
  Result.HasCollation = Rows.Boolean(Row, 13);
  Result.DomainOver = Rows.Copy(Row, 15);
  SetType(Result, Rows.Integer(Row, 7), Rows.Integer(Row, 8), Rows.Integer(Row, 9), Rows.Text(Row, 10));
  return Result;
}

/// Those of them that are there.
std::vector<std::pair<TPostgreSQLName, TPostgreSQLTable>> ReadFromCatalogue(TPostgreSQLSession& Session,
                                                                            const std::vector<TPostgreSQLName>& Names,
                                                                            const std::string& What) {
  static const std::string Statement = ColumnsStatement();
  std::vector<std::string> Schemas, Tables;
  for (const auto& [Schema, Name] : Names) Schemas.push_back(Schema), Tables.push_back(Name);
  const TPostgreSQLResult Rows =
      Session.Query(What, Statement, {PostgreSQLArray(Schemas).c_str(), PostgreSQLArray(Tables).c_str()});
  constexpr int Place = 16;
  std::vector<std::pair<TPostgreSQLName, TPostgreSQLTable>> Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row) {
    if (Row == 0 || Rows.Text(Row, Place) != Rows.Text(Row - 1, Place))
      Result.emplace_back(
          Names[static_cast<std::size_t>(Rows.Integer(Row, Place) - 1)],
          TPostgreSQLTable{
              Rows.Copy(Row, 0), Rows.Text(Row, 1).front(), Rows.Boolean(Row, 12), Rows.Boolean(Row, 14), {}});
    if (!Rows.Text(Row, 2).empty()) Result.back().second.Columns.push_back(ColumnIn(Rows, Row));
  }
  return Result;
}

}  // namespace

TPostgreSQLColumn PlainPostgreSQLColumn(std::int64_t Oid) {
  TPostgreSQLColumn Result;
  SetType(Result, Oid, -1, 0, {});
  return Result;
}

TTableKind KindOfPostgreSQLTable(char Kind) {
  if (Kind == 'v' || Kind == 'm') return TTableKind::View;
  return Kind == 'f' ? TTableKind::Foreign : TTableKind::Table;
}

TPostgreSQLTable ReadPostgreSQLTable(TPostgreSQLSession& Session, const TTableInfo& Table, const std::string& What) {
  const TPostgreSQLName Name(Session.Dialect().SchemaOf(Table), Table.Name);
  TPostgreSQLMoment* const Moment = Session.Moment();
  if (Moment)
    if (const auto Known = Moment->Described.find(Name); Known != Moment->Described.end()) return Known->second;
  auto Found = ReadFromCatalogue(Session, Moment ? Moment->Next(Name, Session.Dialect()) : std::vector{Name}, What);
  if (Found.empty() || Found.front().first != Name)
    throw EDatabaseError(Format("%s: there is no table '%s' in the database", What, FullName(Table)),
                         {.Code = TErrorCode::TableMissing});
  TPostgreSQLTable Result = Found.front().second;
  if (Moment) std::move(Found.begin(), Found.end(), std::inserter(Moment->Described, Moment->Described.end()));
  return Result;
}

std::vector<TPostgreSQLColumn> ReadPostgreSQLColumns(TPostgreSQLSession& Session,
                                                     const std::vector<TPostgreSQLQueryColumn>& Columns,
                                                     const std::string& What) {
  // The value of a pseudo-type cannot be cast to it.
  static const std::string Statement = CatalogueStatement(
      "SELECT pg_catalog.format_type(t.oid, q.modifier), CASE WHEN t.typcategory = 'A' THEN t.typelem ELSE 0 END, "
      "t.typcategory, pg_catalog.quote_ident(pn.nspname) || '.' || pg_catalog.quote_ident(p.proname), "
      "CASE WHEN t.typtype <> 'p' THEN pg_catalog.quote_ident(n.nspname) || '.' || "
      "pg_catalog.quote_ident(t.typname) END "
      "FROM ROWS FROM (pg_catalog.unnest($1::pg_catalog.oid[]), pg_catalog.unnest($2::pg_catalog.int4[])) "
      "WITH ORDINALITY AS q (type, modifier, place) JOIN pg_catalog.pg_type t ON t.oid = q.type "
      "JOIN pg_catalog.pg_namespace n ON n.oid = t.typnamespace "
      "JOIN pg_catalog.pg_proc p ON p.oid = t.typoutput::pg_catalog.oid "
      "JOIN pg_catalog.pg_namespace pn ON pn.oid = p.pronamespace ORDER BY q.place");
  std::string TypeList, Modifiers;
  for (const TPostgreSQLQueryColumn& Column : Columns) {
    TypeList += (TypeList.empty() ? "{" : ",") + std::to_string(Column.Type);
    Modifiers += (Modifiers.empty() ? "{" : ",") + std::to_string(Column.Modifier);
  }
  const TPostgreSQLResult Rows = Session.Query(What, Statement, {(TypeList + "}").c_str(), (Modifiers + "}").c_str()});
  std::vector<TPostgreSQLColumn> Result(Columns.size());
  for (std::size_t I = 0; I < Columns.size(); ++I) {
    const int Row = static_cast<int>(I);
    if (Row >= Rows.RowCount()) throw EDatabaseError(What + ": the type of one of its columns is gone");
    Result[I].Info.Name = "c" + std::to_string(I + 1);
    Result[I].Info.DeclaredType = Rows.Copy(Row, 0);
    Result[I].OutputFunction = Rows.Copy(Row, 3);
    Result[I].DomainOver = Rows.Copy(Row, 4);
    SetType(Result[I], Columns[I].Type, Columns[I].Modifier, Rows.Integer(Row, 1), Rows.Text(Row, 2));
  }
  return Result;
}

TPostgreSQLSending SendingOf(const TPostgreSQLColumn& Column) {
  const std::string_view Output = Column.OutputFunction;
  if (Column.Type == TPostgreSQLType::Text && Output.empty()) return TPostgreSQLSending::Characters;
  if (Output == "pg_catalog.enum_out" || Output == "pg_catalog.json_out") return TPostgreSQLSending::Characters;
  if (Output == "pg_catalog.jsonb_out") return TPostgreSQLSending::Jsonb;
  return Output == "pg_catalog.uuid_out" ? TPostgreSQLSending::Uuid : TPostgreSQLSending::OnlyText;
}

const TPostgreSQLColumn& ColumnOf(const TPostgreSQLTable& Table, std::string_view Name, const std::string& What) {
  for (const TPostgreSQLColumn& Column : Table.Columns)
    if (Column.Info.Name == Name) return Column;
  throw EDatabaseError(Format("%s: its column '%s' is gone", What, Name));
}

TPostgreSQLMoney ReadPostgreSQLMoney(TPostgreSQLSession& Session, const std::vector<TPostgreSQLColumn>& Columns) {
  TPostgreSQLMoney Result;
  const auto IsMoney = [](const TPostgreSQLColumn& Column) { return Column.Type == TPostgreSQLType::Money; };
  if (std::none_of(Columns.begin(), Columns.end(), IsMoney)) return Result;
  const TPostgreSQLResult One =
      Session.Query("Cannot ask how amounts are written",
                    "SELECT pg_catalog.concat('x', pg_catalog.encode("
                    "pg_catalog.cash_send(m), 'hex'))::bit(64)::bigint, pg_catalog.cash_out(m) "
                    "FROM (SELECT 1::bigint::pg_catalog.money AS m) one");
  Result.MinorUnits = std::max<std::int64_t>(One.Integer(0, 0), 1);
  // "$1.00", "1,00 EUR": what follows the one unit.
  const std::string_view Text = One.Text(0, 1);
  const std::size_t At = Text.find('1');
  if (Result.MinorUnits > 1 && At + 1 < Text.size()) Result.DecimalPoint = Text[At + 1];
  return Result;
}

}  // namespace velkrund

#include "standalone/drivers/postgresql/PostgreSQLTableSearch.h"

#include <algorithm>
#include <array>
#include <set>
#include <unordered_map>
#include <utility>

#include "standalone/drivers/SchemaReader.h"
#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/PostgreSQLMoment.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "standalone/drivers/postgresql/PostgreSQLTypes.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

/// The tables of users, those of the current schema ($1) first. The engine keeps all schema names that begin with pg_
/// for itself. Which: more conditions.
std::string TablesStatement(std::string_view Which) {
  return CatalogueStatement(
      std::string(
          "SELECT c.relname, n.nspname, c.relkind, c.relhassubclass AND c.relkind = ANY ('{r,f}'), c.relispartition, "
          "pg_catalog.array_position(pg_catalog.current_schemas(false), n.nspname) "
          "FROM pg_catalog.pg_class c JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace "
          "WHERE c.relkind = ANY ('{r,p,f,v,m}') AND NOT pg_catalog.starts_with(n.nspname, 'pg_') "
          "AND n.nspname <> 'information_schema' ") +
      std::string(Which) + "ORDER BY n.nspname <> $1::pg_catalog.text, n.nspname, c.relname");
}

/// The only name to look for, with or without a schema ($2). What the name of a table can be in it ($3) is what the
/// engine has an index for.
constexpr std::string_view OfOneName =
    "AND c.relname = ANY ($3::pg_catalog.name[]) AND (c.relname = $2::pg_catalog.text "
    "OR n.nspname || '.' || c.relname = $2::pg_catalog.text) ";

/// What goes by a name of ASCII ($2, as above) in any case: no other letter has one of these for its other case, and
/// what the server takes for the case of others does not count. Few of all names are as long ($3), which costs less to
/// see.
constexpr std::string_view OfOneNameInAnyCase =
    "AND pg_catalog.octet_length(c.relname::pg_catalog.text) = ANY ($3::pg_catalog.int4[]) "
    "AND pg_catalog.translate(c.relname, 'ABCDEFGHIJKLMNOPQRSTUVWXYZ', 'abcdefghijklmnopqrstuvwxyz') = ANY "
    "($2::pg_catalog.text[]) ";

/// The whole, and what follows each dot.
std::vector<std::string> BareNamesIn(std::string_view Name) {
  std::vector<std::string> Names{std::string(Name)};
  for (std::size_t Dot = Name.find('.'); Dot != Name.npos; Dot = Name.find('.', Dot + 1))
    Names.emplace_back(Name.substr(Dot + 1));
  return Names;
}

/// Of a list, those that go by the name when case does not count, in its order.
std::vector<TPostgreSQLListed> NamedIn(const TPostgreSQLMoment& Moment, std::string_view Name) {
  std::vector<std::size_t> Places;
  for (const std::string& Bare : BareNamesIn(LowerCase(Name)))
    for (auto [At, End] = Moment.Places.equal_range(Bare); At != End; ++At) Places.push_back(At->second);
  std::sort(Places.begin(), Places.end());
  std::vector<TPostgreSQLListed> Result;
  for (const std::size_t Place : Places) Result.push_back(Moment.Tables[Place]);
  return Result;
}

}  // namespace

TPostgreSQLTableSearch::TListed TPostgreSQLTableSearch::All(const std::string& What) {
  static const std::string Ask = TablesStatement({});
  return ListedIn(FSession.Query(What, Ask, {FSession.Dialect().CurrentSchema().c_str()}));
}

/// Who has looked for many looks for more: of one moment all are read then.
const TPostgreSQLMoment* TPostgreSQLTableSearch::Listed(const std::string& What) {
  constexpr int Many = 16;
  TPostgreSQLMoment* const Moment = FSession.Moment();
  if (Moment && !Moment->IsListed && ++Moment->Searches > Many) Moment->List(All(What));
  return Moment && Moment->IsListed ? Moment : nullptr;
}

/// At least those of exactly that name.
TPostgreSQLTableSearch::TListed TPostgreSQLTableSearch::Named(const std::string& What, const std::string& Name) {
  if (const TPostgreSQLMoment* const Moment = Listed(What)) return NamedIn(*Moment, Name);
  static const std::string Ask = TablesStatement(OfOneName);
  return ListedIn(FSession.Query(
      What, Ask,
      {FSession.Dialect().CurrentSchema().c_str(), Name.c_str(), PostgreSQLArray(BareNamesIn(Name)).c_str()}));
}

/// At least those that go by the name when case does not count.
TPostgreSQLTableSearch::TListed TPostgreSQLTableSearch::NamedInAnyCase(const std::string& What, std::string_view Name) {
  if (const TPostgreSQLMoment* const Moment = Listed(What)) return NamedIn(*Moment, Name);
  if (AsciiPrefix(Name) < Name.size()) return All(What);
  static const std::string Ask = TablesStatement(OfOneNameInAnyCase);
  const std::vector<std::string> Names = BareNamesIn(LowerCase(Name));
  std::vector<std::string> Lengths;
  for (const std::string& One : Names) Lengths.push_back(std::to_string(One.size()));
  return ListedIn(FSession.Query(
      What, Ask,
      {FSession.Dialect().CurrentSchema().c_str(), PostgreSQLArray(Names).c_str(), PostgreSQLArray(Lengths).c_str()}));
}

TPostgreSQLTableSearch::TListed TPostgreSQLTableSearch::ListedIn(const TPostgreSQLResult& Rows) const {
  TListed Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row) {
    TPostgreSQLListed Found;
    Found.Qualified = Rows.Copy(Row, 1) + "." + Rows.Copy(Row, 0);
    Found.Info = {Rows.Copy(Row, 0), FSession.Dialect().ShownSchema(Rows.Text(Row, 1)),
                  KindOfPostgreSQLTable(Rows.Text(Row, 2).front()), Rows.Boolean(Row, 3)};
    Found.IsPartition = Rows.Boolean(Row, 4);
    Found.PathPlace = Rows.Integer(Row, 5);
    if (!IsCatalogueTable(Found.Info.Name)) Result.push_back(std::move(Found));
  }
  std::unordered_map<std::string, int> Counts;
  for (const TPostgreSQLListed& Found : Result) {
    ++Counts[Found.Qualified];
    if (std::string Dotted = DottedName(Found.Info); Dotted != Found.Qualified) ++Counts[std::move(Dotted)];
  }
  for (TPostgreSQLListed& Found : Result) Found.Info.SharesName = Counts[DottedName(Found.Info)] > 1;
  return Result;
}

/// Without a dot in a name there are none.
void TPostgreSQLTableSearch::MarkShared(std::vector<TTableInfo*> Tables) {
  std::erase_if(Tables, [](const TTableInfo* Table) { return DottedName(*Table).find('.') == std::string::npos; });
  if (Tables.empty()) return;
  std::set<std::pair<std::string, std::string>> Shared;
  for (const TPostgreSQLListed& Found : All("Cannot list the tables"))
    if (Found.Info.SharesName) Shared.emplace(Found.Info.Schema, Found.Info.Name);
  for (TTableInfo* const Table : Tables) Table->SharesName = Shared.contains({Table->Schema, Table->Name});
}

std::vector<TTableInfo> TPostgreSQLTableSearch::Tables() {
  std::vector<TTableInfo> Result;
  for (TPostgreSQLListed& Found : All("Cannot list the tables"))
    if (!Found.IsPartition) Result.push_back(std::move(Found.Info));
  return Result;
}

std::optional<TTableInfo> TPostgreSQLTableSearch::Find(std::string_view Name) {
  TPostgreSQLMoment* const Moment = FSession.Moment();
  if (!Moment) return Search(Name);
  if (const auto Known = Moment->Found.find(Name); Known != Moment->Found.end()) return Known->second;
  std::optional<TTableInfo> Result = Search(Name);
  if (Result) Moment->Found.emplace(Name, *Result);
  return Result;
}

std::optional<TTableInfo> TPostgreSQLTableSearch::Search(std::string_view Name) {
  if (Name.empty() || Name.find('\0') != std::string_view::npos) return std::nullopt;
  const std::string What = Format("Cannot look for table '%s'", Name);
  constexpr int OnPath = 1;
  constexpr int NoMatch = 2;
  const auto Rank = [&](const TPostgreSQLListed& Candidate, auto Same) {
    // Either may be meant by a dot.
    if (Same(DottedName(Candidate.Info), Name) || Same(Candidate.Qualified, Name)) return 0;
    return Candidate.PathPlace > 0 && Same(Candidate.Info.Name, Name) ? OnPath : NoMatch;
  };
  const auto Only = [&](const TListed& All, auto Same, std::string_view Advice) -> std::optional<TTableInfo> {
    std::array<std::int64_t, 2> BestKey = {NoMatch, 0};
    std::vector<const TPostgreSQLListed*> Best;
    for (const TPostgreSQLListed& Candidate : All) {
      const int Place = Rank(Candidate, Same);
      const std::array<std::int64_t, 2> Key = {Place, Place == OnPath ? Candidate.PathPlace : 0};
      if (Key < BestKey) Best.clear();
      if (Key <= BestKey && Place != NoMatch) Best.push_back(&Candidate);
      BestKey = std::min(Key, BestKey);
    }
    if (Best.empty()) return std::nullopt;
    if (Best.size() == 1) return Best.front()->Info;
    std::string Names;
    for (const TPostgreSQLListed* Candidate : Best)
      Names += (Names.empty() ? "" : ", ") + FSession.Dialect().SQLName(Candidate->Info);
    throw EDatabaseError(Format("%s: several go by that name: %s%s", What, Names, Advice));
  };

  // The exact name alone first: databases have many tables.
  const auto Exactly = [](std::string_view A, std::string_view B) { return A == B; };
  if (auto Found = Only(Named(What, std::string(Name)), Exactly, "; name one as it stands here")) return Found;
  if (const auto Parts = ExactNameParts(Name)) return SearchExactly(What, *Parts);
  const auto IgnoringCase = [](std::string_view A, std::string_view B) { return SameText(A, B); };
  return Only(NamedInAnyCase(What, Name), IgnoringCase, "; name one in its own case");
}

/// Parts: of an exact name.
std::optional<TTableInfo> TPostgreSQLTableSearch::SearchExactly(const std::string& What,
                                                                const std::vector<std::string>& Parts) {
  if (Parts.size() > 2) return std::nullopt;
  const std::string Schema = Parts.size() == 2 ? FSession.Dialect().ShownSchema(Parts.front()) : std::string();
  // With all that share its name.
  for (TPostgreSQLListed& Found : Named(What, DottedName({Parts.back(), Schema})))
    if (Found.Info.Name == Parts.back() && Found.Info.Schema == Schema) return std::move(Found.Info);
  return std::nullopt;
}

}  // namespace velkrund

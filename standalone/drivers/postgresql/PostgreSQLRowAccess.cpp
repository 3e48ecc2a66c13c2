#include "standalone/drivers/postgresql/PostgreSQLRowAccess.h"

#include <algorithm>

#include "standalone/drivers/RowCopy.h"
#include "standalone/drivers/Selection.h"
#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLAppender.h"
#include "standalone/drivers/postgresql/PostgreSQLCursor.h"
#include "standalone/drivers/postgresql/PostgreSQLRowCopy.h"
#include "standalone/drivers/postgresql/PostgreSQLUpdater.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// What the engine would do beside, or instead: triggers, and rules for insertions (ev_type 3).
std::vector<std::string> ActionsOnInsert(TPostgreSQLSession& Session, const std::string& TableOid,
                                         const std::string& What) {
  std::vector<std::string> Result = ReadPostgreSQLTriggers(Session, TableOid, What, {.OnInsert = true});
  const TPostgreSQLResult Rules =
      Session.Query(What,
                    CatalogueStatement("SELECT w.rulename FROM pg_catalog.pg_rewrite w WHERE w.ev_class = "
                                       "$1::pg_catalog.oid AND w.ev_type = '3' AND w.ev_enabled <> 'D'"),
                    {TableOid.c_str()});
  for (int Row = 0; Row < Rules.RowCount(); ++Row) Result.push_back(Rules.Copy(Row, 0));
  return Result;
}

/// IsPlain: Source keeps its rows itself.
std::string CopyStatement(const TTableDescription& Source, const TTableDescription& Target, bool IsPlain,
                          std::span<const TColumnPair> Pairs, const TPostgreSQLDialect& Dialect) {
  std::string Names, Values;
  for (const TColumnPair& Pair : Pairs) {
    const char* const Separator = Names.empty() ? "" : ", ";
    Names += Separator + QuoteStandardName(Target.Columns[static_cast<std::size_t>(Pair.To)].Name);
    Values +=
        std::string(Separator) + "S." + QuoteStandardName(Source.Columns[static_cast<std::size_t>(Pair.From)].Name);
  }
  // No index has the places of rows, so that none is read in place of the table, in its own order.
  const char* const Order = IsPlain ? " WHERE S.ctid OPERATOR(pg_catalog.>=) '(0,0)'::pg_catalog.tid" : "";
  return Format("INSERT INTO %s (%s) OVERRIDING SYSTEM VALUE SELECT %s FROM %s AS S%s",
                Dialect.QualifiedName(Target.Table), Names, Values, Dialect.SQLName(Source.Table), Order);
}

}  // namespace

std::unique_ptr<TCursor> TPostgreSQLRowAccess::OpenCursor(const TTableDescription& Table, std::span<const int> Columns,
                                                          const TWalkOptions& Options) {
  // A COPY is the quickest, but holds the connection.
  const bool Whole = FSession.OnlyReads() || !FSession.InTransaction();
  return OpenPostgreSQLCursor(FSession, Table, Columns, Options,
                              Whole ? TPostgreSQLReading::Copy : TPostgreSQLReading::InBatches);
}

std::int64_t TPostgreSQLRowAccess::CountRows(const TTableDescription& Table, std::string_view Condition) {
  const std::string What =
      SelectionFailed(Format("Cannot count the rows of table '%s'", FullName(Table.Table)), Condition);
  CheckPostgreSQLSelection(FSession, Table, Condition, What);
  return FSession
      .Query(What, "SELECT pg_catalog.count(*) FROM " + FSession.Dialect().SQLName(Table.Table) + " AS T" +
                       SelectionWords(Condition))
      .Integer(0, 0);
}

std::unique_ptr<TBulkAppender> TPostgreSQLRowAccess::OpenAppender(const TTableDescription& Table,
                                                                  std::span<const int> Columns,
                                                                  const TAppendOptions& Options) {
  if (Options.UpdateByKey) return std::make_unique<TPostgreSQLUpdater>(FSession, FSequences, Table, Columns, Options);
  return std::make_unique<TPostgreSQLAppender>(FSession, FSequences, Table, Columns, Options);
}

namespace {

/// Of some types the engine takes the text of another one and cuts it to fit.
void RefuseCuts(const TColumnInfo& From, const TColumnInfo& To, std::string_view What) {
  const auto IsMadeOfOthers = [](std::string_view Type) {
    return Type.ends_with("[]") || Type.ends_with("range") || Type.starts_with("interval ");
  };
  if (From.DeclaredType == To.DeclaredType || !IsMadeOfOthers(To.DeclaredType)) return;
  throw EDatabaseError(
      Format("%s: the engine would cut values of the type '%s' to fit field '%s' of the type '%s'; let it "
             "keep its type, or make it text",
             What, From.DeclaredType, To.Name, To.DeclaredType),
      {.Column = To.Name});
}

}  // namespace

bool TPostgreSQLRowAccess::CopiesExactly(const TTableDescription& Source, const TTableDescription& Target,
                                         std::span<const TColumnPair> Pairs) {
  if (Pairs.empty() || Source.Table.Kind != TTableKind::Table || Target.Table.Kind != TTableKind::Table) return false;
  const std::string What = CopyFailed(Source.Table, Target.Table);
  const TPostgreSQLTable From = ReadPostgreSQLTable(FSession, Source.Table, What);
  const TPostgreSQLTable To = ReadPostgreSQLTable(FSession, Target.Table, What);
  const char* const Encoding = PQparameterStatus(FSession.Handle(), "server_encoding");
  const bool HasUtf8 = Encoding && std::string_view(Encoding) == "UTF8";
  const auto IsExact = [&](const TColumnPair& Pair) {
    return PostgreSQLCopiesExactly(ColumnOf(From, Source.Columns[static_cast<std::size_t>(Pair.From)].Name, What),
                                   ColumnOf(To, Target.Columns[static_cast<std::size_t>(Pair.To)].Name, What), HasUtf8);
  };
  for (const TColumnPair& Pair : Pairs)
    RefuseCuts(Source.Columns[static_cast<std::size_t>(Pair.From)], Target.Columns[static_cast<std::size_t>(Pair.To)],
               What);
  return std::all_of(Pairs.begin(), Pairs.end(), IsExact) && ActionsOnInsert(FSession, To.Oid, What).empty();
}

std::int64_t TPostgreSQLRowAccess::CopyRows(const TTableDescription& Source, const TTableDescription& Target,
                                            std::span<const TColumnPair> Pairs) {
  const std::string What = CopyFailed(Source.Table, Target.Table);
  CheckTakesCopies(Source.Table, Target, Pairs, FSession.ReadOnly());
  const TPostgreSQLTable From = ReadPostgreSQLTable(FSession, Source.Table, What);
  const TPostgreSQLTable To = ReadPostgreSQLTable(FSession, Target.Table, What);
  CheckNothingActs(Source.Table, Target.Table, ActionsOnInsert(FSession, To.Oid, What));
  return FSession.Query(What, CopyStatement(Source, Target, From.Kind == 'r', Pairs, FSession.Dialect())).TagCount();
}

void TPostgreSQLRowAccess::MoveAutoSequence(const TTableDescription& Target, std::span<const TColumnPair> Pairs) {
  std::vector<std::string> Names;
  for (const TColumnPair& Pair : Pairs) Names.push_back(Target.Columns[static_cast<std::size_t>(Pair.To)].Name);
  const std::string What = Format("Cannot append to table '%s'", FullName(Target.Table));
  FSequences.Note(ReadPostgreSQLTable(FSession, Target.Table, What).Oid, Names);
}

}  // namespace velkrund

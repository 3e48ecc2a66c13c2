#include "standalone/drivers/postgresql/PostgreSQLUpdater.h"

#include <algorithm>

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLAppender.h"
#include "standalone/drivers/postgresql/PostgreSQLInsertTriggers.h"
#include "standalone/drivers/postgresql/PostgreSQLWrittenColumns.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {
namespace {

/// Of what is held back, at most: so that a network's latency is not paid per row.
constexpr std::size_t MostRows = 500;
constexpr std::size_t MostBytes = std::size_t{1} << 20U;

/// A value for COPY without the signs that it has for that.
void AppendUnescaped(std::string& Out, std::string_view Encoded) {
  for (std::size_t At = 0;;) {
    const std::size_t Sign = std::min(Encoded.find('\\', At), Encoded.size());
    Out.append(Encoded, At, Sign - At);
    if (Sign + 1 >= Encoded.size()) return;
    const char Letter = Encoded[Sign + 1];
    Out += Letter == 'n' ? '\n' : Letter == 'r' ? '\r' : Letter == 't' ? '\t' : Letter;
    At = Sign + 2;
  }
}

}  // namespace

TPostgreSQLUpdater::TPostgreSQLUpdater(TPostgreSQLSession& Session, TPostgreSQLSequences& Sequences,
                                       const TTableDescription& Table, std::span<const int> Columns,
                                       const TAppendOptions& Options)
    : FSession(Session),
      FSequences(Sequences),
      FTableName(FullName(Table.Table)),
      FWhat(Format("Cannot update rows of table '%s'", FTableName)),
      FMovesSequences(Options.CanRecreateAutoSequence),
      FFirst(Options.FirstRecord),
      FHeldFirst(Options.FirstRecord),
      FRecord(Options.FirstRecord) {
  const TPostgreSQLTable Known = ReadPostgreSQLTable(Session, Table.Table, FWhat);
  FTableOid = Known.Oid;
  const std::vector<TPostgreSQLColumn> Written = PostgreSQLWrittenColumns(Session, Table, Known, Columns, FWhat);
  const std::vector<std::size_t> Key = KeyToUpdateBy(Table, Columns, Options);
  if (Known.HasTriggers)
    FTriggers = ReadPostgreSQLTriggers(Session, FTableOid, FWhat, {.OnInsert = true, .OnUpdate = true});
  const TPostgreSQLMoney Money = ReadPostgreSQLMoney(Session, Written);
  for (const TPostgreSQLColumn& Column : Written) {
    FNames.push_back(Column.Info.Name);
    FEncoders.emplace_back(Column, Money, Session.CodePage(), Options.AllowLoss, PostgreSQLTextForm());
  }
  MakeStatement(Table, Key);
}

TPostgreSQLUpdater::~TPostgreSQLUpdater() { Abandon(); }

/// It tells how many rows it has updated and added.
void TPostgreSQLUpdater::MakeStatement(const TTableDescription& Table, const std::vector<std::size_t>& Key) {
  const TPostgreSQLResult Known = FSession.Query(
      FWhat,
      CatalogueStatement("SELECT a.attname, a.atttypid, a.attidentity FROM pg_catalog.pg_attribute a "
                         "WHERE a.attrelid = $1::pg_catalog.oid AND a.attnum > 0 AND NOT a.attisdropped"),
      {FTableOid.c_str()});
  std::string Names, Values, Sets, Where;
  for (std::size_t I = 0; I < FNames.size(); ++I) {
    int Row = 0;
    while (Row < Known.RowCount() && Known.Text(Row, 0) != FNames[I]) ++Row;
    if (Row == Known.RowCount()) throw EDatabaseError(Format("%s: its column '%s' is gone", FWhat, FNames[I]));
    FTypes.push_back(static_cast<unsigned>(Known.Integer(Row, 1)));
    const bool IsKey = std::find(Key.begin(), Key.end(), I) != Key.end();
    const bool IsFixed = Known.Text(Row, 2) == "a";
    if (IsFixed && !IsKey)
      throw EDatabaseError(
          Format("%s: the engine alone gives its column '%s' values; leave the field out", FWhat, FNames[I]),
          {.Table = FTableName, .Column = FNames[I]});
    const std::string Name = QuoteStandardName(FNames[I]);
    const std::string Separator = I == 0 ? "" : ", ";
    Names += Separator + Name;
    Values += Separator + Format("$%d", I + 1);
    if (!IsFixed) Sets += (Sets.empty() ? "" : ", ") + Name + Format(" = $%d", I + 1);
    if (IsKey) Where += (Where.empty() ? " WHERE T." : " AND T.") + Name + Format(" = $%d", I + 1);
  }
  const std::string Rows = FSession.Dialect().SQLName(Table.Table) + " AS T";
  // A record of the key alone changes nothing.
  const bool Sees = FNames.size() == Key.size();
  FStatement = "WITH u AS (" + (Sees ? "SELECT 1 FROM " + Rows + Where : "UPDATE " + Rows + " SET " + Sets + Where) +
               (Sees ? "" : " RETURNING 1") + "), i AS (INSERT INTO " + FSession.Dialect().QualifiedName(Table.Table) +
               " (" + Names + ") OVERRIDING SYSTEM VALUE SELECT " + Values +
               " WHERE NOT EXISTS (SELECT 1 FROM u) RETURNING 1) "
               "SELECT (SELECT pg_catalog.count(*) FROM u), (SELECT pg_catalog.count(*) FROM i)";
}

std::string TPostgreSQLUpdater::RecordText(std::int64_t Record) const {
  return Format("Cannot append record %d to table '%s'", Record, FTableName);
}

void TPostgreSQLUpdater::CheckUsable() const {
  if (!FFailure.empty()) throw EDatabaseError(FFailure);
}

void TPostgreSQLUpdater::Fail(const std::string& Message, TErrorInfo Info) {
  FFailure = Message;
  Abandon();
  throw EDatabaseError(Message, std::move(Info));
}

void TPostgreSQLUpdater::Append(std::span<const TKvVariant* const> Row) {
  CheckUsable();
  const std::size_t Starts = FStarts.size(), Size = FTexts.size();
  for (std::size_t I = 0; I < FEncoders.size(); ++I) {
    FEncoded.clear();
    if (const TPostgreSQLEncoder::TRefusal Refusal = FEncoders[I].Append(*Row[I], FEncoded)) {
      FStarts.resize(Starts);
      FTexts.resize(Size);
      RaiseRefused(I, *Row[I], Refusal);
    }
    const bool IsNull = FEncoded == "\\N";
    FStarts.push_back(IsNull ? -1 : static_cast<std::ptrdiff_t>(FTexts.size()));
    if (IsNull) continue;
    AppendUnescaped(FTexts, FEncoded);
    FTexts += '\0';
  }
  Hold();
  if (FStarts.size() >= MostRows * FNames.size() || FTexts.size() >= MostBytes) Send();
}

void TPostgreSQLUpdater::RaiseRefused(std::size_t Column, const TKvVariant& Value, std::string_view Reason) const {
  TErrorInfo Info = RefusedValue(FTableName, FNames[Column], FRecord, Value);
  if (FEncoders[Column].RefusedLoss()) Info.Code = TErrorCode::Loss;
  throw EDatabaseError(Format("%s, column '%s': %s", RecordText(FRecord), FNames[Column], Reason), std::move(Info));
}

/// Counts the row that has been put behind those that are held back.
void TPostgreSQLUpdater::Hold() {
  if (FRecord == FHeldFirst) {
    try {
      FSession.RestoreSettings();
      FSession.Occupy(*this, FWhat);
    } catch (...) {
      // Somebody else's error; the row at hand is not taken.
      Abandon();
      throw;
    }
  }
  ++FRecord;
}

void TPostgreSQLUpdater::Send() {
  std::vector<const char*> Values(FStarts.size());
  std::transform(FStarts.begin(), FStarts.end(), Values.begin(),
                 [&](std::ptrdiff_t Start) { return Start < 0 ? nullptr : FTexts.data() + Start; });
  std::int64_t Record = FHeldFirst;
  TPostgreSQLResult Failed;
  try {
    Failed = FSession.ExecuteForEach(FStatement, FTypes, Values,
                                     [&](const TPostgreSQLResult& Counts) { Take(Record++, Counts); });
  } catch (const std::exception& Error) {
    FFailure = Error.what();
    Abandon();
    throw;
  }
  if (!FTriggers.empty()) FSession.DoubtSettings();
  if (FIgnored > 0) Fail(FFailure, {.Code = TErrorCode::TriggerRefused, .Table = FTableName, .Record = FIgnored});
  if (Failed.Handle() || Record < FRecord) RaiseRecord(Record, Failed);
  Abandon();
}

void TPostgreSQLUpdater::Take(std::int64_t Record, const TPostgreSQLResult& Counts) {
  const std::int64_t Updated = Counts.Integer(0, 0), Added = Counts.Integer(0, 1);
  FUpdated += Updated;
  if (Updated + Added != 1 && FIgnored == 0) {
    FFailure = RecordText(Record) + ": a trigger has ignored it";
    if (!FTriggers.empty()) FFailure += Format(" (%s)", JoinedInShort(FTriggers));
    FIgnored = Record;
  }
}

/// Errors of values name the parameter: "unnamed portal parameter $2 = '...'".
std::string TPostgreSQLUpdater::ColumnOfError(const TPostgreSQLResult& Result) const {
  const std::string_view Named = Result.Diagnostic(PG_DIAG_COLUMN_NAME);
  if (!Named.empty()) return std::string(Named);
  const std::string_view Context = Result.Diagnostic(PG_DIAG_CONTEXT);
  const std::size_t Start = std::min(Context.find('$'), Context.size() - 1) + 1;
  if (Context.find('\n') != std::string_view::npos || Start >= Context.size()) return {};
  const std::size_t End = std::min(Context.find_first_not_of("0123456789", Start), Context.size());
  const auto Number = static_cast<std::size_t>(StrToInt64(Context.substr(Start, End - Start)).value_or(0));
  return Number >= 1 && Number <= FNames.size() ? FNames[Number - 1] : std::string();
}

void TPostgreSQLUpdater::RaiseRecord(std::int64_t Record, const TPostgreSQLResult& Result) {
  std::string What = RecordText(Record);
  const std::string Column = ColumnOfError(Result);
  if (!Column.empty()) What += Format(", column '%s'", Column);
  try {
    FSession.Raise(What, Result, {}, {.Table = FTableName, .Column = Column, .Record = Record});
  } catch (const EDatabaseError& Error) {
    const bool IsInside = Result.Diagnostic(PG_DIAG_CONTEXT).find("function ") != std::string_view::npos;
    TErrorInfo Info = Error.Info();
    if (FTriggers.empty() || (Info.Code != TErrorCode::TriggerRefused && !IsInside)) Fail(Error.what(), Info);
    Info.Code = TErrorCode::TriggerRefused;
    Fail(Format("%s; in a trigger (%s)", Error.what(), JoinedInShort(FTriggers)), Info);
  } catch (const std::exception& Error) {
    FFailure = Error.what();
    Abandon();
    throw;
  }
}

void TPostgreSQLUpdater::GiveWay(std::string_view /*What*/) { Send(); }

/// Forgets what is held back.
void TPostgreSQLUpdater::Abandon() noexcept {
  FStarts.clear();
  FTexts.clear();
  FHeldFirst = FRecord;
  FSession.Vacate(*this);
}

std::int64_t TPostgreSQLUpdater::ChangedValues() const {
  std::int64_t Result = 0;
  for (const TPostgreSQLEncoder& Encoder : FEncoders) Result += Encoder.ChangedValues();
  return Result;
}

void TPostgreSQLUpdater::Finish() {
  CheckUsable();
  if (FRecord > FHeldFirst) Send();
  if (FMovesSequences && FRecord > FFirst) FSequences.Note(FTableOid, FNames, FEncoders);
}

}  // namespace velkrund

#include "standalone/drivers/sqlite/SQLiteAppender.h"

#include <sqlite3.h>

#include <algorithm>
#include <utility>

#include "standalone/drivers/Dialect.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {
namespace {

/// 2 of DECIMAL(12, 2); 0 of a type that does not say it.
int ScaleOf(const std::string& DeclaredType) {
  const std::size_t Comma = DeclaredType.rfind(',');
  const std::size_t Close = DeclaredType.find(')', Comma == std::string::npos ? 0 : Comma);
  if (Comma == std::string::npos || Close == std::string::npos) return 0;
  return StrToInt32(Trim(std::string_view(DeclaredType).substr(Comma + 1, Close - Comma - 1))).value_or(0);
}

/// Kibibytes, negative as the engine wants it. A larger cache makes indexes no faster, only memory scarcer.
constexpr std::int64_t AppendCacheSize = -8'192;

std::string What(const std::string& TableName) { return Format("Cannot append to table '%s'", TableName); }

/// What one statement of several rows takes: beyond, the cost of a statement no longer shows.
constexpr std::size_t MostPlaces = 128;
constexpr std::size_t MostRows = 64;
/// Records that fit into any cache.
constexpr std::int64_t RowsOfSmallTable = 64;
/// Bytes of texts in a row that is copied to be held back.
constexpr std::size_t MostHeldBytes = 4'096;

std::string InsertText(const TTableDescription& Table, std::span<const int> Columns, std::size_t Rows) {
  // ABORT, so that no conflict clause of the table drops or replaces rows without a word.
  std::string Text = "INSERT OR ABORT INTO main." + QuoteStandardName(Table.Table.Name);
  if (Columns.empty()) return Text + " DEFAULT VALUES";
  std::string Places = "(";
  Text += " (";
  for (const int Column : Columns) {
    Text += QuoteStandardName(Table.Columns[static_cast<std::size_t>(Column)].Name) + ", ";
    Places += "?, ";
  }
  Text.resize(Text.size() - 2);
  Places.resize(Places.size() - 2);
  Places += ")";
  Text += ") VALUES " + Places;
  for (std::size_t Row = 1; Row < Rows; ++Row) Text += ", " + Places;
  return Text;
}

}  // namespace

TSQLiteAppender::TSQLiteAppender(const TSQLiteHandle& Database, const TTableDescription& Table,
                                 std::span<const int> Columns, const TAppendOptions& Options, const TTraits& Traits)
    : FDatabase(Database),
      FTableName(Table.Table.Name),
      FTriggers(Traits.Triggers.empty() ? "" : Format(" (%s)", JoinedInShort(Traits.Triggers))),
      FTable(Table),
      FColumns(Columns.begin(), Columns.end()),
      FTraits(Traits),
      FOne(Database, Table, Columns, Traits, 1),
      FAllowLoss(Options.AllowLoss),
      FRecord(Options.FirstRecord) {
  for (const int Index : Columns) FNames.push_back(Table.Columns[static_cast<std::size_t>(Index)].Name);
  if (!Traits.Update.empty()) FUpdate.emplace(Database, FTable, Columns, Traits, 1, Traits.Update);
  if (!Traits.OneByOne && !FUpdate) MakeRoom();
}

TSQLiteAppender::~TSQLiteAppender() {
  if (FCacheSizeBefore) SetCacheSize(*FCacheSizeBefore);
}

TSQLiteAppender::TInsert::TInsert(const TSQLiteHandle& Database, const TTableDescription& Table,
                                  std::span<const int> Columns, const TTraits& Traits, std::size_t Rows)
    : TInsert(Database, Table, Columns, Traits, Rows, InsertText(Table, Columns, Rows)) {}

TSQLiteAppender::TInsert::TInsert(const TSQLiteHandle& Database, const TTableDescription& Table,
                                  std::span<const int> Columns, const TTraits& Traits, std::size_t Rows,
                                  const std::string& Text)
    : Statement(Database, Text, What(Table.Table.Name), TSQLiteStatement::TUse::Often) {
  Binders.reserve(Columns.size() * Rows);
  int Place = 0;
  for (std::size_t Row = 0; Row < Rows; ++Row) {
    for (const int Index : Columns) {
      const TColumnInfo& Column = Table.Columns[static_cast<std::size_t>(Index)];
      Binders.emplace_back(Statement.Handle(), ++Place,
                           TSQLiteBinder::TColumn{.Affinity = AffinityOf(Column.DeclaredType, Traits.Strict),
                                                  .HoldsBytes = Column.Kind == TKvKind::Bytes,
                                                  .Scale = ScaleOf(Column.DeclaredType),
                                                  .IsRowNumber = Index == Traits.RowNumberColumn},
                           Traits.Texts);
    }
  }
}

void TSQLiteAppender::MakeRoom() {
  const std::size_t Rows = FColumns.empty() ? 1 : std::min(MostRows, MostPlaces / FColumns.size());
  if (Rows < 2) return;
  FHeld.resize(Rows * FColumns.size());
  FHeldPlaces.reserve(FHeld.size());
  for (const TKvVariant& Value : FHeld) FHeldPlaces.push_back(&Value);
}

/// For a table that turns out to be no small one.
void TSQLiteAppender::GrowCache() {
  if (FCacheSizeBefore) return;
  TSQLiteStatement CacheSize(FDatabase, "PRAGMA main.cache_size", What(FTableName));
  if (!CacheSize.Step() || CacheSize.Integer(0) >= 0 || CacheSize.Integer(0) <= AppendCacheSize) return;
  FCacheSizeBefore = CacheSize.Integer(0);
  SetCacheSize(AppendCacheSize);
}

void TSQLiteAppender::SetCacheSize(std::int64_t Size) {
  // Speed only; a refusal changes nothing that matters.
  sqlite3_exec(FDatabase, Format("PRAGMA main.cache_size=%d", Size).c_str(), nullptr, nullptr, nullptr);
}

void TSQLiteAppender::Append(std::span<const TKvVariant* const> Row) {
  if (!IsHeldBack(Row)) {
    InsertHeldOneByOne();
    return InsertOne(Row);
  }
  Hold(Row);
  if (FHeldCount == FHeld.size()) InsertHeld();
}

bool TSQLiteAppender::IsHeldBack(TRow Row) const {
  if (FHeld.empty()) return false;
  std::size_t Bytes = 0;
  for (const TKvVariant* Value : Row) Bytes += Value->AsText().size();
  return Bytes <= MostHeldBytes;
}

void TSQLiteAppender::Hold(TRow Row) {
  for (const TKvVariant* Value : Row) FHeld[FHeldCount++] = *Value;
}

void TSQLiteAppender::InsertHeld() {
  // Small tables never need it.
  if (!FMany) {
    FMany.emplace(FDatabase, FTable, FColumns, FTraits, FHeld.size() / FColumns.size());
    GrowCache();
  }
  if (!BindHeld()) return InsertHeldOneByOne();
  const bool Alone = sqlite3_get_autocommit(FDatabase) != 0;
  const int Code = sqlite3_step(FMany->Statement.Handle()) & 0xFF;
  if (Code != SQLITE_DONE) {
    // Where a row was at fault, the engine has undone the statement and nothing else, and meets it again. After a
    // failure of another kind the transaction may be gone: rows sent now would stay for good.
    const bool FaultOfARow = Code == SQLITE_CONSTRAINT || Code == SQLITE_MISMATCH || Code == SQLITE_TOOBIG;
    if (!FaultOfARow || Alone != (sqlite3_get_autocommit(FDatabase) != 0))
      RaiseEngineError(*FMany, HeldText(), {.Table = FTableName});
    sqlite3_reset(FMany->Statement.Handle());
    return InsertHeldOneByOne();
  }
  sqlite3_reset(FMany->Statement.Handle());
  const std::size_t Rows = FHeldCount / FNames.size();
  if (static_cast<std::size_t>(sqlite3_changes(FDatabase)) != Rows)
    throw EDatabaseError(HeldText() + ": the engine has ignored some of them",
                         {.Code = TErrorCode::TriggerRefused, .Table = FTableName});
  CountReplaced(*FMany);
  FRecord += static_cast<std::int64_t>(Rows);
  FHeldCount = 0;
}

/// False: a value cannot be stored.
bool TSQLiteAppender::BindHeld() {
  FDatabase.Turn().TakeForStatement();
  for (std::size_t I = 0; I < FHeldCount; ++I)
    if (FMany->Binders[I].Bind(FHeld[I])) return false;
  return true;
}

void TSQLiteAppender::InsertHeldOneByOne() {
  const TRow All = TRow(FHeldPlaces).first(std::exchange(FHeldCount, 0));
  for (std::size_t At = 0; At < All.size(); At += FNames.size()) InsertOne(All.subspan(At, FNames.size()));
}

void TSQLiteAppender::Bind(TInsert& Insert, TRow Row) const {
  FDatabase.Turn().TakeForStatement();
  for (std::size_t I = 0; I < Row.size(); ++I)
    if (const TSQLiteBinder::TRefusal Refusal = Insert.Binders[I].Bind(*Row[I]))
      RaiseRefused(Insert.Binders[I], I, *Row[I], Refusal);
}

/// False: there is no row with the record's key.
bool TSQLiteAppender::UpdateOne(TRow Row) {
  Bind(*FUpdate, Row);
  const int Code = sqlite3_step(FUpdate->Statement.Handle());
  if (Code != SQLITE_DONE && Code != SQLITE_ROW) RaiseEngineError(*FUpdate, RecordText(), Place());
  const bool Found =
      Code == SQLITE_ROW || (sqlite3_stmt_readonly(FUpdate->Statement.Handle()) == 0 && sqlite3_changes(FDatabase) > 0);
  sqlite3_reset(FUpdate->Statement.Handle());
  if (!Found) return false;
  CountReplaced(*FUpdate);
  ++FUpdatedRecords;
  return true;
}

void TSQLiteAppender::InsertOne(TRow Row) {
  if (FUpdate && UpdateOne(Row)) {
    ++FRecord;
    return;
  }
  Bind(FOne, Row);
  if (sqlite3_step(FOne.Statement.Handle()) != SQLITE_DONE) RaiseEngineError(FOne, RecordText(), Place());
  sqlite3_reset(FOne.Statement.Handle());
  // A trigger can drop the row; nobody would miss it until it is needed.
  if (sqlite3_changes(FDatabase) != 1) {
    TErrorInfo Ignored = Place();
    Ignored.Code = TErrorCode::TriggerRefused;
    throw EDatabaseError(RecordText() + ": a trigger has ignored it" + FTriggers, std::move(Ignored));
  }
  CountReplaced(FOne);
  if (++FRecord == RowsOfSmallTable) GrowCache();
}

/// Of values that the engine has taken: a statement of many rows may have to be tried again row by row.
void TSQLiteAppender::CountReplaced(const TInsert& Insert) {
  if (!FAllowLoss) return;
  const auto IsReplaced = [](const TSQLiteBinder& Binder) { return Binder.Replaced(); };
  FChangedValues += std::count_if(Insert.Binders.begin(), Insert.Binders.end(), IsReplaced);
}

std::string TSQLiteAppender::RecordText() const {
  return Format("Cannot append record %d to table '%s'", FRecord, FTableName);
}

std::string TSQLiteAppender::HeldText() const {
  const auto Last = FRecord + static_cast<std::int64_t>(FHeldCount / FNames.size()) - 1;
  return Format("Cannot append records %d to %d to table '%s'", FRecord, Last, FTableName);
}

/// A constraint of another table, as "UNIQUE constraint failed: LOG.N" names it.
bool TSQLiteAppender::IsOfTrigger(std::string_view Message) const {
  constexpr std::string_view Mark = " constraint failed: ";
  const std::size_t At = Message.find(Mark);
  if (FTriggers.empty() || At == std::string_view::npos) return false;
  const std::string_view Place = Message.substr(At + Mark.size());
  const std::size_t Point = Place.find('.');
  return Point != std::string_view::npos && !SameText(Place.substr(0, FTableName.size() + 1), FTableName + ".");
}

TErrorInfo TSQLiteAppender::Place() const { return {.Table = FTableName, .Record = FRecord}; }

void TSQLiteAppender::RaiseRefused(const TSQLiteBinder& Binder, std::size_t Column, const TKvVariant& Value,
                                   std::string_view Reason) const {
  TErrorInfo Info = RefusedValue(FTableName, FNames[Column], FRecord, Value);
  if (Binder.RefusedLoss()) Info.Code = TErrorCode::Loss;
  throw EDatabaseError(Format("%s, column '%s': %s", RecordText(), FNames[Column], Reason), std::move(Info));
}

void TSQLiteAppender::RaiseEngineError(const TInsert& Insert, const std::string& What, TErrorInfo Place) const {
  try {
    RaiseSQLiteError(FDatabase, What, std::move(Place));
  } catch (const EDatabaseError& Error) {
    sqlite3_reset(Insert.Statement.Handle());
    TErrorInfo Info = Error.Info();
    if (Info.Code != TErrorCode::TriggerRefused && !IsOfTrigger(Error.what())) throw;
    Info.Code = TErrorCode::TriggerRefused;
    throw EDatabaseError(Format("%s; in a trigger%s", Error.what(), FTriggers), std::move(Info));
  } catch (...) {
    sqlite3_reset(Insert.Statement.Handle());
    throw;
  }
}

}  // namespace velkrund

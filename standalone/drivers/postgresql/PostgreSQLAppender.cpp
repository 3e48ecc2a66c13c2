#include "standalone/drivers/postgresql/PostgreSQLAppender.h"

#include <algorithm>

#include "standalone/drivers/postgresql/CopyErrors.h"
#include "standalone/drivers/postgresql/PostgreSQLSequences.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// Bytes that are collected before the client library gets them.
constexpr std::size_t ChunkSize = std::size_t{64} << 10U;
/// Bytes after which a COPY ends, so that errors show soon.
constexpr std::size_t MaxPieceSize = std::size_t{4} << 20U;

std::string InsertText(const std::string& Table, const std::vector<std::string>& Names) {
  if (Names.empty()) return "INSERT INTO " + Table + " DEFAULT VALUES";
  std::string Text = "COPY " + Table + " (";
  for (const std::string& Name : Names) Text += QuoteStandardName(Name) + ", ";
  Text.resize(Text.size() - 2);
  return Text + ") FROM STDIN";
}

void CheckTakesRows(const TTableInfo& Table, const TPostgreSQLTable& Known, bool ReadOnly, const std::string& What) {
  if (Known.IsMaterializedView()) throw EDatabaseError(What + ": it is a materialized view");
  if (Table.Kind == TTableKind::View) throw EDatabaseError(What + ": it is a view");
  if (ReadOnly)
    throw EDatabaseError(What + ": the database is opened for reading only", {.Code = TErrorCode::DatabaseReadOnly});
}

}  // namespace

TPostgreSQLAppender::TPostgreSQLAppender(TPostgreSQLSession& Session, const TTableDescription& Table,
                                         std::span<const int> Columns, const TAppendOptions& Options)
    : FSession(Session),
      FTableName(FullName(Table.Table)),
      FTableBareName(Table.Table.Name),
      FWhat(Format("Cannot append to table '%s'", FTableName)),
      FMovesSequences(Options.CanRecreateAutoSequence),
      FPieceFirst(Options.FirstRecord),
      FRecord(Options.FirstRecord) {
  const TPostgreSQLTable Known = ReadPostgreSQLTable(Session, Table.Table, FWhat);
  CheckTakesRows(Table.Table, Known, Session.ReadOnly(), FWhat);
  FTableOid = Known.Oid;
  FOneWhole = Known.RefersToItself;
  std::vector<TPostgreSQLColumn> Written;
  for (const int Index : Columns) {
    Written.push_back(ColumnOf(Known, Table.Columns[static_cast<std::size_t>(Index)].Name, FWhat));
    if (Written.back().Info.Generated)
      throw EDatabaseError(Format("%s: the engine computes its column '%s'", FWhat, Written.back().Info.Name));
    FNames.push_back(Written.back().Info.Name);
  }
  const TPostgreSQLMoney Money = ReadPostgreSQLMoney(Session, Written);
  for (const TPostgreSQLColumn& Column : Written)
    FEncoders.emplace_back(Column, Money, Session.CodePage(), Options.AllowLoss);
  FStatement = InsertText(Session.Dialect().QualifiedName(Table.Table), FNames);
}

TPostgreSQLAppender::~TPostgreSQLAppender() { Abandon(); }

std::string TPostgreSQLAppender::Records(std::int64_t First, std::int64_t Last) const {
  if (First == Last) return Format("Cannot append record %d to table '%s'", First, FTableName);
  return Format("Cannot append records %d .. %d to table '%s'", First, Last, FTableName);
}

void TPostgreSQLAppender::CheckUsable() const {
  if (!FFailure.empty()) throw EDatabaseError(FFailure);
}

void TPostgreSQLAppender::GiveUp(std::string Why) {
  FFailure = std::move(Why);
  Abandon();
}

void TPostgreSQLAppender::Fail(const std::string& Message) {
  GiveUp(Message);
  throw EDatabaseError(Message, {.Code = TErrorCode::RowRefused, .Table = FTableName});
}

void TPostgreSQLAppender::Append(std::span<const TKvVariant* const> Row) {
  CheckUsable();
  if (FEncoders.empty()) return InsertDefaults();
  const std::size_t Start = FRows.size();
  for (std::size_t I = 0; I < FEncoders.size(); ++I) {
    if (I > 0) FRows += '\t';
    if (const TPostgreSQLEncoder::TRefusal Refusal = FEncoders[I].Append(*Row[I], FRows)) {
      FRows.resize(Start);
      RaiseRefused(I, *Row[I], Refusal);
    }
  }
  FRows += '\n';
  if (!FInPiece) BeginPiece();
  ++FRecord;
  if (FRows.size() >= ChunkSize) Send();
  if (FPieceSize >= MaxPieceSize && !FOneWhole) EndPiece();
}

void TPostgreSQLAppender::RaiseRefused(std::size_t Column, const TKvVariant& Value, std::string_view Reason) const {
  TErrorInfo Info = RefusedValue(FTableName, FNames[Column], FRecord, Value);
  if (FEncoders[Column].RefusedLoss()) Info.Code = TErrorCode::Loss;
  throw EDatabaseError(Format("%s, column '%s': %s", Records(FRecord, FRecord), FNames[Column], Reason),
                       std::move(Info));
}

void TPostgreSQLAppender::BeginPiece() {
  try {
    FSession.Occupy(*this, FWhat);
  } catch (...) {
    // Somebody else's error; the row at hand is not taken.
    FRows.clear();
    throw;
  }
  FInPiece = true;
  FPieceFirst = FRecord;
}

void TPostgreSQLAppender::InsertDefaults() {
  const TPostgreSQLResult Result = FSession.Query(Records(FRecord, FRecord), FStatement);
  if (Result.TagCount() != 1) Fail(Records(FRecord, FRecord) + ": a trigger of the table has ignored it");
  ++FRecord;
}

void TPostgreSQLAppender::Send() {
  if (!FCopying) {
    try {
      FSession.StartCopy(FWhat, FStatement);
    } catch (const std::exception& Error) {
      GiveUp(Error.what());
      throw;
    }
    FCopying = true;
  }
  // In slices, so that the client library does not copy a long row as a whole.
  for (std::size_t At = 0; At < FRows.size(); At += ChunkSize) {
    if (!FSession.SendRows(std::string_view(FRows).substr(At, ChunkSize))) {
      FCopying = false;
      RaisePiece(FSession.Drain());
    }
  }
  FPieceSize += FRows.size();
  FRows.clear();
}

void TPostgreSQLAppender::EndPiece() {
  Send();
  FCopying = false;
  FSession.EndRows(nullptr);
  const TPostgreSQLResult Result = FSession.Drain();
  if (!Result.Handle() || Result.IsError()) RaisePiece(Result);
  const std::int64_t Sent = FRecord - FPieceFirst;
  const std::int64_t Taken = Result.TagCount();
  if (Taken != Sent) {
    const std::string What = Records(FPieceFirst, FRecord - 1);
    if (Sent == 1) Fail(What + ": a trigger of the table has ignored it");
    Fail(Format("%s: a trigger of the table has ignored %d of them", What, Sent - Taken));
  }
  FInPiece = false;
  FPieceSize = 0;
  FSession.Vacate(*this);
}

void TPostgreSQLAppender::RaisePiece(const TPostgreSQLResult& Result) {
  const std::int64_t Last = FRecord - 1;
  const TCopyErrorPlace Place = PlaceOfCopyError(Result, FTableBareName, FNames);
  std::string What = Records(FPieceFirst, Last);
  TErrorInfo Known{.Table = FTableName, .Column = Place.Column, .Record = FPieceFirst == Last ? Last : 0};
  if (Place.Line >= 1 && Place.Line <= FRecord - FPieceFirst) {
    Known.Record = FPieceFirst + Place.Line - 1;
    What = Records(Known.Record, Known.Record);
  }
  if (!Place.Column.empty()) What += Format(", column '%s'", Place.Column);
  try {
    FSession.Raise(What, Result, {}, Known);
  } catch (const std::exception& Error) {
    GiveUp(Error.what());
    throw;
  }
}

void TPostgreSQLAppender::GiveWay(std::string_view /*What*/) { EndPiece(); }

void TPostgreSQLAppender::Abandon() noexcept {
  FRows.clear();
  FPieceSize = 0;
  if (FCopying) {
    FCopying = false;
    FSession.EndRows("the rows are dropped");
    FSession.Drain();
  }
  FInPiece = false;
  FSession.Vacate(*this);
}

std::int64_t TPostgreSQLAppender::ChangedValues() const {
  std::int64_t Result = 0;
  for (const TPostgreSQLEncoder& Encoder : FEncoders) Result += Encoder.ChangedValues();
  return Result;
}

void TPostgreSQLAppender::Finish() {
  CheckUsable();
  if (FInPiece) EndPiece();
  if (FMovesSequences) MovePostgreSQLSequences(FSession, FWhat, FTableOid, FNames, FEncoders);
}

}  // namespace velkrund

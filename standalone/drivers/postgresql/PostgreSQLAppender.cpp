#include "standalone/drivers/postgresql/PostgreSQLAppender.h"

#include <algorithm>

#include "standalone/drivers/postgresql/CopyErrors.h"
#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLWrittenColumns.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

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

/// The triggers that can have done it.
std::string InBrackets(const std::vector<std::string>& Triggers) {
  return Triggers.empty() ? std::string() : Format(" (%s)", JoinedInShort(Triggers));
}

}  // namespace

TPostgreSQLAppender::TPostgreSQLAppender(TPostgreSQLSession& Session, TPostgreSQLSequences& Sequences,
                                         const TTableDescription& Table, std::span<const int> Columns,
                                         const TAppendOptions& Options)
    : FSession(Session),
      FSequences(Sequences),
      FTableName(FullName(Table.Table)),
      FTableBareName(Table.Table.Name),
      FWhat(Format("Cannot append to table '%s'", FTableName)),
      FMovesSequences(Options.CanRecreateAutoSequence),
      FFirst(Options.FirstRecord),
      FPieceFirst(Options.FirstRecord),
      FRecord(Options.FirstRecord) {
  const TPostgreSQLTable Known = ReadPostgreSQLTable(Session, Table.Table, FWhat);
  const std::vector<TPostgreSQLColumn> Written = PostgreSQLWrittenColumns(Session, Table, Known, Columns, FWhat);
  FTableOid = Known.Oid;
  FOneWhole = Known.RefersToItself;
  if (Known.HasTriggers) FTriggers = ReadPostgreSQLTriggers(Session, FTableOid, FWhat, {.OnInsert = true});
  for (const TPostgreSQLColumn& Column : Written) FNames.push_back(Column.Info.Name);
  const TPostgreSQLMoney Money = ReadPostgreSQLMoney(Session, Written);
  // Where a value lacks the binary form a COPY has to end: one whole has no place for that, and outside of a
  // transaction an error later on would no longer take back what that COPY has stored.
  const bool IsBinary =
      !FOneWhole && Session.InTransaction() && std::all_of(Written.begin(), Written.end(), HasPostgreSQLBinaryForm);
  FForm = IsBinary ? &PostgreSQLBinaryForm() : &PostgreSQLTextForm();
  for (const TPostgreSQLColumn& Column : Written)
    FEncoders.emplace_back(Column, Money, Session.CodePage(), Options.AllowLoss, *FForm);
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

/// Record: 0 where it is not known.
void TPostgreSQLAppender::Fail(const std::string& Message, std::int64_t Record) {
  GiveUp(Message);
  throw EDatabaseError(Message, {.Code = TErrorCode::TriggerRefused, .Table = FTableName, .Record = Record});
}

void TPostgreSQLAppender::Append(std::span<const TKvVariant* const> Row) {
  CheckUsable();
  if (FEncoders.empty()) return InsertDefaults();
  if (!PutRow(Row)) {
    TakeForm(PostgreSQLTextForm());
    PutRow(Row);
  }
  if (!FInPiece) BeginPiece();
  ++FRecord;
  if (FRows.size() >= ChunkSize) Send();
  if (FPieceSize >= MaxPieceSize && !FOneWhole) EndPiece();
}

/// False: one of its values lacks the form. Raises the error of any other refusal.
bool TPostgreSQLAppender::PutRow(std::span<const TKvVariant* const> Row) {
  if (!FInPiece && FRows.empty()) FRows = FForm->Header();
  const std::size_t Start = FRows.size();
  FForm->StartRow(FEncoders.size(), FRows);
  for (std::size_t I = 0; I < FEncoders.size(); ++I) {
    if (I > 0) FForm->NextCell(FRows);
    const TPostgreSQLEncoder::TRefusal Refusal = FEncoders[I].Append(*Row[I], FRows);
    if (!Refusal) continue;
    FRows.resize(Start);
    for (std::size_t Put = 0; Put <= I; ++Put) FEncoders[Put].TakeBack();
    if (FEncoders[I].LacksForm() && FForm != &PostgreSQLTextForm()) return false;
    RaiseRefused(I, *Row[I], Refusal);
  }
  FForm->EndRow(FRows);
  return true;
}

/// For this row and those that follow: a COPY has one form.
void TPostgreSQLAppender::TakeForm(const TPostgreSQLForm& Form) {
  if (FInPiece) EndPiece();
  FRows.clear();
  FForm = &Form;
  for (TPostgreSQLEncoder& Encoder : FEncoders) Encoder.SetForm(Form);
}

void TPostgreSQLAppender::RaiseRefused(std::size_t Column, const TKvVariant& Value, std::string_view Reason) const {
  TErrorInfo Info = RefusedValue(FTableName, FNames[Column], FRecord, Value);
  if (FEncoders[Column].RefusedLoss()) Info.Code = TErrorCode::Loss;
  throw EDatabaseError(Format("%s, column '%s': %s", Records(FRecord, FRecord), FNames[Column], Reason),
                       std::move(Info));
}

void TPostgreSQLAppender::BeginPiece() {
  try {
    FSession.RestoreSettings();
    if (!FTriggers.empty()) MarkPiece();
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
  if (Result.TagCount() != 1)
    Fail(Records(FRecord, FRecord) + ": a trigger has ignored it" + InBrackets(FTriggers), FRecord);
  ++FRecord;
}

void TPostgreSQLAppender::Send() {
  if (!FCopying) {
    try {
      FSession.StartCopy(FWhat, FStatement + std::string(FForm->Options()));
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
  if (!FTriggers.empty()) KeepSent();
  FRows.clear();
}

/// The rows of one piece by size; a longer piece is not looked through again.
void TPostgreSQLAppender::KeepSent() {
  if (FPieceSize <= 2 * MaxPieceSize)
    FSent += FRows;
  else
    FSent.clear();
}

/// To come back to when a trigger has refused rows. Outside of transactions there is nothing to come back to.
void TPostgreSQLAppender::MarkPiece() {
  FSent.clear();
  if (FSession.InTransaction()) FSession.Query(FWhat, "SAVEPOINT velkrund_piece");
}

void TPostgreSQLAppender::EndPiece() {
  Send();
  FCopying = false;
  if (!FForm->Trailer().empty() && !FSession.SendRows(FForm->Trailer())) RaisePiece(FSession.Drain());
  FSession.EndRows(nullptr);
  const TPostgreSQLResult Result = FSession.Drain();
  if (!FTriggers.empty()) FSession.DoubtSettings();
  if (!Result.Handle() || Result.IsError()) RaisePiece(Result);
  const std::int64_t Sent = FRecord - FPieceFirst;
  const std::int64_t Taken = Result.TagCount();
  if (Taken != Sent) RaiseIgnored(Sent - Taken);
  FInPiece = false;
  FPieceSize = 0;
  FSession.Vacate(*this);
  if (!FTriggers.empty() && FSession.InTransaction()) FSession.Query(FWhat, "RELEASE SAVEPOINT velkrund_piece");
}

void TPostgreSQLAppender::RaiseIgnored(std::int64_t Count) {
  const std::int64_t Last = FRecord - 1;
  const std::int64_t Record = FPieceFirst == Last ? Last : FindRefused();
  if (Record > 0) Fail(Records(Record, Record) + ": a trigger has ignored it" + InBrackets(FTriggers), Record);
  Fail(Format("%s: a trigger has ignored %d of them%s", Records(FPieceFirst, Last), Count, InBrackets(FTriggers)), 0);
}

/// The first record that is not taken when the piece is loaded again, one by one; 0: none that is known. The rows that
/// it leaves behind go with the transaction, which has failed.
std::int64_t TPostgreSQLAppender::FindRefused() {
  if (!FSession.InTransaction() || FSent.empty()) return 0;
  // No longer this piece's.
  FInPiece = false;
  FSession.Vacate(*this);
  try {
    FSession.Query(FWhat, "ROLLBACK TO SAVEPOINT velkrund_piece");
    std::int64_t Record = FPieceFirst;
    std::string_view Left = FSent;
    for (Left.remove_prefix(FForm->Header().size()); !Left.empty(); ++Record) {
      const std::size_t Size = FForm->FirstRowSize(Left);
      FSession.StartCopy(FWhat, FStatement + std::string(FForm->Options()));
      for (const std::string_view Part : {FForm->Header(), Left.substr(0, Size), FForm->Trailer()})
        if (!Part.empty() && !FSession.SendRows(Part)) return 0;
      FSession.EndRows(nullptr);
      if (FSession.Drain().TagCount() != 1) return Record;
      Left.remove_prefix(Size);
    }
  } catch (const EDatabaseError&) {
    // What is known without it is told.
  }
  return 0;
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
  } catch (const EDatabaseError& Error) {
    if (IsOfTrigger(Result, Error.Info().Code)) RaiseOfTrigger(Error, What);
    GiveUp(Error.what());
    throw;
  } catch (const std::exception& Error) {
    GiveUp(Error.what());
    throw;
  }
}

/// What happens inside a function has more around it than the line of the COPY, or something else.
bool TPostgreSQLAppender::IsOfTrigger(const TPostgreSQLResult& Result, TErrorCode Code) const {
  if (FTriggers.empty()) return false;
  const std::string_view Context = Result.Diagnostic(PG_DIAG_CONTEXT);
  const bool IsInside =
      Context.find('\n') != std::string_view::npos || !(Context.empty() || Context.starts_with("COPY "));
  return Code == TErrorCode::TriggerRefused || IsInside;
}

/// What: how the error's message begins.
void TPostgreSQLAppender::RaiseOfTrigger(const EDatabaseError& Error, std::string_view What) {
  TErrorInfo Info = Error.Info();
  Info.Code = TErrorCode::TriggerRefused;
  Info.Table = FTableName;
  std::string Message = Error.what();
  if (Info.Record == 0) Info.Record = FindRefused();
  if (Info.Record > 0 && Message.starts_with(What)) Message.replace(0, What.size(), Records(Info.Record, Info.Record));
  Message += "; in a trigger" + InBrackets(FTriggers);
  GiveUp(Message);
  throw EDatabaseError(Message, std::move(Info));
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
  if (FMovesSequences && FRecord > FFirst) FSequences.Note(FTableOid, FNames, FEncoders);
}

}  // namespace velkrund

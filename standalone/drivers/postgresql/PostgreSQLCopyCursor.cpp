// The format (COPY, "Binary Format"): a header of 11 bytes, flags, the size of an extension and the extension; then per
// row the number of cells in 16 bits and per cell its size in 32 bits, -1 for NULL, and its bytes; at the end -1 in
// place of a number of cells. The server sends one row per message, the header before the first.

#include <string_view>

#include "standalone/drivers/postgresql/BigEndian.h"
#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLChangedTables.h"
#include "standalone/drivers/postgresql/PostgreSQLCursor.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr std::string_view Signature("PGCOPY\n\xFF\r\n\0", 11);
constexpr std::uint16_t EndOfRows = 0xFFFF;

}  // namespace

TPostgreSQLCopyCursor::TPostgreSQLCopyCursor(TPostgreSQLSource Source) : TPostgreSQLCursor(std::move(Source)) {
  TPostgreSQLSession& Session = FSource.Session;
  Session.Occupy(*this, FSource.What);
  FOpen = true;
  try {
    Session.StartCopy(FSource.What, FSource.Statement);
    if (Receive()) SkipHeader();
  } catch (...) {
    Abandon();
    throw;
  }
}

TPostgreSQLCopyCursor::~TPostgreSQLCopyCursor() { Abandon(); }

void TPostgreSQLCopyCursor::FreeRow() {
  PQfreemem(FRow);
  FRow = nullptr;
  FAt = FEnd = nullptr;
}

/// Takes the next message; false behind the last one. The connection is free then.
bool TPostgreSQLCopyCursor::Receive() {
  FreeRow();
  const int Size = FSource.Session.ReceiveRow(FRow);
  if (Size > 0) {
    FAt = FRow;
    FEnd = FRow + Size;
    return true;
  }
  FOpen = false;
  const TPostgreSQLResult Result = FSource.Session.Drain();
  FSource.Session.Vacate(*this);
  if (Size < -1 || !Result.Handle() || Result.IsError()) FSource.Session.Raise(FSource.What, Result);
  RefuseChanges();
  return false;
}

/// A COPY alone sees what is there when it begins.
void TPostgreSQLCopyCursor::RefuseChanges() {
  TPostgreSQLSession& Session = FSource.Session;
  if (!Session.InTransaction() || !Session.OnlyReads()) return;
  RefuseChangedTables(Session, FSource.Table, FSource.Oid, FSource.What);
}

void TPostgreSQLCopyCursor::RaiseMalformed() {
  Abandon();
  throw EDatabaseError(FSource.What + ": the server sent rows in a form that is not known here");
}

void TPostgreSQLCopyCursor::SkipHeader() {
  constexpr std::size_t FixedSize = Signature.size() + 8;
  const auto Size = static_cast<std::size_t>(FEnd - FAt);
  if (Size < FixedSize || std::string_view(FAt, Signature.size()) != Signature) RaiseMalformed();
  const std::size_t Extension = ReadBigEndian<std::uint32_t>(FAt + Signature.size() + 4);
  if (Size - FixedSize < Extension) RaiseMalformed();
  FAt += FixedSize + Extension;
}

bool TPostgreSQLCopyCursor::Next() {
  if (!FOpen || (FAt == FEnd && !Receive())) return false;
  const auto Has = [&](std::size_t Size) { return static_cast<std::size_t>(FEnd - FAt) >= Size; };
  if (!Has(2)) RaiseMalformed();
  const auto Count = ReadBigEndian<std::uint16_t>(FAt);
  FAt += 2;
  if (Count == EndOfRows) {
    while (Receive()) {
    }
    return false;
  }
  if (Count != FCells.size()) RaiseMalformed();
  for (TCell& Cell : FCells) {
    if (!Has(4)) RaiseMalformed();
    Cell.Size = static_cast<int>(ReadBigEndian<std::uint32_t>(FAt));
    FAt += 4;
    Cell.Bytes = Cell.Size < 0 ? nullptr : FAt;
    if (Cell.Size < 0) continue;
    if (!Has(static_cast<std::size_t>(Cell.Size))) RaiseMalformed();
    FAt += Cell.Size;
  }
  return true;
}

void TPostgreSQLCopyCursor::GiveWay(std::string_view What) {
  throw EDatabaseError(
      Format("%s: the rows of %s are still being read through this connection, which outside "
             "a transaction takes no other statement meanwhile",
             What, FSource.Name));
}

void TPostgreSQLCopyCursor::Abandon() noexcept {
  FreeRow();
  if (!FOpen) return;
  FOpen = false;
  FSource.Session.Vacate(*this);
  // What is left may be much: better to stop the server than to read it all.
  FSource.Session.DropRows();
}

}  // namespace velkrund

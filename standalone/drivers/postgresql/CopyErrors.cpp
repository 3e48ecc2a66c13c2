// The context of an error has one line per level of what the server was doing, e.g.
//   PL/pgSQL function check_it() line 3 at RAISE
//   COPY orders, line 17, column price: "12,5"
// Of binary data it does not show the value:
//   COPY orders, line 17, column price

#include "standalone/drivers/postgresql/CopyErrors.h"

#include <algorithm>
#include <optional>

#include "standalone/drivers/postgresql/Libpq.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

/// What follows Start in the first line that begins with it; empty when none does.
std::string_view BehindLineStart(std::string_view Context, std::string_view Start) {
  std::size_t At = Context.find(Start);
  while (At != std::string_view::npos && At != 0 && Context[At - 1] != '\n') At = Context.find(Start, At + 1);
  return At == std::string_view::npos ? std::string_view() : Context.substr(At + Start.size());
}

/// What follows the table's name in the line about the COPY. Some languages put the name first.
std::string_view BehindTable(std::string_view Context, std::string_view TableName) {
  const std::string_view Told = BehindLineStart(Context, "COPY " + std::string(TableName));
  return Told.empty() ? BehindLineStart(Context, TableName) : Told;
}

/// Where the column is named, before a colon or at the end of the line; npos: nowhere.
std::size_t PlaceOf(std::string_view Text, const std::string& Column) {
  // French has a blank before the colon.
  const std::size_t At = std::min(Text.find(' ' + Column + ':'), Text.find(' ' + Column + " :"));
  const std::string_view Line = Text.substr(0, Text.find('\n'));
  return Line.ends_with(' ' + Column) ? std::min(At, Line.size() - Column.size() - 1) : At;
}

/// The column that is named first; of names that begin at the same place the longest.
std::string ColumnIn(std::string_view Text, const std::vector<std::string>& Columns) {
  std::size_t First = std::string_view::npos;
  std::string Result;
  for (const std::string& Column : Columns) {
    const std::size_t At = PlaceOf(Text, Column);
    if (At == std::string_view::npos || At > First || (At == First && Column.size() < Result.size())) continue;
    First = At;
    Result = Column;
  }
  return Result;
}

}  // namespace

TCopyErrorPlace PlaceOfCopyError(const TPostgreSQLResult& Error, std::string_view TableName,
                                 const std::vector<std::string>& Columns) {
  TCopyErrorPlace Result;
  Result.Column = Error.Diagnostic(PG_DIAG_COLUMN_NAME);
  const std::string_view Told = BehindTable(Error.Diagnostic(PG_DIAG_CONTEXT), TableName);
  const std::size_t Start = std::min(Told.find_first_of("0123456789"), Told.size());
  const std::size_t End = std::min(Told.find_first_not_of("0123456789", Start), Told.size());
  Result.Line = StrToInt64(Told.substr(Start, End - Start)).value_or(0);
  if (Result.Column.empty()) Result.Column = ColumnIn(Told.substr(End), Columns);
  return Result;
}

}  // namespace velkrund

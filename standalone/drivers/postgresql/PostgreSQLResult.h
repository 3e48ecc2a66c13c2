#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/ErrorInfo.h"

struct pg_conn;
struct pg_result;

namespace velkrund {

/// The server's answer to one statement, in text format unless it was asked for otherwise. Texts of cells are borrowed
/// from it. Rows and columns count from 0.
class TPostgreSQLResult {
 public:
  /// Takes Result over; null: the client had no memory, or no connection.
  explicit TPostgreSQLResult(pg_result* Result = nullptr) : FResult(Result) {}

  pg_result* Handle() const { return FResult.get(); }
  int RowCount() const;
  int ColumnCount() const;
  /// Empty for NULL.
  std::string_view Text(int Row, int Column) const;
  std::string Copy(int Row, int Column) const { return std::string(Text(Row, Column)); }
  std::int64_t Integer(int Row, int Column) const;
  bool Boolean(int Row, int Column) const { return Text(Row, Column) == "t"; }

  /// The server's word for what was done, e.g. "COMMIT" or "COPY 7".
  std::string_view Tag() const;
  /// The number in it; 0 when it has none.
  std::int64_t TagCount() const;

  /// Whether the server, or the client itself, reports an error.
  bool IsError() const;
  /// A part of an error; Field is one of the PG_DIAG codes. Empty when the server did not tell.
  std::string_view Diagnostic(int Field) const;

 private:
  struct TClear {
    void operator()(pg_result* Result) const;
  };

  std::unique_ptr<pg_result, TClear> FResult;
};

/// What, then what Result (or else the connection) says: message, code, detail and hint; then the statement unless it
/// is empty.
std::string PostgreSQLErrorText(std::string_view What, const pg_conn* Connection, const TPostgreSQLResult& Result,
                                std::string_view Statement = {});

/// What Result says beside its text: the kind of error, the server's code, and where it names them table and column.
/// Without a result, or without a code in it, the connection is at fault.
TErrorInfo PostgreSQLErrorInfo(const TPostgreSQLResult& Result, std::string_view Statement = {});

/// What the server remarks on the way, with its severity, on one line.
std::string PostgreSQLNoticeText(const pg_result* Notice);

}  // namespace velkrund

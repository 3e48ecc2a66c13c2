#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/drivers/Schema.h"

namespace velkrund {

class TPostgreSQLSession;

/// How the values of a column travel, both ways.
enum class TPostgreSQLType : std::uint8_t {
  Int2,
  Int4,
  Int8,
  Oid,  // unsigned, 32 bits
  Float4,
  Float8,
  Numeric,
  Money,
  Boolean,
  Text,
  Bytes,
  Date,
  Time,
  Timestamp,
  TimestampTz,
  TimeTz,
  Other,  // by the text that the engine writes and reads
};

/// What a value that is held as a text travels as where the engine does not read its text.
enum class TPostgreSQLSending : std::uint8_t {
  Characters,  // its bytes
  Jsonb,       // the same behind a number
  Uuid,        // 16 bytes
  OnlyText,    // what is not known here
};

/// A column as the engine knows it. What is said of a domain is that of the type below it.
struct TPostgreSQLColumn {
  TColumnInfo Info;
  TPostgreSQLType Type = TPostgreSQLType::Other;
  std::optional<int> MaxCharacters;  // of char(n), varchar(n)
  std::optional<int> MaxBytes;       // of the engine's own names
  std::optional<int> Scale;          // decimals of numeric(p,s); negative: zeros before the point
  std::optional<int> Fraction;       // decimals of a second, or of elements that have so many
  bool HasCollation = false;         // an order of texts, or of what is made of them
  std::string DomainOver;            // quoted name of the type below; empty: it is of no domain
  std::string OutputFunction;        // quoted name of what makes the text; empty: the value is read as it is
};

/// Of a column of type Text, TimeTz or Other.
TPostgreSQLSending SendingOf(const TPostgreSQLColumn& Column);

/// A table with what its description leaves out.
struct TPostgreSQLTable {
  std::string Oid;              // in decimal
  char Kind = 'r';              // pg_class.relkind
  bool RefersToItself = false;  // rows to others of the same table, in any order within one statement
  bool HasTriggers = false;     // or parts that may have some
  std::vector<TPostgreSQLColumn> Columns;

  bool IsPartitioned() const { return Kind == 'p'; }
  bool IsMaterializedView() const { return Kind == 'm'; }
};

/// Kind: pg_class.relkind.
TTableKind KindOfPostgreSQLTable(char Kind);

/// Reads a table from the catalogue. Raises EDatabaseError when it is not there. What begins messages.
TPostgreSQLTable ReadPostgreSQLTable(TPostgreSQLSession& Session, const TTableInfo& Table, const std::string& What);

/// A column of a statement's own answer, of a type without a modifier.
TPostgreSQLColumn PlainPostgreSQLColumn(std::int64_t Oid);

/// The column of that name; raises EDatabaseError when it is gone.
const TPostgreSQLColumn& ColumnOf(const TPostgreSQLTable& Table, std::string_view Name, const std::string& What);

/// A column of the rows of a query: the numbers of its type, which is no domain's, and of its modifier.
struct TPostgreSQLQueryColumn {
  std::string Name;
  unsigned Type;
  int Modifier;
};
/// The same columns in their order, named "c1", "c2" ... What begins messages.
std::vector<TPostgreSQLColumn> ReadPostgreSQLColumns(TPostgreSQLSession& Session,
                                                     const std::vector<TPostgreSQLQueryColumn>& Columns,
                                                     const std::string& What);

/// How amounts of type money are written and counted. The server's setting lc_monetary decides.
struct TPostgreSQLMoney {
  std::int64_t MinorUnits = 100;  // in one unit: a power of ten
  char DecimalPoint = '.';
};

/// The current setting; without asking when no column of Columns is an amount.
TPostgreSQLMoney ReadPostgreSQLMoney(TPostgreSQLSession& Session, const std::vector<TPostgreSQLColumn>& Columns);

/// The number that stands for bytea among the engine's types.
inline constexpr unsigned PostgreSQLBytesType = 17;

}  // namespace velkrund

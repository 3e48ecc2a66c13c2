#pragma once

#include <string>
#include <string_view>

#include "standalone/drivers/QueryText.h"
#include "standalone/drivers/Schema.h"

namespace velkrund {

/// What becomes of rows that a transaction has read, until its end.
enum class TRowLock {
  Stay,  // nobody deletes them
  Wait,  // nobody else locks them in either way; who has is waited for
};

/// A name between double quotes, inner ones doubled, as standard SQL has it.
std::string QuoteStandardName(std::string_view Name);

/// The name of a mark within a transaction.
std::string SavepointName(int Number);

/// The words that an engine's SQL has of its own. Text alone: needs neither the engine nor a connection.
class TDialect {
 public:
  virtual ~TDialect() = default;

  /// A name as it stands in SQL, whatever characters it is made of.
  virtual std::string QuoteName(std::string_view Name) const = 0;
  /// A table's quoted name, with its schema where needed.
  virtual std::string SQLName(const TTableInfo& Table) const = 0;
  /// What marks the place of a parameter. Number: from 1.
  virtual std::string ParameterMark(int Number) const = 0;
  /// The type of a column that holds every value of a kind. Kind: Int64, String or Bytes.
  virtual std::string ColumnType(TKvKind Kind) const = 0;
  /// What stands behind the type of a text column whose order is that of the bytes, whatever the database's language.
  virtual std::string_view ByteOrder() const = 0;
  /// What stands behind a CREATE TABLE whose rows are to stand in the order of their key.
  virtual std::string_view Clustered() const = 0;
  /// What stands behind a SELECT whose rows are to be locked; empty where a writing transaction has the whole database.
  virtual std::string_view RowLock(TRowLock Lock) const = 0;
  /// What has to be known of a query to find the parameters in it.
  virtual const TQuerySyntax& QuerySyntax() const = 0;

 protected:
  // Dialects are values; only whole ones are copied.
  TDialect() = default;
  TDialect(const TDialect&) = default;
  TDialect& operator=(const TDialect&) = default;
};

}  // namespace velkrund

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "standalone/drivers/postgresql/PostgreSQLTypes.h"
#include "velkrund/platform/ormtools/Currency.h"
#include "velkrund/platform/ormtools/Dates.h"

namespace velkrund {

/// One of the two forms of the data of a COPY: how rows are framed, and how values are written that the encoder has
/// found fit for their column. Without state. What returns false has no way to write that value and has written
/// nothing.
class TPostgreSQLForm {
 public:
  TPostgreSQLForm() = default;
  TPostgreSQLForm(const TPostgreSQLForm&) = delete;
  TPostgreSQLForm& operator=(const TPostgreSQLForm&) = delete;
  virtual ~TPostgreSQLForm() = default;

  /// What follows COPY ... FROM STDIN.
  virtual std::string_view Options() const = 0;
  /// What stands before the first row, and behind the last.
  virtual std::string_view Header() const = 0;
  virtual std::string_view Trailer() const = 0;
  virtual void StartRow(std::size_t Columns, std::string& Out) const = 0;
  /// Before each cell but the first.
  virtual void NextCell(std::string& Out) const = 0;
  virtual void EndRow(std::string& Out) const = 0;
  /// How many bytes the first of Rows has.
  virtual std::size_t FirstRowSize(std::string_view Rows) const = 0;

  virtual void Null(std::string& Out) const = 0;
  /// Type: one of the types of integers, whose range holds Value.
  virtual void Integer(std::int64_t Value, TPostgreSQLType Type, std::string& Out) const = 0;
  virtual void Real(double Value, std::string& Out) const = 0;
  virtual void Single(float Value, std::string& Out) const = 0;
  virtual void Boolean(bool Value, std::string& Out) const = 0;
  virtual void Date(TDateTime Value, std::string& Out) const = 0;
  /// Microseconds since midnight.
  virtual void Time(std::int64_t Value, std::string& Out) const = 0;
  virtual void Timestamp(TDateTime Value, std::string& Out) const = 0;
  /// Into a column of decimals.
  virtual void Amount(TCurrency Value, std::string& Out) const = 0;
  virtual bool Decimal(std::string_view Text, std::string& Out) const = 0;
  /// Scale: decimals of an amount, of which Decimal has no more.
  virtual bool Money(std::string_view Decimal, int Scale, const TPostgreSQLMoney& Money, std::string& Out) const = 0;
  /// Type: one of the types of dates and times; Text is a form that the engine takes for it.
  virtual bool MomentText(std::string_view Text, TPostgreSQLType Type, std::string& Out) const = 0;
  virtual bool Bytes(std::string_view Bytes, std::string& Out) const = 0;
  /// Sending: what the value travels as.
  virtual bool Characters(std::string_view Text, TPostgreSQLSending Sending, std::string& Out) const = 0;
};

/// What the engine's readers of texts take: every value has this form.
const TPostgreSQLForm& PostgreSQLTextForm();

/// What the engine works with. Costs it less than a text, and has no form of what is rarely met.
const TPostgreSQLForm& PostgreSQLBinaryForm();
/// Whether values of the column have this form at all.
bool HasPostgreSQLBinaryForm(const TPostgreSQLColumn& Column);

}  // namespace velkrund

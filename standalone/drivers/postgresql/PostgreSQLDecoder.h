#pragma once

#include <string_view>

#include "standalone/drivers/postgresql/PostgreSQLTypes.h"
#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

/// Reads the values of one column from the engine's binary format.
class TPostgreSQLDecoder {
 public:
  TPostgreSQLDecoder(const TPostgreSQLColumn& Column, const TPostgreSQLMoney& Money);

  /// Bytes: a cell that is not NULL; texts and byte strings are lent to Value. Raises EDatabaseError when Bytes are no
  /// such value.
  void Decode(std::string_view Bytes, TKvVariant& Value) const;

 private:
  void DecodeMoney(std::int64_t MinorUnits, TKvVariant& Value) const;
  void DecodeText(std::string_view Bytes, TKvVariant& Value) const;
  [[noreturn]] void RaiseMalformed() const;

  TPostgreSQLType FType;
  TPostgreSQLSending FSending;
  bool FCurrency;  // of numeric: a column of amounts
  std::int64_t FMinorUnits;
};

}  // namespace velkrund

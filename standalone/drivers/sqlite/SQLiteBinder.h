#pragma once

#include <string>

#include "standalone/drivers/sqlite/SQLiteTypes.h"
#include "velkrund/platform/ormtools/CodePage.h"
#include "velkrund/platform/ormtools/Variant.h"

struct sqlite3_stmt;

namespace velkrund {

/// What texts are in one database.
struct TSQLiteTexts {
  bool Wide = false;                                  // stored as UTF-16
  const TCodePage* CodePage = &TCodePage::Default();  // of 8-bit ones; borrowed
  bool AllowLoss = false;                             // what UTF-16 cannot hold is replaced
};

/// Puts values into one place of a prepared statement so that the engine stores exactly them: what its conversions
/// would change is refused. Bytes are lent, not copied: value and binder live until the statement has been reset.
class TSQLiteBinder {
 public:
  struct TColumn {
    TAffinity Affinity = TAffinity::None;
    bool HoldsBytes = false;   // 8-bit texts stay bytes
    int Scale = 0;             // declared decimals; a text with just as many is a number with zeros behind it
    bool IsRowNumber = false;  // the engine would put a number of its own in the place of NULL
  };
  /// Nothing: bound. Otherwise why the value cannot be stored.
  using TRefusal = const char*;

  /// Place: 1 for the first.
  TSQLiteBinder(sqlite3_stmt* Statement, int Place, const TColumn& Column, const TSQLiteTexts& Texts)
      : FStatement(Statement), FPlace(Place), FColumn(Column), FTexts(Texts) {}

  TRefusal Bind(const TKvVariant& Value);
  /// Of the last one: it was bound with replacement characters / refused, and only for want of leave to do so.
  bool Replaced() const { return FReplaced; }
  bool RefusedLoss() const { return FRefusedLoss; }

 private:
  TRefusal BindInteger(std::int64_t Value);
  TRefusal BindUnsigned(std::uint64_t Value);
  TRefusal BindReal(double Value);
  TRefusal BindCurrency(TCurrency Value);
  TRefusal BindText(std::string_view Text);
  TRefusal LendText(std::string_view Text);  // which no conversion would change
  TRefusal BindBytes(std::string_view Bytes);
  TRefusal BindAnsi(std::string_view Bytes);
  TRefusal BindNumberText(std::string_view Text);
  TRefusal BindReplaced(std::string_view Text);
  TRefusal Result(int Code);

  sqlite3_stmt* FStatement;
  int FPlace;
  TColumn FColumn;
  TSQLiteTexts FTexts;
  std::string FScratch;  // texts made here, lent to the engine
  bool FReplaced = false, FRefusedLoss = false;
};

}  // namespace velkrund

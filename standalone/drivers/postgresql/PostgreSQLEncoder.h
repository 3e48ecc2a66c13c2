#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "standalone/drivers/postgresql/PostgreSQLForm.h"
#include "standalone/drivers/postgresql/PostgreSQLTypes.h"
#include "velkrund/platform/ormtools/CodePage.h"
#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

/// Writes the values of one column as COPY reads them, so that the engine stores exactly them: what its readers would
/// change is refused.
class TPostgreSQLEncoder {
 public:
  /// Nothing: written. Otherwise why the value cannot be stored.
  using TRefusal = const char*;

  /// CodePage: of 8-bit texts; outlives the encoder. AllowLoss: as an append has it. Form: one that values of the
  /// column have.
  TPostgreSQLEncoder(const TPostgreSQLColumn& Column, const TPostgreSQLMoney& Money, const TCodePage& CodePage,
                     bool AllowLoss, const TPostgreSQLForm& Form);

  /// Appends Value to Out. After a refusal Out may hold a part of it.
  TRefusal Append(const TKvVariant& Value, std::string& Out);
  /// Whether the last refusal was only of the form, so that the value may have another.
  bool LacksForm() const { return FLacksForm; }
  void SetForm(const TPostgreSQLForm& Form) { FForm = &Form; }
  /// The last value is not going to be used: what it has lost does not count.
  void TakeBack();

  /// Values that were written with a loss so far; whether the last refusal was for want of leave to do so.
  std::int64_t ChangedValues() const { return FChangedValues; }
  bool RefusedLoss() const { return FRefusedLoss; }

  /// The highest and the lowest integer that was written so far; nothing when there was none.
  std::optional<std::int64_t> Highest() const { return FHasIntegers ? std::optional(FHighest) : std::nullopt; }
  std::optional<std::int64_t> Lowest() const { return FHasIntegers ? std::optional(FLowest) : std::nullopt; }

 private:
  /// Counts a loss, or refuses it.
  TRefusal Lose(TRefusal Refusal);
  TRefusal Written(bool IsWritten);
  TRefusal PutInteger(std::int64_t Value, std::string& Out);
  TRefusal PutWhole(std::int64_t Value, std::int64_t Min, std::int64_t Max, std::string& Out);
  TRefusal PutUnsigned(std::uint64_t Value, std::string& Out);
  TRefusal PutReal(double Value, std::string& Out);
  TRefusal PutFloat(double Value, std::string& Out) const;
  TRefusal PutCurrency(TCurrency Value, std::string& Out);
  TRefusal PutDecimal(std::string_view Decimal, std::string& Out);
  TRefusal PutMoney(std::string_view Decimal, std::string& Out);
  TRefusal PutBoolean(bool Value, std::string& Out);
  TRefusal PutMoment(const TKvVariant& Value, std::string& Out);
  TRefusal PutText(std::string_view Text, std::string& Out);
  TRefusal PutNumberText(std::string_view Text, std::string& Out);
  TRefusal PutMomentText(std::string_view Text, std::string& Out);
  TRefusal PutCharacters(std::string_view Text, std::string& Out);
  TRefusal PutBytes(std::string_view Bytes, std::string& Out);
  TRefusal PutAnsi(std::string_view Bytes, std::string& Out);
  /// The value's own text, into a column of texts.
  TRefusal PutOwnText(const TKvVariant& Value, std::string& Out);

  const TPostgreSQLForm* FForm;
  TPostgreSQLSending FSending;
  TPostgreSQLType FType;
  std::optional<int> FMaxCharacters;
  std::optional<int> FMaxBytes;
  std::optional<int> FScale;
  std::optional<int> FFraction;
  TPostgreSQLMoney FMoney;
  int FMoneyScale = 0;  // decimals of an amount
  const TCodePage* FCodePage;
  bool FHasIntegers = false;
  std::int64_t FHighest = 0;
  std::int64_t FLowest = 0;
  std::string FScratch;
  std::string FDecoded;   // an 8-bit text
  std::string FReplaced;  // a text with replacement characters
  bool FAllowLoss;
  bool FRefusedLoss = false;
  bool FLacksForm = false;
  bool FLost = false;  // the last value has lost something, which is counted
  std::int64_t FChangedValues = 0;
};

}  // namespace velkrund

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

/// One column of a record. Reading gives the value in the table's current row; writing fills the record buffer that the
/// next append takes. Owned by its record.
class TField {
 public:
  /// Kind: what the column is declared to hold; single values may be of another kind. Null when the column says
  /// nothing.
  TField(std::string Name, TKvKind Kind) : FName(std::move(Name)), FKind(Kind) {}
  TField(const TField&) = delete;
  TField& operator=(const TField&) = delete;
  virtual ~TField() = default;

  const std::string& Name() const { return FName; }
  TKvKind Kind() const { return FKind; }

  /// The value in the current row. Valid until the table moves or the field is read again; may borrow the engine's
  /// bytes. Raises EDatabaseError.
  virtual const TKvVariant& Value() = 0;

  /// The field's place in the record buffer, to be filled by the caller; the field then counts as assigned. Bytes that
  /// the caller lends it must live until the record is appended or cleared.
  TKvVariant& Buffer() { return FAssigned = true, FBuffer; }
  void SetValue(const TKvVariant& Value) { Buffer() = Value; }
  /// What stands in the record buffer, and whether anything was put there since the last Clear.
  const TKvVariant& BufferedValue() const { return FBuffer; }
  bool Assigned() const { return FAssigned; }
  void Clear() { FAssigned = false, FBuffer.SetNull(); }

  /// The value as a block of bytes, for fields that hold a whole file. GetDataSize is 0 for null.
  std::int64_t GetDataSize();
  /// Copies the first Size bytes (at most GetDataSize) to Data.
  void GetData(char* Data, std::int64_t Size);
  void SetData(std::string_view Data) { Buffer().SetBytes(Data); }

 private:
  std::string FName;
  TKvKind FKind;
  TKvVariant FBuffer;
  bool FAssigned = false;
};

/// The fields of a table in their physical order. Owned by its table.
class TRecord {
 public:
  virtual ~TRecord() = default;
  virtual int FieldCount() const = 0;
  /// Index: 0 .. FieldCount - 1.
  virtual TField& Fields(int Index) = 0;

  /// The field of that name, the exact one first, else the first that differs in case only; null when there is none.
  TField* FindField(std::string_view Name);
  /// The same; raises EDatabaseError naming the field when there is none.
  TField& FieldByName(std::string_view Name);
  /// Empties the record buffer: every field null and not assigned.
  void ClearData();
};

}  // namespace velkrund

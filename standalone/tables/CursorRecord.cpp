#include "standalone/tables/CursorRecord.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

class TCursorRecord::TCursorField final : public TField {
 public:
  TCursorField(TCursorRecord& Record, const TColumnInfo& Column, int Place)
      : TField(Column.Name, Column.Kind), FRecord(Record), FColumn(Place) {}

  const TKvVariant& Value() override {
    if (FColumn < 0) RaiseNoValue("the walk does not read it");
    if (FRecord.FDecoded) return FRecord.FDecoded[FColumn];
    if (FRow != FRecord.FRow) {
      if (!FRecord.FCursor) RaiseNoValue("it stands on no row");
      FRecord.FCursor->Read(FColumn, FValue);
      FRow = FRecord.FRow;
    }
    return FValue;
  }
  void SetColumn(int Column) { FColumn = Column; }

 private:
  [[noreturn]] void RaiseNoValue(const char* Reason) const {
    throw EDatabaseError(Format("Field '%s' of %s has no value: %s", Name(), FRecord.FWhat, Reason));
  }

  TCursorRecord& FRecord;
  int FColumn;             // of the cursor; -1: none
  std::int64_t FRow = -1;  // the row of FValue
  TKvVariant FValue;
};

TCursorRecord::TCursorRecord(std::string What, std::span<const TColumnInfo> Columns) : FWhat(std::move(What)) {
  FFields.reserve(Columns.size());
  for (const TColumnInfo& Column : Columns)
    FFields.push_back(std::make_unique<TCursorField>(*this, Column, static_cast<int>(FFields.size())));
}

TCursorRecord::~TCursorRecord() = default;

void TCursorRecord::SetColumns(std::span<const int> Places) {
  for (const auto& Field : FFields) static_cast<TCursorField&>(*Field).SetColumn(-1);
  for (std::size_t Column = 0; Column < Places.size(); ++Column)
    static_cast<TCursorField&>(Fields(Places[Column])).SetColumn(static_cast<int>(Column));
}

}  // namespace velkrund

#include "standalone/tables/CursorRecord.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

class TCursorRecord::TCursorField final : public TField {
 public:
  TCursorField(TCursorRecord& Record, const TColumnInfo& Column, int Index)
      : TField(Column.Name, Column.Kind), FRecord(Record), FIndex(Index) {}

  const TKvVariant& Value() override {
    if (FRecord.FDecoded) return FRecord.FDecoded[FIndex];
    if (FRow != FRecord.FRow) {
      if (!FRecord.FCursor)
        throw EDatabaseError(Format("Field '%s' of %s has no value: it stands on no row", Name(), FRecord.FWhat));
      FRecord.FCursor->Read(FIndex, FValue);
      FRow = FRecord.FRow;
    }
    return FValue;
  }

 private:
  TCursorRecord& FRecord;
  int FIndex;
  std::int64_t FRow = -1;  // the row of FValue
  TKvVariant FValue;
};

TCursorRecord::TCursorRecord(std::string What, std::span<const TColumnInfo> Columns) : FWhat(std::move(What)) {
  FFields.reserve(Columns.size());
  for (const TColumnInfo& Column : Columns)
    FFields.push_back(std::make_unique<TCursorField>(*this, Column, static_cast<int>(FFields.size())));
}

TCursorRecord::~TCursorRecord() = default;

}  // namespace velkrund

#include "standalone/tables/RowRecord.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

class TRowRecord::TRowField final : public TField {
 public:
  TRowField(TRowRecord& Record, const std::string& Name, TKvKind Kind, std::size_t Index)
      : TField(Name, Kind), FRecord(Record), FIndex(Index) {}

  const TKvVariant& Value() override {
    if (!FRecord.FRow)
      throw EDatabaseError(
          Format("Field '%s' of table '%s' has no value: the table stands on no row", Name(), FRecord.FTableName));
    return (*FRecord.FRow)[FIndex];
  }

 private:
  TRowRecord& FRecord;
  std::size_t FIndex;
};

TRowRecord::TRowRecord(std::string TableName, std::span<const std::pair<std::string, TKvKind>> Fields)
    : FTableName(std::move(TableName)) {
  FFields.reserve(Fields.size());
  for (const auto& [Name, Kind] : Fields)
    FFields.push_back(std::make_unique<TRowField>(*this, Name, Kind, FFields.size()));
}

TRowRecord::~TRowRecord() = default;

TField& TRowRecord::Fields(int Index) { return *FFields.at(static_cast<std::size_t>(Index)); }

}  // namespace velkrund

#include "standalone/discard/DiscardTable.h"

#include <deque>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

class TDiscardField final : public TField {
 public:
  explicit TDiscardField(const std::string& Name) : TField(Name, TKvKind::Currency) {}

  const TKvVariant& Value() override {
    throw EDatabaseError(Format("Field '%s' has no value: its table keeps no rows", Name()));
  }
};

}  // namespace

class TDiscardTable::TDiscardRecord final : public TRecord {
 public:
  explicit TDiscardRecord(const std::vector<std::string>& Names) {
    for (const std::string& Name : Names) FFields.emplace_back(Name);
  }

  int FieldCount() const override { return static_cast<int>(FFields.size()); }
  TField& Fields(int Index) override { return FFields.at(static_cast<std::size_t>(Index)); }

 private:
  std::deque<TDiscardField> FFields;
};

TDiscardTable::TDiscardTable(std::string TableName, const std::vector<std::string>& FieldNames)
    : FTableName(std::move(TableName)), FRecord(std::make_unique<TDiscardRecord>(FieldNames)) {}

TDiscardTable::~TDiscardTable() = default;

TRecord& TDiscardTable::Record() { return *FRecord; }

}  // namespace velkrund

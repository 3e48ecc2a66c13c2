#pragma once

#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "velkrund/platform/database/BLOBTable.h"
#include "velkrund/platform/dictionary/TableDescription.h"
#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

/// Carries the rows of the table inside a BLOB field over into one that a structure describes.
class TBLOBTableCopy {
 public:
  /// TableName, FieldName: for messages. Structure: of the new table. Mapping: of its fields. Raises EDicUtilError when
  /// the platform makes no such table.
  TBLOBTableCopy(std::string TableName, std::string FieldName, const TDicTableDescription& Structure,
                 TStringPairs Mapping);

  /// False, and New stays, when Old holds no table but plain bytes. Raises EDicUtilError for a damaged one.
  bool Copy(std::string_view Old, std::string& New);

  /// Fields of old tables that no new field takes, and that had a value.
  const std::set<std::string>& LostFields() const { return FLost; }

 private:
  std::unique_ptr<TBLOBTable> Open(std::string_view Bytes) const;
  std::unique_ptr<TBLOBTable> Make() const;
  void CopyRows(TBLOBTable& Old, TBLOBTable& New);
  void NoteLost(TBLOBTable& Old, const std::set<const TField*>& Taken);

  const std::string FTableName, FFieldName;
  TBLOBTable::TFields FFields;
  const TStringPairs FMapping;
  std::set<std::string> FLost;
};

}  // namespace velkrund

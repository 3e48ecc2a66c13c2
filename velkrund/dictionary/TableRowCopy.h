#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "velkrund/dictionary/BLOBTableCopy.h"
#include "velkrund/platform/database/BaseManager.h"
#include "velkrund/platform/database/Tables.h"

namespace velkrund {

/// Carries the rows of one table over into another one, field by field as a mapping says.
class TTableRowCopy {
 public:
  /// The name of the old field for a new one; empty: it gets nothing.
  using TOldName = std::function<std::string(const std::string& NewName)>;

  /// Both borrowed. Fields whose old one is not there are left to the table.
  TTableRowCopy(TTable& Old, TTable& New, const TOldName& OldName);

  /// Values of the field that hold a table are carried over by Copy.
  void CarryTables(const std::string& NewName, std::unique_ptr<TBLOBTableCopy> Copy);
  /// Whether both fields hold blocks of bytes.
  bool IsBLOB(const std::string& NewName) const;

  /// The new table's automatic numbering stands behind the highest key afterwards. Otherwise nobody but the engine
  /// moves it.
  void SetCanRecreateAutoSequence(bool Value) { FCanRecreateAutoSequence = Value; }

  /// By a statement of the engine, which BaseManager, of the new table, runs. OldDatabase: of the old one; nothing, and
  /// nothing was done, where that may change values or there are tables to carry over.
  std::optional<std::int64_t> CopyByStatement(TODBCBaseManager& BaseManager, const std::string& OldDatabase) const;

  /// Row by row. Counted is called behind each one with their number; false ends the copy there. False: it did.
  bool CopyByRecord(const std::function<bool(std::int64_t Rows)>& Counted);

  /// Fields inside tables of BLOB fields that had a value which no new field takes: "PICTURES.SIZE".
  std::set<std::string> LostFields() const;

 private:
  struct TPair {
    TField* Old;
    TField* New;
    std::unique_ptr<TBLOBTableCopy> Tables = nullptr;  // null: there are none to carry over
    std::string Carried = {};                          // the value on its way
  };

  static void CopyValue(TPair& Pair);

  TTable& FOld;
  TTable& FNew;
  std::vector<TPair> FPairs;
  bool FCanRecreateAutoSequence = false;
};

}  // namespace velkrund

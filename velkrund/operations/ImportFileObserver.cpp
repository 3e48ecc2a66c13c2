#include "velkrund/operations/ImportFileObserver.h"

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

std::optional<TLoadTarget> TImportFileObserver::TargetOf(const TEIFile&, const TEISection& Section) {
  const bool IsTableData = Section.ObjectClass.Role() == TSectionRole::TableData;
  const auto TableName = IsTableData ? Section.FindParam("TableName") : std::nullopt;
  if (!TableName) return std::nullopt;
  try {
    const auto Table = BaseMng().GetUserTable(*TableName, FDatabaseName, true);
    if (Table) return TLoadTarget{Table->TableName()};
  } catch (const EDatabaseError&) {
    // The section's import meets the same error, and a person is asked about it.
  }
  return std::nullopt;
}

}  // namespace velkrund

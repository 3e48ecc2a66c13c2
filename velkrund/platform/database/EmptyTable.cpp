#include "velkrund/platform/database/EmptyTable.h"

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

void EmptyTable(TODBCTable& Table, const std::string& DatabaseName) {
  BaseMng().ExecuteSQL("DELETE FROM " + Table.SQLName(), DatabaseName);
  if (const std::int64_t Rows = Table.RecordCount())
    throw EDatabaseError(
        Format("Cannot empty the table '%s': %d of its rows stay, kept by a trigger or a rule of the database",
               Table.TableName(), Rows));
}

}  // namespace velkrund

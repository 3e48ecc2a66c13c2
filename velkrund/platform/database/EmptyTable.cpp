#include "velkrund/platform/database/EmptyTable.h"

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

std::int64_t EmptyTable(TODBCTable& Table, const std::string& DatabaseName, const std::string& Remark) {
  // Not even that, of a table without rows: an engine can refuse the statement by itself, and triggers of it fire.
  if (!Table.HasRecords()) return 0;
  BaseMng().Notice(LText("M_Velkrund_ComUtils_Emptying", Table.TableName()).Local() +
                   (Remark.empty() ? Remark : ": " + Remark));
  std::int64_t Deleted = 0;
  try {
    Deleted = BaseMng().ExecuteSQL("DELETE FROM " + Table.SQLName(), DatabaseName);
  } catch (const EDatabaseError& Error) {
    TErrorInfo Info = Error.Info();
    Info.Fill({.Table = Table.TableName()});
    std::string Message = Format("Cannot empty the table '%s': %s", Table.TableName(), Error.what());
    if (Info.Code == TErrorCode::References) {
      // No new row is at fault, but one that stays: a constraint refuses to let go what it refers to.
      Info.Code = TErrorCode::RowRefused;
      Message += ". Replace the rows of both tables in one run, or keep the rows that are there";
    }
    throw EDatabaseError(Message, std::move(Info));
  }
  if (Table.HasRecords())
    throw EDatabaseError(
        Format("Cannot empty the table '%s': %d of its rows stay, kept by a trigger or a rule of the database",
               Table.TableName(), Table.RecordCount()),
        {.Code = TErrorCode::TriggerRefused, .Table = Table.TableName()});
  return Deleted;
}

}  // namespace velkrund

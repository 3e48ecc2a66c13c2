#include "velkrund/platform/database/Tables.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

void TTable::SetSelection(const std::string& Condition) {
  if (!Condition.empty())
    throw EDatabaseError(
        Format("The rows of table '%s' cannot be selected by a condition: it is no table of an SQL "
               "engine",
               TableName()));
}

void TTable::SetUpdateByKey(bool Value) {
  if (Value)
    throw EDatabaseError(Format("Rows of table '%s' cannot be updated: it is no table of an SQL engine", TableName()));
}

}  // namespace velkrund

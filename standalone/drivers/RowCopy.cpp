#include "standalone/drivers/RowCopy.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

std::string CopyFailed(const TTableInfo& Source, const TTableInfo& Target) {
  return Format("Cannot copy the rows of table '%s' into table '%s'", FullName(Source), FullName(Target));
}

void CheckTakesCopies(const TTableInfo& Source, const TTableDescription& Target, std::span<const TColumnPair> Pairs,
                      bool ReadOnly) {
  const std::string Name = FullName(Target.Table);
  const std::string What = CopyFailed(Source, Target.Table);
  if (ReadOnly)
    throw EDatabaseError(What + ": the database is opened for reading only", {.Code = TErrorCode::DatabaseReadOnly});
  if (Target.Table.Kind != TTableKind::Table)
    throw EDatabaseError(Format("%s: '%s' is no table of the database's own", What, Name), {.Table = Name});
  if (Pairs.empty()) throw EDatabaseError(What + ": no field is named", {.Table = Name});
  for (const TColumnPair& Pair : Pairs) {
    const TColumnInfo& Column = Target.Columns[static_cast<std::size_t>(Pair.To)];
    if (Column.Generated)
      throw EDatabaseError(Format("%s: the engine computes the field '%s'", What, Column.Name),
                           {.Table = Name, .Column = Column.Name});
  }
}

void CheckNothingActs(const TTableInfo& Source, const TTableInfo& Target, const std::vector<std::string>& Actions) {
  if (Actions.empty()) return;
  throw EDatabaseError(Format("%s: what '%s' has for new rows would act on them (%s); drop it, or switch it off, for "
                              "the copy",
                              CopyFailed(Source, Target), FullName(Target), JoinedInShort(Actions)),
                       {.Code = TErrorCode::TriggerRefused, .Table = FullName(Target)});
}

}  // namespace velkrund

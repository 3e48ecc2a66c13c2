#include "standalone/drivers/sqlite/SQLiteReferences.h"

#include <algorithm>

#include "standalone/drivers/sqlite/SQLiteStatement.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

std::string KeysOf(const TTableInfo& Table) { return Format("foreign keys of table '%s'", Table.Name); }

}  // namespace

TSQLiteReferences::TSQLiteReferences(TSchemaReader& Schema, const TTableInfo& Table) : FSchema(Schema) {
  std::vector<TTableInfo> Tables = {Table};
  for (const TForeignKey& Key : Schema.ForeignKeys())
    if (Key.To == Table && std::find(Tables.begin(), Tables.end(), Key.From) == Tables.end())
      Tables.push_back(Key.From);
  for (const TTableInfo& One : Tables) FBefore.push_back(Count(One));
}

TSQLiteReferences::TCounted TSQLiteReferences::Count(const TTableInfo& Table) const {
  try {
    return {Table, FSchema.BrokenReferences(Table)};
  } catch (const EDatabaseError& Error) {
    if (!IsSQLiteMisunderstanding(Error.Info())) throw;
    return {Table, {}, Error.what()};
  }
}

TSQLiteReferences::TChanges TSQLiteReferences::Changes() const {
  TChanges Result;
  for (const TCounted& Before : FBefore) {
    const TCounted Now = Count(Before.Table);
    const std::int64_t More = Now.Broken.Count - Before.Broken.Count;
    if (!Now.Error.empty() && Now.Error == Before.Error)
      Result.NotBefore.push_back(KeysOf(Now.Table));
    else if (!Now.Error.empty())
      Result.Broken.push_back(Now.Error);
    else if (More > 0 && Before.Error.empty())
      Result.Worse.push_back(Format("%d more %s of table '%s' %s to nothing (%s)", More, More == 1 ? "row" : "rows",
                                    Now.Table.Name, More == 1 ? "refers" : "refer", Now.Broken.Example));
  }
  return Result;
}

}  // namespace velkrund

// The part of Velkrund.h that tells the tables of a database.

#include "jobs/databases/DatabaseInfo.h"
#include "standalone/drivers/Schema.h"
#include "velkrund/module/CHandles.h"
#include "velkrund/operations/OperationErrors.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

using TTables = std::vector<TDatabaseInfo::TTableSize>;

const TTables& TablesOf(VelkrundOperation* Operation) {
  const TUtilOperationInterface& Object = *OperationAtRest(Operation).Object;
  if (const auto* const Job = dynamic_cast<const TJobDatabaseInfo*>(&Object.Operation())) return Job->Info().Tables;
  throw EPropertyError(Format("A %s finds no tables; a TJobDatabaseInfoInterface does", Object.ClassType().Name()));
}

/// The names as hosts see them, one for each table.
const std::string& NameOf(VelkrundOperation& Operation, const TTables& Tables, std::size_t Index) {
  if (Operation.Texts.empty())
    for (const auto& Table : Tables) Operation.Texts.push_back(FullName(Table.Table));
  return Operation.Texts[Index];
}

}  // namespace

}  // namespace velkrund

using namespace velkrund;

int32_t VelkrundTableCount(VelkrundOperation* DatabaseInfo) {
  return GuardedC<std::int32_t>(-1, [&] { return static_cast<std::int32_t>(TablesOf(DatabaseInfo).size()); });
}

int VelkrundDescribeTable(VelkrundOperation* DatabaseInfo, int32_t Index, VelkrundTableInfo* Info) {
  return GuardedC(0, [&] {
    const TTables& Tables = TablesOf(DatabaseInfo);
    RequireCStruct(Info, "Info");
    if (Index < 0 || static_cast<std::size_t>(Index) >= Tables.size())
      throw EListError(Format("Table %d is out of bounds", Index));
    const auto At = static_cast<std::size_t>(Index);
    const auto& [Table, Rows, Bytes, Problem] = Tables[At];
    ToCStruct(Info, {sizeof *Info, NameOf(*DatabaseInfo, Tables, At).c_str(), KindText(Table.Kind),
                     Problem ? Problem->Message.c_str() : "", Rows.value_or(-1), Bytes.value_or(-1)});
    return 1;
  });
}

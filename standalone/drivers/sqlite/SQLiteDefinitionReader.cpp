#include "standalone/drivers/sqlite/SQLiteDefinitionReader.h"

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

std::vector<TDefinedObject> TSQLiteDefinitionReader::Objects() { throw EDatabaseError("to be written"); }
TDicTableDescription TSQLiteDefinitionReader::Table(const TTableInfo&, const TDescribeOptions&) {
  throw EDatabaseError("to be written");
}
TDicViewDescription TSQLiteDefinitionReader::View(const TTableInfo&) { throw EDatabaseError("to be written"); }
TDicGeneratorDescription TSQLiteDefinitionReader::Generator(const TTableInfo&) {
  throw EDatabaseError("to be written");
}
TDicProcedureDescription TSQLiteDefinitionReader::Procedure(const TTableInfo&) {
  throw EDatabaseError("to be written");
}
std::int64_t TSQLiteDefinitionReader::GeneratorValue(const TTableInfo&) { throw EDatabaseError("to be written"); }
std::vector<std::string> TSQLiteDefinitionReader::LeftBehind() { return {}; }

}  // namespace velkrund

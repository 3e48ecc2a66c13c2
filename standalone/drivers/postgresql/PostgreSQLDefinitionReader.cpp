#include "standalone/drivers/postgresql/PostgreSQLDefinitionReader.h"

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

std::vector<TDefinedObject> TPostgreSQLDefinitionReader::Objects() { throw EDatabaseError("to be written"); }
TDicTableDescription TPostgreSQLDefinitionReader::Table(const TTableInfo&, const TDescribeOptions&) {
  throw EDatabaseError("to be written");
}
TDicViewDescription TPostgreSQLDefinitionReader::View(const TTableInfo&) { throw EDatabaseError("to be written"); }
TDicGeneratorDescription TPostgreSQLDefinitionReader::Generator(const TTableInfo&) {
  throw EDatabaseError("to be written");
}
TDicProcedureDescription TPostgreSQLDefinitionReader::Procedure(const TTableInfo&) {
  throw EDatabaseError("to be written");
}
std::int64_t TPostgreSQLDefinitionReader::GeneratorValue(const TTableInfo&) { throw EDatabaseError("to be written"); }
std::vector<std::string> TPostgreSQLDefinitionReader::LeftBehind() { return {}; }

}  // namespace velkrund

#include "standalone/drivers/postgresql/PostgreSQLScriptWriter.h"

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

std::string TPostgreSQLScriptWriter::TablePattern() const { return "CREATE TABLE {table} ({items}){words}"; }
TScript TPostgreSQLScriptWriter::Table(const TDicTableDescription&, const TTableParts&, const std::string&) const {
  throw EDatabaseError("to be written");
}
TScript TPostgreSQLScriptWriter::View(const TDicViewDescription&, bool) const { throw EDatabaseError("to be written"); }
TScript TPostgreSQLScriptWriter::Generator(const TDicGeneratorDescription&, std::optional<std::int64_t>) const {
  throw EDatabaseError("to be written");
}
TScript TPostgreSQLScriptWriter::Procedure(const TDicProcedureDescription&, bool) const {
  throw EDatabaseError("to be written");
}
std::string TPostgreSQLScriptWriter::DropTable(const TDicObjectDescription&) const {
  throw EDatabaseError("to be written");
}
std::string TPostgreSQLScriptWriter::DropView(const TDicViewDescription&) const {
  throw EDatabaseError("to be written");
}
std::string TPostgreSQLScriptWriter::DropGenerator(const TDicObjectDescription&) const {
  throw EDatabaseError("to be written");
}
std::string TPostgreSQLScriptWriter::DropProcedure(const TDicProcedureDescription&) const {
  throw EDatabaseError("to be written");
}

}  // namespace velkrund

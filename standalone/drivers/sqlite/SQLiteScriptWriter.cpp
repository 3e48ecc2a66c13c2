#include "standalone/drivers/sqlite/SQLiteScriptWriter.h"

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

std::string TSQLiteScriptWriter::TablePattern() const { return "CREATE TABLE {table} ({items}){words}"; }
TScript TSQLiteScriptWriter::Table(const TDicTableDescription&, const TTableParts&, const std::string&) const {
  throw EDatabaseError("to be written");
}
TScript TSQLiteScriptWriter::View(const TDicViewDescription&, bool) const { throw EDatabaseError("to be written"); }
TScript TSQLiteScriptWriter::Generator(const TDicGeneratorDescription&, std::optional<std::int64_t>) const {
  throw EDatabaseError("to be written");
}
TScript TSQLiteScriptWriter::Procedure(const TDicProcedureDescription&, bool) const {
  throw EDatabaseError("to be written");
}
std::string TSQLiteScriptWriter::DropTable(const TDicObjectDescription&) const {
  throw EDatabaseError("to be written");
}
std::string TSQLiteScriptWriter::DropView(const TDicViewDescription&) const { throw EDatabaseError("to be written"); }
std::string TSQLiteScriptWriter::DropGenerator(const TDicObjectDescription&) const {
  throw EDatabaseError("to be written");
}
std::string TSQLiteScriptWriter::DropProcedure(const TDicProcedureDescription&) const {
  throw EDatabaseError("to be written");
}

}  // namespace velkrund

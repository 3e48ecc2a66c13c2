// Any text as what stands between the brackets of a table's declaration: what SQLite takes for a table is described,
// and made again it is described the same.

#include <cstdint>
#include <cstdlib>

#include "standalone/drivers/sqlite/SQLiteDriver.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {
namespace {

std::unique_ptr<TConnection> Empty() {
  return TSQLiteDriver().Connect({"sqlite", ":memory:"}, {.CreateMissing = true});
}

bool Takes(TConnection& Database, const std::string& Statement) {
  try {
    Database.Execute(Statement);
    return true;
  } catch (const EDatabaseError&) {
    return false;
  }
}

void Check(std::string_view Items) {
  // More than one statement, or one that is a query of its own, says nothing of declarations.
  if (Items.find(';') != std::string_view::npos) return;
  const auto Source = Empty();
  if (!Takes(*Source, "CREATE TABLE t (" + std::string(Items))) return;
  const TDicTableDescription Table = Source->Definitions().Table({"t", {}}, {});
  const auto Target = Empty();
  for (const TScriptStatement& Statement :
       Source->Scripts().Table(Table, {}, Source->Scripts().TablePattern()).Statements)
    Target->Execute(Statement.Text);
  if (Target->Definitions().Table({"t", {}}, {}) != Table) std::abort();
}

}  // namespace
}  // namespace velkrund

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  velkrund::Check({reinterpret_cast<const char*>(Data), Size});
  return 0;
}

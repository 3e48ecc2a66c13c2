#include "standalone/drivers/sqlite/SQLiteSurroundings.h"

#include <utility>

namespace velkrund {

TSQLiteSurroundings::TSQLiteSurroundings(TSQLiteDatabase& Database, TTableInfo Object, TRenamedFields Renamed)
    : FDatabase(Database), FObject(std::move(Object)), FRenamed(std::move(Renamed)) {}

void TSQLiteSurroundings::SetAside() { static_cast<void>(FDatabase); }

void TSQLiteSurroundings::PutBack() {}

}  // namespace velkrund

#include "standalone/drivers/postgresql/PostgreSQLSurroundings.h"

#include <utility>

namespace velkrund {

TPostgreSQLSurroundings::TPostgreSQLSurroundings(TPostgreSQLSession& Session, TTableInfo Object, TRenamedFields Renamed)
    : FSession(Session), FObject(std::move(Object)), FRenamed(std::move(Renamed)) {}

void TPostgreSQLSurroundings::SetAside() { static_cast<void>(FSession); }

void TPostgreSQLSurroundings::PutBack() {}

}  // namespace velkrund

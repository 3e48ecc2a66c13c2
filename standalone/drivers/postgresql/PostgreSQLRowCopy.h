#pragma once

#include "standalone/drivers/postgresql/PostgreSQLTypes.h"

namespace velkrund {

/// Whether the engine, told to put the values of one column into another, stores of each what the decoder of From and
/// the encoder of To would make of it, or refuses the same ones. HasUtf8: the database's encoding is UTF-8.
bool PostgreSQLCopiesExactly(const TPostgreSQLColumn& From, const TPostgreSQLColumn& To, bool HasUtf8);

}  // namespace velkrund

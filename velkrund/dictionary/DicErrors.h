#pragma once

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// An error of tables, queries, generators and their sections.
VELKRUND_EXCEPTION(EDicUtilError, Exception);

}  // namespace velkrund

#pragma once

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// An error of stored structures and their nodes.
VELKRUND_EXCEPTION(EDSPError, Exception);

}  // namespace velkrund

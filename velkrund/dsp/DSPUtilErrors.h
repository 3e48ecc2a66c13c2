#pragma once

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// An error of structure sections and of the operations on structures.
VELKRUND_EXCEPTION(EDSPUtilError, Exception);

}  // namespace velkrund

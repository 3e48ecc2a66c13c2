#pragma once

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// A property that does not exist, cannot be written, or cannot take the value.
VELKRUND_EXCEPTION(EPropertyError, Exception);

}  // namespace velkrund

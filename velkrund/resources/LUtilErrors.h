#pragma once

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// An error of localized resources and their sections.
VELKRUND_EXCEPTION(ELUtilError, Exception);

}  // namespace velkrund

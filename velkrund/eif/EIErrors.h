#pragma once

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// An error of the export/import layer: file structure, section headers, streams.
VELKRUND_EXCEPTION(EEIError, Exception);

}  // namespace velkrund

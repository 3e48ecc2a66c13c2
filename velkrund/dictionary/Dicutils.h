#pragma once

#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/dictionary/RecreateInterfaces.h"
#include "velkrund/dictionary/TableData.h"
#include "velkrund/dictionary/TableDataOperations.h"

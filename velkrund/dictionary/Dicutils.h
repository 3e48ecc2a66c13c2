#pragma once

#include "velkrund/dictionary/BLOBFieldMapping.h"
#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/dictionary/RecreateInterfaces.h"
#include "velkrund/dictionary/RecreateTable.h"
#include "velkrund/dictionary/RecreateTableInterfaces.h"
#include "velkrund/dictionary/RecreateTables.h"
#include "velkrund/dictionary/TableData.h"
#include "velkrund/dictionary/TableDataOperations.h"

#pragma once

#include "velkrund/operations/AskObjects.h"
#include "velkrund/operations/ImportExport.h"
#include "velkrund/operations/ImportExportInterfaces.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/operations/OperationErrors.h"
#include "velkrund/operations/Properties.h"
#include "velkrund/operations/Rbaseint.h"
#include "velkrund/operations/UtilOperation.h"
#include "velkrund/operations/UtilOperationInterface.h"

#pragma once

#include "velkrund/resources/CopyLResources.h"
#include "velkrund/resources/DeleteLResources.h"
#include "velkrund/resources/ExportLResource.h"
#include "velkrund/resources/ExportLSections.h"
#include "velkrund/resources/ImportLResource.h"
#include "velkrund/resources/ItemResults.h"
#include "velkrund/resources/LResource.h"
#include "velkrund/resources/LUtilErrors.h"
#include "velkrund/resources/Language.h"
#include "velkrund/resources/LanguageOperations.h"
#include "velkrund/resources/SingleLResource.h"
#include "velkrund/resources/XMLResources.h"

#pragma once

#include "velkrund/eif/EIBlobField.h"
#include "velkrund/eif/EIErrors.h"
#include "velkrund/eif/EIFile.h"
#include "velkrund/eif/EIObject.h"
#include "velkrund/eif/EISource.h"
#include "velkrund/eif/EIStream.h"
#include "velkrund/eif/Section.h"
#include "velkrund/eif/SectionParameters.h"
#include "velkrund/eif/TypeList.h"

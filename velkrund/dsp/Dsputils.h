#pragma once

#include "velkrund/dsp/DSPGeneratorStructure.h"
#include "velkrund/dsp/DSPStructure.h"
#include "velkrund/dsp/DSPStructureOperations.h"
#include "velkrund/dsp/DSPUtilErrors.h"

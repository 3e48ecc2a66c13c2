#pragma once

#include "velkrund/dialogs/DSPConfirmForm.h"
#include "velkrund/dialogs/OverwriteAskExForm.h"
#include "velkrund/dialogs/OverwriteEIObjectForm.h"
#include "velkrund/dialogs/QueryTableMappingSelectForm.h"
#include "velkrund/dialogs/YesNoConfirmationForm.h"

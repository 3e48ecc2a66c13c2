#include "velkrund/resources/BulkUpdate.h"

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

TBulkUpdate::~TBulkUpdate() {
  if (FEnded) return;
  try {
    FTable.EndUpdate();
  } catch (const std::exception& Error) {
    // The error on its way out is the one to tell.
    BaseMng().WriteTrace(TraceSubsystem, TTraceLevel::Error, Format("Cannot end the update: %s", Error.what()));
  }
}

void TBulkUpdate::End() {
  FEnded = true;
  FTable.EndUpdate();
}

}  // namespace velkrund

#include "velkrund/operations/UtilOperation.h"

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

std::unique_ptr<TUtilOperation> TUtilOperationClass::Create() const {
  if (!Descriptor() || !Descriptor()->Factory) throw EAccessViolation("No operation can be made: no class is given");
  return Descriptor()->Factory();
}

bool TUtilOperation::GetCanceled() const { return FCanceled || (FOnGetCancel && FOnGetCancel()); }

bool TUtilOperation::IsCanceled() const {
  for (const TUtilOperation* At = this; At; At = At->Owner)
    if (At->GetCanceled()) return true;
  return false;
}

void TUtilOperation::ShowProgress(std::int32_t Current, std::int32_t Total, std::string_view ObjectName) const {
  if (FOnShowProgress) FOnShowProgress(Current, Total, ObjectName);
}

void TUtilOperation::WriteLog(TTraceLevel Level, const std::string& Text) const {
  BaseMng().WriteTrace(TraceSubsystem, Level, Text);
  const TUtilOperation* Logging = this;
  while (Logging && !Logging->FOnWriteLog) Logging = Logging->Owner;
  if (Logging) Logging->FOnWriteLog(Text, Level);
}

}  // namespace velkrund

#include "velkrund/operations/Rbaseint.h"

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::int32_t FullPercent = 100;

}  // namespace

TRBaseManager::TRBaseManager(TProgressUpdateProc Progress, TCancelRequestProc Cancel, TWriteLogProc Log, int RangeStart,
                             int RangeEnd)
    : FRangeStart(RangeStart), FRangeEnd(RangeEnd), FProgress(Progress), FCancel(Cancel), FLog(Log) {}

TRBaseManager::TRBaseManager(TProgressUpdateProc Progress, TCancelRequestProc Cancel, TWriteLogProc1 Log,
                             int RangeStart, int RangeEnd)
    : FRangeStart(RangeStart), FRangeEnd(RangeEnd), FProgress(Progress), FCancel(Cancel), FLog1(Log) {}

std::int32_t TRBaseManager::AtPercent(int Percent) const {
  const std::int64_t Length = std::int64_t{FRangeEnd} - FRangeStart;
  return static_cast<std::int32_t>(FRangeStart + Length * Percent / FullPercent);
}

void TRBaseManager::StartOperationProgress(const std::string& Name, int Weight) {
  FCompleted += FWeight;
  UpdateProgress(AtPercent(FCompleted), FullPercent, 0, FullPercent, Name, {});
  FWeight = Weight;
  FName = Name;
}

void TRBaseManager::UpdateOperationProgress(std::string_view Text, double Fraction) {
  const int Share = FCompleted + static_cast<int>(FWeight * Fraction);
  UpdateProgress(AtPercent(Share), FullPercent, 0, 0, FName, Text);
}

void TRBaseManager::UpdateProgress(std::int32_t Current, std::int32_t Total, std::int32_t OpCurrent,
                                   std::int32_t OpTotal, std::string_view OperationName, std::string_view ObjectName) {
  FProgress(Current, Total, OpCurrent, OpTotal, ToUtf16(OperationName).c_str(), ToUtf16(ObjectName).c_str());
}

void TRBaseManager::WriteLog1(std::string_view Text, std::int32_t Level) {
  if (FLog1)
    FLog1(ToUtf16(Text).c_str(), Level);
  else if (FLog)
    FLog(ToUtf16(Text).c_str());
}

}  // namespace velkrund

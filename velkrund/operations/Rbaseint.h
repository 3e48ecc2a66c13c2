#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velkrund {

// Procedures of an outside host. Texts are zero-terminated UTF-16, valid during the call only.
using TProgressUpdateProc = void (*)(std::int32_t Current, std::int32_t Total, std::int32_t OpCurrent,
                                     std::int32_t OpTotal, const char16_t* OperationName, const char16_t* ObjectName);
using TCancelRequestProc = bool (*)();
using TExitProc = void (*)(std::int32_t ExitCode);
using TWriteLogProc = void (*)(const char16_t* Message);
using TWriteLogProc1 = void (*)(const char16_t* Message, std::int32_t LogLevel);

/// Carries progress, cancel and log lines of a sequence of operations to an outside host. The operations share the
/// range [start, end] by their weights in percent; divisions truncate toward zero. Used by one thread at a time.
class TRBaseManager {
 public:
  /// Progress and Cancel must be given; a log procedure may be null.
  TRBaseManager(TProgressUpdateProc Progress, TCancelRequestProc Cancel, TWriteLogProc Log, int RangeStart,
                int RangeEnd);
  TRBaseManager(TProgressUpdateProc Progress, TCancelRequestProc Cancel, TWriteLogProc1 Log, int RangeStart,
                int RangeEnd);

  bool GetCanceled() const { return FCancel(); }
  /// Begins the next operation; the one before counts as finished.
  void StartOperationProgress(const std::string& Name, int Weight);
  /// Fraction: 0 .. 1 of the current operation.
  void UpdateOperationProgress(std::string_view Text, double Fraction);
  void UpdateProgress(std::int32_t Current, std::int32_t Total, std::int32_t OpCurrent, std::int32_t OpTotal,
                      std::string_view OperationName, std::string_view ObjectName);
  /// Level 2.
  void WriteLog(std::string_view Text) { WriteLog1(Text, 2); }
  /// A host without levels gets the text alone; one without a log procedure gets nothing.
  void WriteLog1(std::string_view Text, std::int32_t Level);

 private:
  std::int32_t AtPercent(int Percent) const;

  int FRangeStart, FRangeEnd;
  TProgressUpdateProc FProgress;
  TCancelRequestProc FCancel;
  TWriteLogProc FLog = nullptr;
  TWriteLogProc1 FLog1 = nullptr;
  std::string FName;
  int FCompleted = 0;
  int FWeight = 0;
};

}  // namespace velkrund

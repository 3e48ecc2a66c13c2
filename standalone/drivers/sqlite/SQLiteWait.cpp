#include "standalone/drivers/sqlite/SQLiteWait.h"

#include <sqlite3.h>

#include <algorithm>
#include <thread>
#include <utility>

namespace velkrund {
namespace {

constexpr std::chrono::milliseconds LongestSleep(50);
/// Steps of the engine's machine between two looks at the clock: few, since one can take as long as a disk does.
constexpr int StepsBetweenLooks = 4'000;
/// Between two questions whether to go on, which hosts may take their time for.
constexpr std::chrono::milliseconds BetweenQuestions(20);

/// The engine's answer to a wait that was stopped is that of one that has taken too long.
thread_local sqlite3* StoppedDatabase = nullptr;

}  // namespace

void TSQLiteWait::Attach(sqlite3* Database) {
  FDatabase = Database;
  sqlite3_busy_handler(Database, OnBusy, this);
  if (FCanceled) sqlite3_progress_handler(Database, StepsBetweenLooks, OnProgress, this);
}

bool TSQLiteWait::TakeStopped(sqlite3* Database) {
  if (StoppedDatabase != Database) return false;
  StoppedDatabase = nullptr;
  return true;
}

int TSQLiteWait::OnBusy(void* Self, int Count) { return static_cast<TSQLiteWait*>(Self)->GoesOn(Count) ? 1 : 0; }

int TSQLiteWait::OnProgress(void* Self) {
  auto& Wait = *static_cast<TSQLiteWait*>(Self);
  const auto Now = std::chrono::steady_clock::now();
  if (Now < Wait.FNextLook) return 0;
  Wait.FNextLook = Now + BetweenQuestions;
  return Wait.FCanceled() ? 1 : 0;
}

/// Count: how often the engine has asked about the same wait before.
bool TSQLiteWait::GoesOn(int Count) {
  const auto Now = std::chrono::steady_clock::now();
  if (Count == 0) FStart = Now;
  const bool IsWriting = sqlite3_txn_state(FDatabase, "main") == SQLITE_TXN_WRITE;
  if (!IsWriting) FInVain = false;
  if (FCanceled && FCanceled()) {
    StoppedDatabase = FDatabase;
    return false;
  }
  const auto Left = std::chrono::ceil<std::chrono::milliseconds>(FStart + FBusyTime - Now);
  if (Left.count() <= 0) FInVain = IsWriting;
  if (Left.count() <= 0 || FInVain) return false;
  std::this_thread::sleep_for(std::min({std::chrono::milliseconds(1 + 2 * Count), LongestSleep, Left}));
  return true;
}

}  // namespace velkrund

#pragma once

#include <chrono>
#include <functional>

struct sqlite3;

namespace velkrund {

/// Lets a connection wait for a database that another program keeps busy, for BusyTime at most, and stops this and what
/// takes the engine long when Canceled, asked again and again meanwhile, says so. A writing transaction that has waited
/// in vain for room in the file, while others read it, keeps its pages in memory without waiting again; its commit
/// does.
class TSQLiteWait {
 public:
  TSQLiteWait(std::chrono::milliseconds BusyTime, std::function<bool()> Canceled)
      : FBusyTime(BusyTime), FCanceled(std::move(Canceled)) {}
  TSQLiteWait(const TSQLiteWait&) = delete;
  TSQLiteWait& operator=(const TSQLiteWait&) = delete;

  /// The engine keeps a reference to this.
  void Attach(sqlite3* Database);
  /// What comes now waits, whatever was waited for in vain before.
  void Renew() { FInVain = false; }

  /// Whether the last wait for Database, in this thread, was stopped. Answers so once.
  static bool TakeStopped(sqlite3* Database);

 private:
  static int OnBusy(void* Self, int Count);
  static int OnProgress(void* Self);
  bool GoesOn(int Count);

  sqlite3* FDatabase = nullptr;
  std::chrono::milliseconds FBusyTime;
  std::function<bool()> FCanceled;
  std::chrono::steady_clock::time_point FStart;
  std::chrono::steady_clock::time_point FNextLook;
  bool FInVain = false;  // the running transaction has waited for as long as it may
};

}  // namespace velkrund

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "standalone/drivers/Driver.h"
#include "standalone/drivers/sqlite/SQLiteBinder.h"
#include "standalone/drivers/sqlite/SQLiteHandle.h"
#include "standalone/drivers/sqlite/SQLiteWait.h"

namespace velkrund {

/// A database that is open, without mutexes: used by one thread at a time. A file that it makes and in which nothing is
/// made is gone with it. Raises EDatabaseError.
class TSQLiteDatabase {
 public:
  /// Path: absolute, or ":memory:".
  TSQLiteDatabase(const std::string& Path, const TConnectOptions& Options);
  TSQLiteDatabase(const TSQLiteDatabase&) = delete;
  TSQLiteDatabase& operator=(const TSQLiteDatabase&) = delete;
  ~TSQLiteDatabase();

  const TSQLiteHandle& Handle() const { return *FHandle; }
  const TSQLiteTexts& Texts() const { return FTexts; }
  bool InTransaction() const;
  /// The statement that comes now waits for others, whatever was waited for in vain before.
  void WaitAnew();
  /// An error when the file has lost its name: what is written into it would be lost with it.
  void CheckNotMoved() const;
  /// How a message about the whole database begins.
  std::string About(std::string_view Failed) const;

 private:
  struct TClose {
    void operator()(sqlite3* Database) const;
  };

  void CheckReadable();
  void RemoveUnused() noexcept;

  std::string FPath;
  TSQLiteWait FWait;
  bool FIsNew = false;  // the file was not there before
  std::unique_ptr<sqlite3, TClose> FOpened;
  std::optional<TSQLiteHandle> FHandle;  // to it
  TSQLiteTexts FTexts;
};

}  // namespace velkrund

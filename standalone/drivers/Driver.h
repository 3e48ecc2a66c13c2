#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/drivers/Connection.h"
#include "standalone/drivers/DatabaseUrl.h"
#include "velkrund/platform/ormtools/CodePage.h"

namespace velkrund {

struct TConnectOptions {
  /// A database that does not exist is made, where the engine can; otherwise it is an error.
  bool CreateMissing = false;
  /// How long to wait for a database that another program keeps busy.
  std::chrono::milliseconds BusyTime{10'000};
  /// What relative file names in a URL are relative to; empty: the current folder.
  std::string BaseFolder = {};
  /// Of 8-bit texts; outlives the connection.
  const TCodePage* CodePage = &TCodePage::Default();
  /// Asked while the engine lets its caller wait, by the thread that waits: true ends what is waited for, with EAbort.
  std::function<bool()> Canceled = {};
  /// Takes what the engine remarks on the way.
  std::function<void(TTraceLevel Level, const std::string& Line)> Trace = {};
  /// Takes what people should know of a transaction that is about to be committed.
  std::function<void(const std::string& Text)> Warn = {};
  /// Takes what is waited for, in words for people.
  std::function<void(const std::string& Text)> Tell = {};
  /// Asks a person for the password of Database, without showing what is typed; Error: what was wrong with the one
  /// before, else empty. Nothing: nobody can be asked. Raises EAbort when the person does not want to go on.
  std::function<std::optional<std::string>(const std::string& Database, const std::string& Error)> AskPassword = {};
};

/// The way to one kind of engine. Stateless; safe to call from several threads.
class TDriver {
 public:
  TDriver() = default;
  TDriver(const TDriver&) = delete;
  TDriver& operator=(const TDriver&) = delete;
  virtual ~TDriver() = default;

  virtual std::string_view Scheme() const = 0;
  /// Whether addresses of that scheme are this driver's; some engines go by more than one.
  virtual bool Accepts(std::string_view Scheme) const { return Scheme == this->Scheme(); }
  /// For scripts that no database of the engine is needed for. Lives as long as the driver.
  virtual const TScriptWriter& Scripts() const = 0;
  /// A text that is the same for all URLs of one database.
  virtual std::string Identity(const TDatabaseUrl& Url, const TConnectOptions& Options) const = 0;
  /// The same for those URLs alone whose connections may do, and find, the same: of one user, with one set of options.
  virtual std::string SessionIdentity(const TDatabaseUrl& Url, const TConnectOptions& Options) const {
    return Identity(Url, Options);
  }
  /// Raises EDatabaseError when the database cannot be reached; messages show no password.
  virtual std::unique_ptr<TConnection> Connect(const TDatabaseUrl& Url, const TConnectOptions& Options) const = 0;
};

/// The drivers by scheme.
class TDriverRegistry {
 public:
  /// A driver of the same scheme takes the place of the one before.
  void Add(std::unique_ptr<TDriver> Driver);
  /// Null when there is none of that scheme.
  const TDriver* Find(std::string_view Scheme) const;
  std::vector<std::string> Schemes() const;

 private:
  std::vector<std::unique_ptr<TDriver>> FDrivers;
};

}  // namespace velkrund

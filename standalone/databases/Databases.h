#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "standalone/databases/Configuration.h"
#include "standalone/drivers/Driver.h"

namespace velkrund {

/// The databases of an application: names of the configuration, or URLs, to connections. One connection per database,
/// user and options, however it is spelt; made when first needed and kept. Counts nested transactions. Used by one
/// thread at a time.
class TDatabases {
 public:
  /// Called with a line for the trace: connections, transactions, remarks of the engine.
  using TTraceFunction = std::function<void(TTraceLevel Level, const std::string& Line)>;

  TDatabases(const TConfiguration& Configuration, TDriverRegistry Drivers, TTraceFunction Trace);
  TDatabases(const TDatabases&) = delete;
  TDatabases& operator=(const TDatabases&) = delete;

  /// Name: of the configuration, else a URL; empty: the default database. Raises EDatabaseError, and
  /// EConfigurationError for an entry that cannot be used.
  TConnection& Connection(const std::string& Name);

  /// A start within a transaction is a savepoint: an inner roll back undoes the inner part. A commit that fails rolls
  /// back all; an inner one leaves that to whoever began the outer one.
  void StartTransaction(const std::string& Name, TIsolationLevel Level);
  /// The same for reading alone: everything that is read is of one moment, also for what starts within it. To be
  /// rolled back.
  void StartReading(const std::string& Name);
  void CommitTransaction(const std::string& Name);
  void RollbackTransaction(const std::string& Name);
  bool IsInTransaction(const std::string& Name) { return Database(Name).Depth > 0; }
  /// How many have been started and not ended.
  int TransactionDepth(const std::string& Name) { return Database(Name).Depth; }
  /// Another number, never one that was there before, with every beginning and end of the outer transaction and with
  /// every roll back within: what was remembered of its rows and locks may hold no longer.
  std::int64_t TransactionMark(const std::string& Name) { return Database(Name).Mark; }

  /// What the configuration names for the tables of a database; empty: nothing.
  std::string PatternName(const std::string& Name) const;
  /// How an engine makes objects: by the scheme of its addresses. Null for one that is not known.
  const TScriptWriter* Scripts(std::string_view Scheme) const;
  std::vector<std::string> Schemes() const { return FDrivers.Schemes(); }

  void SetDefaultDatabase(std::string Name);
  const std::string& DefaultDatabase() const { return FDefaultDatabase; }
  /// Databases that are connected to from now on are made when they do not exist. Returns what held before.
  bool SetCreateMissing(bool Value) { return std::exchange(FCreateMissing, Value); }
  void SetBusyTime(std::chrono::milliseconds Value) { FBusyTime = Value; }
  std::chrono::milliseconds BusyTime() const { return FBusyTime; }
  using TCanceled = std::function<bool()>;
  /// Asked while an engine lets its caller wait, on every connection: true ends what is waited for, with EAbort.
  /// Returns who was asked before.
  TCanceled SetCanceled(TCanceled Canceled) { return std::exchange(FCanceled, std::move(Canceled)); }
  using TAskPassword = std::function<std::optional<std::string>(const std::string& Database, const std::string& Error)>;
  /// Asked for passwords that are missing, as TConnectOptions says. Returns who was asked before.
  TAskPassword SetAskPassword(TAskPassword Ask) { return std::exchange(FAskPassword, std::move(Ask)); }
  using TNotice = std::function<void(const std::string& Text)>;
  /// Told what takes its time and has nothing to count. Returns who was told before.
  TNotice SetNotice(TNotice Notice) { return std::exchange(FNotice, std::move(Notice)); }
  void Tell(const std::string& Text) const {
    if (FNotice) FNotice(Text);
  }
  /// Told what people should know of a transaction that is about to be committed; the trace when nobody is. Returns who
  /// was told before.
  TNotice SetWarning(TNotice Warning) { return std::exchange(FWarning, std::move(Warning)); }

  /// Whether two names mean the same database.
  bool IsSameDatabase(const std::string& A, const std::string& B) const;
  /// Whether there is a connection under that very name.
  bool IsOpen(const std::string& Name) const { return FNames.contains(Name); }
  /// Frees the connection, if there is one, rolling an open transaction back. Its tables must be freed before.
  void Close(const std::string& Name);

 private:
  struct TDatabase {
    std::unique_ptr<TConnection> Connection;
    int Depth = 0;          // transactions started and not ended
    bool Reads = false;     // and writes nothing
    std::int64_t Mark = 0;  // TransactionMark
  };
  struct TAddress {
    const TDriver* Driver;
    TDatabaseUrl Url;
    TConnectOptions Options;
    std::string Identity;  // of the database
    std::string Session;   // of the connection
  };

  void Note(const std::string& Line) { FTrace(TTraceLevel::Detail, Line); }
  void Warn(const std::string& Text) const { FWarning ? FWarning(Text) : FTrace(TTraceLevel::Info, Text); }
  [[noreturn]] void RefuseName(const std::string& Name) const;
  TAddress Resolve(const std::string& Name) const;
  TDatabase& Database(const std::string& Name);
  void Start(const std::string& Name, bool Reads, const std::function<void(TConnection&)>& Begin);
  TDatabase& InTransaction(const std::string& Name, std::string_view What);

  TConfiguration FConfiguration;
  TDriverRegistry FDrivers;
  TTraceFunction FTrace;
  std::string FDefaultDatabase;
  bool FDefaultIsConfigured = true;  // its file names are relative to the configuration's folder
  bool FCreateMissing = false;
  std::int64_t FLastMark = 0;
  std::chrono::milliseconds FBusyTime;
  TCanceled FCanceled;                                    // may be empty
  TNotice FNotice, FWarning;                              // the same
  TAskPassword FAskPassword;                              // the same
  std::map<std::string, TDatabase> FOpen;                 // by session
  std::map<std::string, TDatabase*, std::less<>> FNames;  // by the name asked for; "" is the default
};

}  // namespace velkrund

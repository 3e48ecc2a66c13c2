#include "standalone/databases/Databases.h"

#include "standalone/drivers/AddressSecrets.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"

namespace velkrund {

TDatabases::TDatabases(const TConfiguration& Configuration, TDriverRegistry Drivers, TTraceFunction Trace)
    : FConfiguration(Configuration),
      FDrivers(std::move(Drivers)),
      FTrace(std::move(Trace)),
      FDefaultDatabase(Configuration.DefaultDatabase),
      FBusyTime(Configuration.BusyTime) {}

void TDatabases::SetDefaultDatabase(std::string Name) {
  FDefaultDatabase = std::move(Name);
  FDefaultIsConfigured = false;
  FNames.erase(std::string());
}

void TDatabases::RefuseName(const std::string& Name) const {
  std::vector<std::string> Names;
  for (const auto& [Known, Entry] : FConfiguration.Databases) Names.push_back(Known);
  const std::string Shown = WithoutSecrets(Name);
  throw EDatabaseError(Format("The database '%s' is not in %s, and it is not an address (SCHEME:...)%s", Shown,
                              FConfiguration.FileName.empty() ? "the configuration" : FConfiguration.FileName,
                              ContentHint(Name, Names, "; the configuration has ")),
                       {.Code = TErrorCode::DatabaseName, .Database = Shown});
}

std::string TDatabases::PatternName(const std::string& Name) const {
  const auto Entry = FConfiguration.Databases.find(Name.empty() ? FDefaultDatabase : Name);
  return Entry == FConfiguration.Databases.end() ? std::string() : Entry->second.TablePattern;
}

const TScriptWriter* TDatabases::Scripts(std::string_view Scheme) const {
  const TDriver* const Driver = FDrivers.Find(Scheme);
  return Driver ? &Driver->Scripts() : nullptr;
}

TDatabases::TAddress TDatabases::Resolve(const std::string& Name) const {
  if (Name.empty() && FDefaultDatabase.empty())
    throw EDatabaseError("No database is named, and there is no default database", {.Code = TErrorCode::DatabaseName});
  const std::string& Meant = Name.empty() ? FDefaultDatabase : Name;
  TConnectOptions Options;
  Options.CreateMissing = FCreateMissing;
  Options.BusyTime = FBusyTime;
  if (const TCodePage* CodePage = TCodePage::Find(FConfiguration.CodePage)) Options.CodePage = CodePage;
  // Connections live longer than the run that makes them.
  Options.Canceled = [this] { return FCanceled && FCanceled(); };
  Options.Trace = FTrace;
  Options.Warn = [this](const std::string& Text) { Warn(Text); };
  Options.AskPassword = [this](const std::string& Database, const std::string& Error) {
    return FAskPassword ? FAskPassword(Database, Error) : std::nullopt;
  };
  Options.Tell = [this](const std::string& Text) { Tell(Text); };
  std::string Address = Meant;
  if (const auto Entry = FConfiguration.Databases.find(Meant); Entry != FConfiguration.Databases.end()) {
    if (!Entry->second.Problem.empty())
      throw EConfigurationError(Entry->second.Problem,
                                {.File = FConfiguration.FileName, .Line = Entry->second.Line, .Database = Meant});
    Address = Entry->second.Url;
    Options.BaseFolder = FConfiguration.Folder;
  } else if (Name.empty() && FDefaultIsConfigured) {
    Options.BaseFolder = FConfiguration.Folder;
  }
  std::optional<TDatabaseUrl> Url = ParseDatabaseUrl(Address);
  if (!Url) RefuseName(Meant);
  const TDriver* Driver = FDrivers.Find(Url->Scheme);
  if (!Driver) {
    const std::string Shown = WithoutSecrets(Meant);
    throw EDatabaseError(Format("The database '%s' has the unknown scheme '%s'%s", Shown, Url->Scheme,
                                ContentHint(Url->Scheme, FDrivers.Schemes(), "; known are: ")),
                         {.Code = TErrorCode::DatabaseName, .Database = Shown});
  }
  const std::string Scheme = std::string(Driver->Scheme()) + ":";
  std::string Identity = Scheme + Driver->Identity(*Url, Options);
  std::string Session = Scheme + Driver->SessionIdentity(*Url, Options);
  return {Driver, std::move(*Url), std::move(Options), std::move(Identity), std::move(Session)};
}

TDatabases::TDatabase& TDatabases::Database(const std::string& Name) {
  if (const auto Known = FNames.find(Name); Known != FNames.end()) return *Known->second;
  const TAddress Address = Resolve(Name);
  auto Found = FOpen.find(Address.Session);
  if (Found == FOpen.end()) {
    Note(Format("Connecting to %s", WithoutSecrets(Address.Url.Text())));
    TDatabase Opened;
    Opened.Mark = ++FLastMark;
    Opened.Connection = Address.Driver->Connect(Address.Url, Address.Options);
    Found = FOpen.emplace(Address.Session, std::move(Opened)).first;
  }
  FNames.emplace(Name, &Found->second);
  return Found->second;
}

TConnection& TDatabases::Connection(const std::string& Name) { return *Database(Name).Connection; }

void TDatabases::StartTransaction(const std::string& Name, TIsolationLevel Level) {
  Start(Name, false, [=](TConnection& Connection) { Connection.Begin(Level); });
}

void TDatabases::StartReading(const std::string& Name) {
  Start(Name, true, [](TConnection& Connection) { Connection.BeginReading(); });
}

void TDatabases::Start(const std::string& Name, bool Reads, const std::function<void(TConnection&)>& Begin) {
  TDatabase& Target = Database(Name);
  if (Target.Depth == 0) {
    Note("Starting a transaction");
    Begin(*Target.Connection);
    Target.Reads = Reads;
    Target.Mark = ++FLastMark;
  } else if (!Target.Reads) {
    Target.Connection->SetSavepoint(Target.Depth);
  }
  ++Target.Depth;
}

TDatabases::TDatabase& TDatabases::InTransaction(const std::string& Name, std::string_view What) {
  TDatabase& Target = Database(Name);
  if (Target.Depth == 0) throw EDatabaseError(Format("Cannot %s: no transaction has been started", What));
  --Target.Depth;
  return Target;
}

void TDatabases::CommitTransaction(const std::string& Name) {
  TDatabase& Target = InTransaction(Name, "commit the transaction");
  if (Target.Depth > 0) {
    if (!Target.Reads) Target.Connection->ReleaseSavepoint(Target.Depth);
    return;
  }
  Target.Mark = ++FLastMark;
  Note("Committing the transaction");
  try {
    Target.Connection->Commit();
  } catch (...) {
    try {
      Target.Connection->Rollback();
    } catch (const std::exception& Error) {
      // The error on its way out is the one to tell.
      Note(Format("Cannot roll back: %s", Error.what()));
    }
    throw;
  }
}

void TDatabases::RollbackTransaction(const std::string& Name) {
  TDatabase& Target = InTransaction(Name, "roll the transaction back");
  Target.Mark = ++FLastMark;
  if (Target.Depth > 0 && Target.Reads) return;
  if (!Target.Reads && FNotice) Tell(LText("M_Velkrund_ComUtils_TakingBack").Local());
  if (Target.Depth > 0) return Target.Connection->RollbackToSavepoint(Target.Depth);
  Note("Rolling the transaction back");
  Target.Connection->Rollback();
}

bool TDatabases::IsSameDatabase(const std::string& A, const std::string& B) const {
  return Resolve(A).Identity == Resolve(B).Identity;
}

void TDatabases::Close(const std::string& Name) {
  const std::string Identity = Resolve(Name).Identity;
  const auto Found = FOpen.find(Identity);
  if (Found == FOpen.end()) return;
  std::erase_if(FNames, [&](const auto& Known) { return Known.second == &Found->second; });
  FOpen.erase(Found);
}

}  // namespace velkrund

#include "standalone/drivers/postgresql/PostgreSQLDriver.h"

#include <algorithm>

#include "standalone/drivers/AddressSecrets.h"
#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLConnecting.h"
#include "standalone/drivers/postgresql/PostgreSQLConnection.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

struct TFreeOptions {
  void operator()(PQconninfoOption* Options) const { PQconninfoFree(Options); }
};
using TOptions = std::unique_ptr<PQconninfoOption, TFreeOptions>;

std::string ShownName(const TDatabaseUrl& Url) { return WithoutSecrets(Url.Text()); }

/// As the client library takes it: an address, a "key=value" text or the name of a database.
std::string ConnectionInfo(const TDatabaseUrl& Url) {
  if (Url.Rest.find('\0') != std::string::npos) throw EDatabaseError("A database address holds a character U+0000");
  return Url.Rest.starts_with("//") ? "postgresql:" + Url.Rest : Url.Rest;
}

/// Those that have a value.
TConnectionParameters Given(const PQconninfoOption* Options) {
  TConnectionParameters Result;
  for (; Options && Options->keyword; ++Options)
    if (Options->val && *Options->val) Result[Options->keyword] = Options->val;
  return Result;
}

/// Why tells the place, in words that quote what cannot be read: that may be a piece of the password.
[[noreturn]] void RaiseUnreadable(const TDatabaseUrl& Url, std::string_view Why) {
  const std::string Shown = ShownName(Url);
  if (TellsNoSecret(Why, Url.Text()))
    throw EDatabaseError(Format("The database address '%s' cannot be read: %s", Shown, Trim(Why)));
  throw EDatabaseError(
      Format("The database address '%s' cannot be read: special characters in a URL have to be "
             "written as %%XX, a value with blanks between apostrophes",
             std::string_view(Shown).substr(0, Shown.find("***") + 3)));
}

/// The parameters that the address itself names.
TConnectionParameters ParametersOf(const TDatabaseUrl& Url) {
  const std::string Info = ConnectionInfo(Url);
  if (!Info.starts_with("postgresql://") && Info.find('=') == std::string::npos) {
    // It would be the name of a database, which errors quote.
    if (ShownName(Url) != Url.Text()) RaiseUnreadable(Url, {});
    return Info.empty() ? TConnectionParameters() : TConnectionParameters{{"dbname", Info}};
  }
  char* Message = nullptr;
  const TOptions Options(PQconninfoParse(Info.c_str(), &Message));
  const std::unique_ptr<char, void (*)(void*)> FreeMessage(Message, PQfreemem.Found());
  if (!Options) RaiseUnreadable(Url, Message ? Message : "out of memory");
  TConnectionParameters Result = Given(Options.get());
  // Where a password ends at its own "@", the rest of it would go on as the host's name. Sockets may begin with one.
  for (const char* const Keyword : {"host", "hostaddr"})
    if (const auto Host = Result.find(Keyword); Host != Result.end() && Host->second.find('@', 1) != std::string::npos)
      RaiseUnreadable(Url, "a host's name holds the character '@'");
  return Result;
}

/// Whether the client library may have taken a piece of the password for something else, and quote it.
bool HasUnclearPassword(const TDatabaseUrl& Url) {
  return PasswordOf(Url.Text()).find_first_of("/@") != std::string_view::npos;
}

}  // namespace

/// What the client library makes of the address, the service file and the environment.
class TPostgreSQLDriver::TMeant {
 public:
  explicit TMeant(const TDatabaseUrl& Url) : FParameters(ParametersOf(Url)) {
    // Nothing where a service is missing, which the connection will tell.
    if (TConnectionParameters All = MeantPostgreSQLParameters(ConnectionInfo(Url)); !All.empty())
      FParameters = std::move(All);
  }

  std::string Value(std::string_view Keyword) const {
    const auto Found = FParameters.find(Keyword);
    return Found == FParameters.end() ? std::string() : Found->second;
  }
  std::string Database() const {
    std::string Host = Value("host");
    if (Host.empty()) Host = Value("hostaddr");
    // One machine by its usual names.
    if (Host == "localhost" || Host == "::1") Host = "127.0.0.1";
    std::string Name = Value("dbname");
    if (Name.empty()) Name = Value("user");
    return Format("%s:%s/%s", Host, Value("port"), Name);
  }

 private:
  TConnectionParameters FParameters;
};

std::string TPostgreSQLDriver::Identity(const TDatabaseUrl& Url, const TConnectOptions& /*Options*/) const {
  return TMeant(Url).Database();
}

/// Rights, search path and settings are those of a session.
std::string TPostgreSQLDriver::SessionIdentity(const TDatabaseUrl& Url, const TConnectOptions& /*Options*/) const {
  const TMeant Meant(Url);
  return Format("%s %s %s", Meant.Database(), Meant.Value("user"), Meant.Value("options"));
}

std::unique_ptr<TConnection> TPostgreSQLDriver::Connect(const TDatabaseUrl& Url, const TConnectOptions& Options) const {
  ParametersOf(Url);
  try {
    return std::make_unique<TPostgreSQLConnection>(TPostgreSQLAddress{ConnectionInfo(Url), ShownName(Url)}, Options);
  } catch (const EDatabaseError& Error) {
    if (HasUnclearPassword(Url)) RaiseUnreadable(Url, {});
    if (!Options.CreateMissing) throw;
    throw EDatabaseError(Format("%s; databases of a server are not made here, but by CREATE DATABASE", Error.what()));
  }
}

}  // namespace velkrund

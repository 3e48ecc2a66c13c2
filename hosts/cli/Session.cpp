#include "hosts/cli/Session.h"

#include "hosts/cli/line/Command.h"
#include "standalone/drivers/DatabaseUrl.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

const std::string& TSession::Database() const {
  const std::string& Name = Shared.Database;
  const TConfiguration& Configuration = Manager().Configuration();
  if (Name.empty() && Configuration.DefaultDatabase.empty())
    throw EUsage("--database is missing, and the configuration has no default database");
  // The most likely slip: the file alone.
  if (!Name.empty() && !Configuration.Databases.contains(Name) && !ParseDatabaseUrl(Name) && Files().Exists(Name))
    throw EUsage(Format("'%s' is a file; the address of a database file begins with its kind: sqlite:%s", Name, Name));
  return Name;
}

}  // namespace velkrund

#include "standalone/drivers/postgresql/Libpq.h"

#include <dlfcn.h>

#include <string>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr const char* Library = "libpq.so.5";  // whatever its minor version

void* LoadLibpq() {
  void* const Result = dlopen(Library, RTLD_NOW | RTLD_LOCAL);
  if (Result) return Result;
  const char* const Reason = dlerror();
  throw EDatabaseError(
      Format("Cannot reach a PostgreSQL database: its client library cannot be loaded: %s. Install "
             "libpq (Debian: apt install libpq5)",
             Reason ? Reason : Library));
}

}  // namespace

void* FindLibpqFunction(const char* Name) {
  static void* const Loaded = LoadLibpq();
  if (void* const Result = dlsym(Loaded, Name)) return Result;
  throw EDatabaseError(
      Format("Cannot reach a PostgreSQL database: the client library %s has no function %s. Install a "
             "newer one",
             Library, Name));
}

}  // namespace velkrund

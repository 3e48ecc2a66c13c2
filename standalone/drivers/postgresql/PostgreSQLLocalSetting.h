#pragma once

#include <string>

namespace velkrund {

class TPostgreSQLSession;

/// A setting of the session for as long as this lives, within a transaction.
class TPostgreSQLLocalSetting {
 public:
  /// Session: borrowed. Raises EDatabaseError, where the right to it is missing for example.
  TPostgreSQLLocalSetting(TPostgreSQLSession& Session, std::string Name, const std::string& Value);
  TPostgreSQLLocalSetting(const TPostgreSQLLocalSetting&) = delete;
  TPostgreSQLLocalSetting& operator=(const TPostgreSQLLocalSetting&) = delete;
  ~TPostgreSQLLocalSetting();

  const std::string& Before() const { return FBefore; }

 private:
  TPostgreSQLSession& FSession;
  const std::string FName;
  std::string FBefore;
};

/// Where the driver looks for names while it copies definitions: everything but the engine's own then is printed with
/// its schema, and nothing that others have made is found by a name without one.
inline constexpr const char* EnginesOwnPath = "pg_catalog, pg_temp";

}  // namespace velkrund

#pragma once

#include <memory>
#include <string>

#include "velkrund/platform/localization/LanguagesTable.h"
#include "velkrund/platform/localization/LocalizatorTable.h"

namespace velkrund {

/// Works on single strings of one database.
class TLocalizator {
 public:
  virtual ~TLocalizator() = default;

  /// In all languages; false: there is no such string. Raises EDatabaseError.
  virtual bool DeleteString(const std::string& StringID) = 0;
};

/// Where languages and localized strings are kept. Databases are named; an empty name is the application's default
/// database. EDatabaseError when the database cannot be reached.
class TLContainer {
 public:
  virtual ~TLContainer() = default;

  // Owned by the container.
  virtual TLanguagesTable& GetLanguagesTable(const std::string& DatabaseName) = 0;
  virtual TLocalizatorTable& GetLocalizatorTable(const std::string& DatabaseName) = 0;
  virtual std::unique_ptr<TLocalizator> CreateLocalizator(const std::string& DatabaseName) = 0;
};

/// The installed container. Raises EAccessViolation when there is none.
TLContainer& LContainer();
/// Installs one for the process, borrowed, or none when null; returns the one before. TServiceGuard undoes it.
TLContainer* InstallService(TLContainer* Service);

}  // namespace velkrund

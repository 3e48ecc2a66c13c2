#pragma once

#include <cstdint>
#include <string>

namespace velkrund {

/// The objects of one database as the data dictionary knows them. Errors are EDatabaseError.
class TDicDatabase {
 public:
  virtual ~TDicDatabase() = default;

  virtual bool GeneratorExist(const std::string& Name) = 0;
  /// The current value. Name: of a generator that exists.
  virtual std::int64_t GeneratorValue(const std::string& Name) = 0;
};

/// The data dictionary. Databases are named; an empty name is the application's default database.
class TDictionary {
 public:
  virtual ~TDictionary() = default;

  /// Owned by the dictionary. EDatabaseError when the database cannot be reached.
  virtual TDicDatabase& Database(const std::string& DatabaseName) = 0;
};

/// The installed data dictionary. Raises EAccessViolation when there is none.
TDictionary& Dictionary();
/// Installs one for the process, borrowed, or none when null; returns the one before. TServiceGuard undoes it.
TDictionary* InstallService(TDictionary* Service);

}  // namespace velkrund

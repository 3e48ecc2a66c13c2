#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace velkrund {

/// The objects of one database that are no tables, as the data dictionary knows them. Names are found ignoring case,
/// the exact one first; with their schema where it is not the current one. What is created is what the database's
/// structure of that name describes; EDatabaseError where there is none, and what the engine says otherwise.
class TDicDatabase {
 public:
  virtual ~TDicDatabase() = default;

  virtual bool GeneratorExist(const std::string& Name) = 0;
  /// The last value that was given out; of one that was never asked, start minus step. Name: of a generator that
  /// exists.
  virtual std::int64_t GeneratorValue(const std::string& Name) = 0;
  /// Makes Value the last one that was given out. A generator that does not exist is made, and counts by Step.
  virtual void SetGenerator(const std::string& Name, std::int64_t Step, std::int64_t Value) = 0;
  /// The same of one that exists, unless it stands there or further, in the direction in which it counts.
  virtual void AdvanceGenerator(const std::string& Name, std::int64_t Value) = 0;
  /// StartValue: the next number that it gives out; nothing: that which the structure says. Replace: one that exists
  /// counts then as the structure says; it goes on where it stands unless StartValue says otherwise.
  virtual void CreateGenerator(const std::string& Name, std::optional<std::int64_t> StartValue, bool Replace) = 0;
  virtual void DropGenerator(const std::string& Name) = 0;

  virtual bool ViewExist(const std::string& Name) = 0;
  /// Replace: one that exists is redefined, or goes first; what stands around it stays as it is. Verify: the view is
  /// tried, and an error takes it back; some engines accept a view of nothing.
  virtual void CreateView(const std::string& Name, bool Replace, bool Verify) = 0;
  virtual void DropView(const std::string& Name) = 0;

  /// Stored procedures are of two kinds: those that return rows, and all others.
  virtual bool ExecStoredProcExist(const std::string& Name) = 0;
  virtual bool SelectStoredProcExist(const std::string& Name) = 0;
  // Replace: one of the same kind that exists is redefined, or goes first; its owner, rights and settings stay.
  virtual void CreateExecStoredProc(const std::string& Name, bool Replace) = 0;
  virtual void CreateSelectStoredProc(const std::string& Name, bool Replace) = 0;
  virtual void DropStoredProc(const std::string& Name) = 0;
};

/// The databases as the data dictionary knows them. Databases are named; an empty name is the application's default
/// database.
class TDicDBContainer {
 public:
  virtual ~TDicDBContainer() = default;

  /// Owned by the container. EDatabaseError when the database cannot be reached.
  virtual TDicDatabase& Database(const std::string& DatabaseName) = 0;
};

/// The installed container. Raises EAccessViolation when there is none.
TDicDBContainer& DicDBContainer();
/// Installs one for the process, borrowed, or none when null; returns the one before. TServiceGuard undoes it.
TDicDBContainer* InstallService(TDicDBContainer* Service);

}  // namespace velkrund

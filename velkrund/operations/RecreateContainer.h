#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "velkrund/operations/HookGuard.h"
#include "velkrund/operations/UtilOperation.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

class TDicDatabase;
class TEISection;

/// An operation that creates one database object again, as the container runs it.
class TRecreateOperation : public TDatabaseUtilOperation {
 public:
  /// The first value of a generator, above 0; other objects have none.
  virtual void SetStartValue(std::int64_t) {}

  std::string ObjectName;
};

/// The makers of recreation operations, by the object type's number. Filled when the module starts.
class TRecreateOperationList {
 public:
  using TFactory = std::function<std::unique_ptr<TRecreateOperation>()>;

  /// A later factory of the same type takes the place of the earlier one.
  void Register(int ObjectType, TFactory Factory) { FFactories[ObjectType] = std::move(Factory); }
  /// Null for a type that nobody registered.
  std::unique_ptr<TRecreateOperation> Create(int ObjectType) const;

 private:
  std::map<int, TFactory> FFactories;
};

TRecreateOperationList& RecreateOperations();
/// Installs another list and returns the one before.
TRecreateOperationList SetRecreateOperations(TRecreateOperationList List);
using TRecreateOperationsGuard = THookGuard<TRecreateOperationList, &SetRecreateOperations>;

/// Creates generators, views and stored procedures that may need each other, in whatever order they were added: what
/// failed is tried again as long as something else could be created. Generators and views come before procedures.
class TUORecreateContainer : public TDatabaseUtilOperation {
 public:
  /// Returns the new entry's operation, owned by the container; null, and nothing added, for other types. Section:
  /// where the object comes from, its "StartValue" is that of a generator; may be null. DatabaseName must be set
  /// before.
  TRecreateOperation* Add(int ObjectType, const std::string& Name, const TEISection* Section = nullptr);
  /// The same where the database has an object of that type and name; null Database: nothing is added.
  TRecreateOperation* AddIfExist(int ObjectType, const std::string& Name, TDicDatabase* Database);
  void Clear();
  int Count() const { return static_cast<int>(FEntries.size()); }
  /// Null for an index out of range.
  TRecreateOperation* Items(int Index) const;
  /// -1 for an index out of range.
  int GetObjectType(int Index) const;
  /// Generators, views and stored procedures.
  static bool OurObjectType(int ObjectType) {
    return ObjectType >= GeneratorObjectType && ObjectType <= SelectStoredProcObjectType;
  }
  /// The names of what is not created yet, each followed by ";", cut with " more..." beyond 500 UTF-16 units.
  std::string GatherObjectsNames() const;

  /// Creates what is not created yet; 1 even when it was cancelled, 0 when EAbort ended it. What could not be created
  /// is reported: in a message box when ContinueOnError is set, else as an error.
  int Execute() override;

  bool ContinueOnError = true;

  static const TUtilOperationDescriptor Descriptor;

 private:
  struct TEntry {
    std::string Name;  // empty once the object is created
    int ObjectType;
    std::unique_ptr<TRecreateOperation> Operation;
  };
  struct TSweep {
    bool Created = false;
    bool Failed = false;
  };

  void RunPass(bool GeneratorsAndViewsOnly);
  TSweep RunSweep(bool GeneratorsAndViewsOnly);
  void Create(TEntry& Entry, TSweep& Sweep);
  void ReportNotCreated();

  std::vector<TEntry> FEntries;
  int FCreated = 0;
  std::string FLastError;
};

}  // namespace velkrund

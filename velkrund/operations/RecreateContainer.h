#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "velkrund/operations/AskObjects.h"
#include "velkrund/operations/HookGuard.h"
#include "velkrund/operations/RecreateOverwrite.h"
#include "velkrund/operations/UtilOperation.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

class TDicDatabase;
class TEISection;

/// An operation that creates one database object again, as the container runs it. Its result is 0 where the creation
/// was declined.
class TRecreateOperation : public TDatabaseUtilOperation {
 public:
  TRecreateOperation() { OverwriteAsk.FAlwaysAsk = true; }

  /// Where a generator stood when its section was written, above 0; other objects have none.
  virtual void SetStartValue(std::int64_t) {}
  /// Whether the last run has done nothing because somebody wanted it so, whatever its result.
  bool Declined() const { return FDeclined; }

  std::string ObjectName;
  TYesNoAsk OverwriteAsk;       // whether one that is there is replaced; asked unless told otherwise, else FYes says it
  bool TakesLongNames = false;  // a name too long for some databases is not asked about

 protected:
  bool FDeclined = false;
};

/// What has become of an object of the container. Pending: it was not tried yet, or failed.
enum class TRecreateState { Pending, Created, Declined };

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

/// Whether the database has a generator, view or stored procedure of that name; false for other types. Raises
/// EDatabaseError when the database cannot say.
bool ObjectExists(TDicDatabase& Database, int ObjectType, const std::string& Name);

/// Creates generators, views and stored procedures that may need each other, in whatever order they were added: what
/// failed is tried again as long as something else could be created. Generators and views come before procedures. Each
/// attempt is a transaction of its own. What was declined is neither tried again nor a failure.
class TUORecreateContainer : public TDatabaseUtilOperation {
 public:
  TUORecreateContainer() { OverwriteAsk.FAlwaysAsk = true; }

  /// Returns the new entry's operation, owned by the container; null, and nothing added, for other types. Section:
  /// where the object comes from, its "StartValue" is that of a generator; may be null, and is known by its place alone
  /// later. DatabaseName must be set before.
  TRecreateOperation* Add(int ObjectType, const std::string& Name, const TEISection* Section = nullptr);
  /// The same where the database has an object of that type and name; null Database: nothing is added.
  TRecreateOperation* AddIfExist(int ObjectType, const std::string& Name, TDicDatabase* Database);
  /// Takes out what was added with the section.
  void Remove(const TEISection& Section);
  void Clear();
  int Count() const { return static_cast<int>(FEntries.size()); }
  /// Null for an index out of range.
  TRecreateOperation* Items(int Index) const;
  /// -1 for an index out of range.
  int GetObjectType(int Index) const;
  // Of an index that is there.
  TRecreateState State(int Index) const { return FEntries[static_cast<std::size_t>(Index)].State; }
  /// Of the last attempt, of one that failed; else null.
  const std::exception_ptr& Error(int Index) const { return FEntries[static_cast<std::size_t>(Index)].Error; }
  /// Generators, views and stored procedures.
  static bool OurObjectType(int ObjectType) {
    return ObjectType >= GeneratorObjectType && ObjectType <= SelectStoredProcObjectType;
  }
  /// The names of what is not created yet and was not declined, each followed by ";", cut with " more..." beyond 500
  /// UTF-16 units.
  std::string GatherObjectsNames() const;

  /// Creates what can be created by now; what fails stays for later, and nothing is reported. EAbort leaves it.
  void CreatePending();
  /// Reports what is not created yet, as Execute does.
  void ReportPending();
  /// Creates what is not created yet and was not declined; 1 even when it was cancelled, 0 when EAbort ended it. What
  /// could not be created is reported: in a message box when ContinueOnError is set, else as an error.
  int Execute() override;

  /// OverwriteAsk as one setting.
  TRecreateOverwrite Overwrite() const { return OverwriteOf(OverwriteAsk); }
  void SetOverwrite(TRecreateOverwrite Overwrite) { SetOverwriteOf(OverwriteAsk, Overwrite); }

  bool ContinueOnError = true;
  TYesNoAsk OverwriteAsk;  // of the operations whose own decides nothing; asks unless told otherwise

  static const TUtilOperationDescriptor Descriptor;

 private:
  struct TEntry {
    std::string Name;
    int ObjectType;
    const TEISection* Section;
    std::unique_ptr<TRecreateOperation> Operation;
    TRecreateState State = TRecreateState::Pending;
    std::exception_ptr Error = nullptr;
  };
  struct TSweep {
    bool Created = false;
    bool Failed = false;
  };

  void RunPass(bool GeneratorsAndViewsOnly);
  TSweep RunSweep(bool GeneratorsAndViewsOnly);
  void Create(TEntry& Entry, TSweep& Sweep);
  void Settle(TEntry& Entry, TRecreateState State);
  std::vector<std::string> PendingNames() const;
  void ReportNotCreated(const std::vector<std::string>& Names);

  std::vector<TEntry> FEntries;
  int FCreated = 0;
  std::string FLastError;
};

}  // namespace velkrund

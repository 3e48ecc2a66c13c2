#include "velkrund/operations/RecreateContainer.h"

#include <utility>

#include "velkrund/eif/Section.h"
#include "velkrund/operations/NotCreatedReport.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/dictionary/DicDatabase.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// 0 when the section names none.
std::int64_t StartValueOf(const TEISection& Section) {
  const auto Value = Section.FindParam("StartValue");
  return Value ? StrToInt64(*Value).value_or(0) : 0;
}

}  // namespace

bool ObjectExists(TDicDatabase& Database, int ObjectType, const std::string& Name) {
  switch (ObjectType) {
    case GeneratorObjectType:
      return Database.GeneratorExist(Name);
    case ViewObjectType:
      return Database.ViewExist(Name);
    case ExecStoredProcObjectType:
      return Database.ExecStoredProcExist(Name);
    case SelectStoredProcObjectType:
      return Database.SelectStoredProcExist(Name);
    default:
      return false;
  }
}

constinit const TUtilOperationDescriptor TUORecreateContainer::Descriptor =
    OperationDescriptor<TUORecreateContainer>("TUORecreateContainer");

std::unique_ptr<TRecreateOperation> TRecreateOperationList::Create(int ObjectType) const {
  const auto Found = FFactories.find(ObjectType);
  return Found == FFactories.end() ? nullptr : Found->second();
}

TRecreateOperationList& RecreateOperations() {
  static TRecreateOperationList List;
  return List;
}

TRecreateOperationList SetRecreateOperations(TRecreateOperationList List) {
  return std::exchange(RecreateOperations(), std::move(List));
}

TRecreateOperation* TUORecreateContainer::Add(int ObjectType, const std::string& Name, const TEISection* Section) {
  if (!OurObjectType(ObjectType)) return nullptr;
  std::unique_ptr<TRecreateOperation> Operation = RecreateOperations().Create(ObjectType);
  if (!Operation) return nullptr;
  Operation->Owner = this;
  Operation->ObjectName = Name;
  Operation->DatabaseName = DatabaseName;
  if (ObjectType == GeneratorObjectType && Section)
    if (const std::int64_t StartValue = StartValueOf(*Section); StartValue > 0) Operation->SetStartValue(StartValue);
  FEntries.push_back({Name, ObjectType, Section, std::move(Operation)});
  return FEntries.back().Operation.get();
}

TRecreateOperation* TUORecreateContainer::AddIfExist(int ObjectType, const std::string& Name, TDicDatabase* Database) {
  return Database && ObjectExists(*Database, ObjectType, Name) ? Add(ObjectType, Name) : nullptr;
}

void TUORecreateContainer::Remove(const TEISection& Section) {
  std::erase_if(FEntries, [&](const TEntry& Entry) { return Entry.Section == &Section; });
}

void TUORecreateContainer::Clear() {
  FEntries.clear();
  FCreated = 0;
  FLastError.clear();
}

TRecreateOperation* TUORecreateContainer::Items(int Index) const {
  return Index >= 0 && Index < Count() ? FEntries[static_cast<std::size_t>(Index)].Operation.get() : nullptr;
}

int TUORecreateContainer::GetObjectType(int Index) const {
  return Index >= 0 && Index < Count() ? FEntries[static_cast<std::size_t>(Index)].ObjectType : -1;
}

std::vector<std::string> TUORecreateContainer::PendingNames() const {
  std::vector<std::string> Names;
  for (const TEntry& Entry : FEntries)
    if (Entry.State == TRecreateState::Pending) Names.push_back(Entry.Name);
  return Names;
}

std::string TUORecreateContainer::GatherObjectsNames() const { return NamesInReport(PendingNames()); }

int TUORecreateContainer::Execute() {
  try {
    CreatePending();
    ReportPending();
  } catch (const EAbort&) {
    return 0;
  }
  return 1;
}

void TUORecreateContainer::CreatePending() {
  RunPass(true);
  RunPass(false);
}

void TUORecreateContainer::ReportPending() {
  if (const std::vector<std::string> Names = PendingNames(); !Names.empty()) ReportNotCreated(Names);
}

void TUORecreateContainer::RunPass(bool GeneratorsAndViewsOnly) {
  TSweep Sweep;
  do Sweep = RunSweep(GeneratorsAndViewsOnly);
  while (Sweep.Created && Sweep.Failed);
}

TUORecreateContainer::TSweep TUORecreateContainer::RunSweep(bool GeneratorsAndViewsOnly) {
  TSweep Sweep;
  for (TEntry& Entry : FEntries) {
    if (IsCanceled()) return {};
    if (Entry.State != TRecreateState::Pending) continue;
    if (GeneratorsAndViewsOnly && Entry.ObjectType != GeneratorObjectType && Entry.ObjectType != ViewObjectType)
      continue;
    Create(Entry, Sweep);
  }
  return Sweep;
}

void TUORecreateContainer::Create(TEntry& Entry, TSweep& Sweep) {
  TYesNoAsk& Ask = Entry.Operation->OverwriteAsk;
  if (Ask.FAlwaysAsk && !Ask.FCallback) Ask.Assign(OverwriteAsk);
  try {
    TTransaction Transaction(DatabaseName);
    if (!Entry.Operation->Execute() || Entry.Operation->Declined()) return Settle(Entry, TRecreateState::Declined);
    Transaction.Commit();
  } catch (const EAbort&) {
    throw;
  } catch (const EQuestionUnanswered&) {
    throw;
  } catch (const std::exception& Error) {
    Entry.Error = std::current_exception();
    FLastError = Format(BaseMng().LString("M_Test_ComUtils_ErrorOnCreateDBStructure"), Entry.Name);
    FLastError += "\r\n";
    FLastError += Error.what();
    WriteLog(TTraceLevel::Info, FLastError);
    Sweep.Failed = true;
    return;
  }
  Sweep.Created = true;
  ShowProgress(++FCreated, Count(), Entry.Name);
  Settle(Entry, TRecreateState::Created);
}

/// What several sections describe in parts is asked about once.
void TUORecreateContainer::Settle(TEntry& Entry, TRecreateState State) {
  Entry.State = State;
  Entry.Error = nullptr;
  for (TEntry& Other : FEntries) {
    const bool IsSame = Other.ObjectType == Entry.ObjectType && SameText(Other.Name, Entry.Name);
    if (!IsSame || Other.State != TRecreateState::Pending) continue;
    if (State == TRecreateState::Declined)
      Other.State = State;
    else
      SetOverwriteOf(Other.Operation->OverwriteAsk, TRecreateOverwrite::Yes);
  }
}

void TUORecreateContainer::ReportNotCreated(const std::vector<std::string>& Names) {
  const std::string Report = NotCreatedReport(Names, FLastError);
  WriteLog(TTraceLevel::Error, Report);
  if (!ContinueOnError) throw Exception(Report);
  ShowNotCreated(Report);
}

}  // namespace velkrund

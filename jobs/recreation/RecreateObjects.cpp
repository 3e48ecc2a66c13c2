#include "jobs/recreation/RecreateObjects.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "standalone/dictionary/StoredDescriptions.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/operations/RecreateContainer.h"
#include "velkrund/platform/dictionary/DicDatabase.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

namespace {

using TThis = TJobRecreateObjects;

constexpr std::string_view Kinds[] = {"view", "generator", "procedure"};

constexpr TProperty Properties[] = {
    ChoiceOf<&TThis::Kind>("Kind", "what is made anew", Kinds),
    PropertyOf<&TRecreationJob::Names>("ObjectNames", "the objects to make anew"),
    PropertyOf<&TThis::StartValue>("StartValue",
                                   "the next number that a generator gives out; empty: it goes on where it stands"),
    TPolicyRows::ExistingObjects,
    TPolicyRows::AllowMissing,
    TPolicyRows::LongNames,
    TPolicyRows::OnError,
    TPolicyRows::DryRun,
};

std::unique_ptr<TUORecreateObject> SingleOf(int ObjectType) {
  switch (ObjectType) {
    case GeneratorObjectType:
      return std::make_unique<TUORecreateGenerator>();
    case ViewObjectType:
      return std::make_unique<TUORecreateView>();
    case ExecStoredProcObjectType:
      return std::make_unique<TUORecreateExecStoredProc>();
    default:
      return std::make_unique<TUORecreateSelectStoredProc>();
  }
}

std::unique_ptr<TUORecreateObjects> ListOf(int ObjectType) {
  switch (ObjectType) {
    case GeneratorObjectType:
      return std::make_unique<TUORecreateGenerators>();
    case ViewObjectType:
      return std::make_unique<TUORecreateViews>();
    case ExecStoredProcObjectType:
      return std::make_unique<TUORecreateExecStoredProcs>();
    default:
      return std::make_unique<TUORecreateSelectStoredProcs>();
  }
}

TScript ScriptOf(const TRecreation& Item, const std::string& DatabaseName, const TConnection& Connection) {
  const std::string& Name = Item.Structure.Name;
  const TScriptWriter& Scripts = Connection.Scripts();
  if (Item.Structure.Type == ViewObjectType) return Scripts.View(*StoredView(DatabaseName, Name), Item.IsThere);
  if (Item.Structure.Type == GeneratorObjectType) {
    const bool Alters = Item.IsThere || !Connection.Capabilities().Generators;
    return Alters ? TScript() : Scripts.Generator(*StoredGenerator(DatabaseName, Name), std::nullopt);
  }
  if (!Connection.Capabilities().Procedures) return {};
  const bool Selects = Item.Structure.Type == SelectStoredProcObjectType;
  return Scripts.Procedure(*StoredProcedure(DatabaseName, Name, Selects), Item.IsThere);
}

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobRecreateObjects");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobRecreateObjectsInterface", {&JobProperties, Properties});

void TThis::CheckSettings() const {
  TRecreationJob::CheckSettings();
  if (StartValue.empty()) return;
  if (Kind != TRecreatedKind::Generator) throw ESettingsError(Setting("StartValue") + " is for generators alone");
  if (Names.size() > 1) throw ESettingsError(Setting("StartValue") + " is for one generator at a time");
  if (!StrToInt64(StartValue))
    throw ESettingsError(Format("%s is no whole number of 64 bits: '%s'", Setting("StartValue"), StartValue));
}

std::string_view TThis::What() const { return Kinds[static_cast<std::size_t>(Kind)]; }

std::vector<int> TThis::Types() const {
  switch (Kind) {
    case TRecreatedKind::View:
      return {ViewObjectType};
    case TRecreatedKind::Generator:
      return {GeneratorObjectType};
    default:
      return {ExecStoredProcObjectType, SelectStoredProcObjectType};
  }
}

std::string_view TThis::OverwriteKey() const {
  switch (Kind) {
    case TRecreatedKind::View:
      return "M_Velkrund_DicUtils_RecreateOverwriteViewConfirm";
    case TRecreatedKind::Generator:
      return "M_Velkrund_DicUtils_RecreateOverwriteGeneratorConfirm";
    default:
      return "M_Velkrund_DicUtils_RecreateOverwriteStoredProcConfirm";
  }
}

bool TThis::Exists(const TRecreation& Item) {
  return ObjectExists(DicDBContainer().Database(DatabaseName), Item.Structure.Type, Item.Structure.Name);
}

void TThis::Check(TRecreation& Item) {
  if (Kind != TRecreatedKind::View || LongNames().MayMakeView(Item.Structure.Name)) return;
  Item.State = TItemState::LeftOut;
  Item.Note = LText("M_Velkrund_Jobs_NameIsLong");
}

std::vector<TRecreation*> TThis::Waiting() {
  std::vector<TRecreation*> Result;
  for (TRecreation& Item : ChangeItems())
    if (Item.State == TItemState::NotReached) Result.push_back(&Item);
  return Result;
}

void TThis::RecreateAll(TAllowedGaps&) {
  FReport.clear();
  // What the run does not ask is settled; what it tells is told with its end.
  const std::string GoOn = Manager().LString("M_Velkrund_DicUtils_ContinueRecreate");
  const TMessageBoxGuard Box([&](TWindowHandle, std::u16string_view Text, std::u16string_view, std::uint32_t Flags,
                                 std::int32_t, std::int32_t) {
    const std::string Told = FromUtf16(Text);
    if ((Flags & MB_YESNO) != 0) return Told.ends_with(GoOn) ? IDYES : IDNO;
    FReport += (FReport.empty() ? "" : "\r\n") + Told;
    return IDOK;
  });
  if (Items().size() == 1) return RecreateOne(ChangeItems().front());
  while (Sweep()) {
  }
  std::erase_if(FFailed, [this](const auto& Failed) { return LeaveMissing(*Failed.first, Failed.second); });
  if (FFailed.empty()) return;
  if (!FReport.empty()) Note(FReport);
  for (const auto& [Item, Error] : FFailed) Fail(*Item, Error);
  const auto& [First, Reason] = *FFailed.begin();
  if (!MayGoOn(*First)) std::rethrow_exception(Reason);
}

/// What may be missing is left out, when nothing could make it.
bool TThis::LeaveMissing(TRecreation& Item, const std::exception_ptr& Error) {
  const TErrorFacts Facts = FactsOf(Error);
  if (!MayBeMissing(Policies, Facts.Info)) return false;
  Item.State = TItemState::LeftOut;
  Item.Note = Facts.Message;
  return true;
}

void TThis::RecreateOne(TRecreation& Item) {
  const auto Operation = SingleOf(Item.Structure.Type);
  Operation->Owner = this;
  Operation->DatabaseName = DatabaseName;
  Operation->ObjectName = Item.Structure.Name;
  Operation->SetOverwrite(TRecreateOverwrite::Yes);
  if (auto* const Generator = dynamic_cast<TUORecreateGenerator*>(Operation.get()); Generator && !StartValue.empty())
    Generator->StartValue = StrToInt64(StartValue);
  try {
    Operation->Execute();
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception&) {
    if (LeaveMissing(Item, std::current_exception())) return;
    Fail(Item, std::current_exception());
    throw;
  }
  Item.State = TItemState::Done;
}

/// Whatever order they come in.
bool TThis::Sweep() {
  const std::vector<TRecreation*> All = Waiting();
  FFailed.clear();
  FReport.clear();
  for (const int Type : Types()) {
    std::vector<TRecreation*> OfType;
    std::copy_if(All.begin(), All.end(), std::back_inserter(OfType),
                 [&](const TRecreation* Item) { return Item->Structure.Type == Type; });
    if (!OfType.empty()) RunList(Type, OfType);
  }
  return !FFailed.empty() && FFailed.size() < All.size();
}

void TThis::RunList(int ObjectType, const std::vector<TRecreation*>& Meant) {
  const auto Operation = ListOf(ObjectType);
  Operation->Owner = this;
  Operation->DatabaseName = DatabaseName;
  for (const TRecreation* const Item : Meant) Operation->Names.push_back(Item->Structure.Name);
  Operation->SetOverwrite(TRecreateOverwrite::Yes);
  Operation->FOnFailed = [&](const std::string& Name, const std::exception_ptr& Error) {
    FFailed[Find({ObjectType, Name})] = Error;
  };
  Operation->Execute();
  if (IsCanceled()) throw EAbort("cancelled");
  for (TRecreation* const Item : Meant)
    if (!FFailed.contains(Item)) Item->State = TItemState::Done;
}

/// By doing it, since it is all taken back: what fails shows then.
void TThis::Plan(TAllowedGaps& Gaps) {
  RecreateAll(Gaps);
  for (TRecreation& Item : ChangeItems()) {
    if (Item.State != TItemState::Done) continue;
    Item.State = TItemState::NotReached;
    const TScript Script = ScriptOf(Item, DatabaseName, Connection());
    if (Script.Statements.empty())
      AddToPlan({Format("%s the %s '%s'", Item.IsThere ? "change" : "make", What(), Item.Structure.Name)});
    for (const TScriptStatement& Statement : Script.Statements)
      AddToPlan({"make " + Statement.What, {}, Statement.Text});
  }
}

}  // namespace velkrund

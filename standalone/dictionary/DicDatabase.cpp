#include "standalone/dictionary/DicDatabase.h"

#include <algorithm>
#include <functional>

#include "standalone/dictionary/ForeignText.h"
#include "standalone/dictionary/Redescription.h"
#include "standalone/dictionary/StoredDescriptions.h"
#include "standalone/drivers/GeneratorRange.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

[[noreturn]] void RefuseSecond(std::string_view What, const std::string& Name) {
  throw EDatabaseError(Format("There is a %s '%s' in the database already", What, Name));
}

[[noreturn]] void RefuseMissing(std::string_view What, const std::string& Name) {
  throw EDatabaseError(Format("There is no %s '%s' in the database", What, Name));
}

/// What a structure describes, under the name of the structure: a copy may have another one than its original.
template <typename TDescription>
TDescription Described(std::optional<TDescription> Stored, std::string_view What, const std::string& Name) {
  if (!Stored)
    throw EDatabaseError(Format("There is no structure that describes the %s '%s' in the database", What, Name),
                         {.Code = TErrorCode::StructureMissing, .Value = Name});
  if (SameText(Stored->FullName(), Name)) return *std::move(Stored);
  const std::string Prefix = Stored->Schema + ".";
  const bool IsOfSchema = !Stored->Schema.empty() && SameText(Name.substr(0, Prefix.size()), Prefix);
  if (!IsOfSchema) Stored->Schema.clear();
  Stored->Name = IsOfSchema ? Name.substr(Prefix.size()) : Name;
  return *std::move(Stored);
}

/// Makes an object in a part of the caller's transaction. That another engine's text was refused is a gap of its own,
/// also where such gaps are allowed: the object may be made later, when what it needs is there.
void TryToMake(const std::string& DatabaseName, const TDicEngineWords& Words, const TConnection& Target,
               const TScriptGap& Gap, const std::function<void()>& Make) {
  const std::string_view Foreign = ForeignEngine(Words, Target.Scripts().Engine());
  try {
    TTransaction Part(DatabaseName);
    Make();
    Part.Commit();
  } catch (const EGap&) {
    throw;
  } catch (const EAbort&) {
    throw;
  } catch (const EDatabaseError& Error) {
    if (Foreign.empty()) throw;
    TScriptGap Refused = Gap;
    Refused.Why = Format("which has no text for %s; that for %s was tried: %s", Target.EngineName(),
                         EngineTitle(Foreign), Error.what());
    throw EGap({Refused});
  }
}

/// What is described, under the name of the one that is there: the engine may tell names apart that people do not.
template <typename TDescription>
TDescription InPlaceOf(const TDicObjectDescription& There, TDescription Described) {
  Described.Name = There.Name;
  Described.Schema = There.Schema;
  return Described;
}

/// A view that is redefined keeps its triggers, with what hangs on them.
TDicViewDescription WithoutTriggersOf(const TDicViewDescription& There, TDicViewDescription View) {
  std::erase_if(View.Triggers, [&](const TDicTrigger& Trigger) {
    return std::find(There.Triggers.begin(), There.Triggers.end(), Trigger) != There.Triggers.end();
  });
  return View;
}

/// Redefined where the engine can, so that what hangs on it stays; else dropped, and made again.
void RedefineOrMakeAnew(const std::string& DatabaseName, const std::function<void()>& Redefine,
                        const std::function<void()>& Drop, const std::function<void()>& Make) {
  std::string Reason;
  if (Redefine) {
    try {
      TTransaction Part(DatabaseName);
      Redefine();
      return Part.Commit();
    } catch (const EGap&) {
      throw;
    } catch (const EDatabaseError& Error) {
      // What others do at the same time says nothing of the object.
      const TErrorCode Code = Error.Info().Code;
      if (Code == TErrorCode::DatabaseBusy || Code == TErrorCode::Connection || Code == TErrorCode::DiskFull) throw;
      Reason = Error.what();
    }
  }
  try {
    Drop();
  } catch (const EDatabaseError& Error) {
    if (Reason.empty()) throw;
    throw EDatabaseError(Format("%s; nor can the one that is there be dropped first: %s", Reason, Error.what()),
                         Error.Info());
  }
  Make();
}

}  // namespace

bool TStandaloneDicDatabase::GeneratorExist(const std::string& Name) { return Generators()->Find(Name).has_value(); }

TDicGeneratorDescription TStandaloneDicDatabase::ExistingGenerator(const std::string& Name) {
  std::optional<TDicGeneratorDescription> Found = Generators()->Find(Name);
  if (!Found) RefuseMissing("generator", Name);
  return *std::move(Found);
}

std::int64_t TStandaloneDicDatabase::GeneratorValue(const std::string& Name) {
  return Generators()->Value(ExistingGenerator(Name));
}

/// Full names begin with the schema where the engine has schemas.
TDicGeneratorDescription TStandaloneDicDatabase::NewGenerator(const std::string& Name) {
  TDicGeneratorDescription Result;
  const std::size_t Stop = Connection().Capabilities().Generators ? Name.find('.') : Name.npos;
  if (Stop != Name.npos) Result.Schema = Name.substr(0, Stop);
  Result.Name = Stop == Name.npos ? Name : Name.substr(Stop + 1);
  return Result;
}

void TStandaloneDicDatabase::SetGenerator(const std::string& Name, std::int64_t Step, std::int64_t Value) {
  TTransaction Transaction(FDatabaseName);
  const auto Kept = Generators();
  if (const std::optional<TDicGeneratorDescription> Found = Kept->Find(Name)) {
    Kept->SetValue(*Found, Value);
  } else {
    TDicGeneratorDescription Made = NewGenerator(Name);
    Made.Counter.Step = std::to_string(Step);
    const std::int64_t Start = Behind(Name, Value, Step);
    // Upwards the least number is 1 unless it is said, downwards the greatest one is -1.
    if (Step > 0 && Start < 1) Made.Counter.Min = std::to_string(Start);
    if (Step < 0 && Start > -1) Made.Counter.Max = std::to_string(Start);
    Kept->Create(Made, Start);
  }
  Transaction.Commit();
}

void TStandaloneDicDatabase::AdvanceGenerator(const std::string& Name, std::int64_t Value) {
  TTransaction Transaction(FDatabaseName);
  const auto Kept = Generators();
  const TDicGeneratorDescription Found = ExistingGenerator(Name);
  // As it is, so that nobody asks it meanwhile.
  Kept->Alter(Found, Found, std::nullopt);
  const std::int64_t Stands = Kept->Value(Found);
  const bool IsBehind = RangeOf(Found.FullName(), Found.Counter).Step > 0 ? Stands < Value : Stands > Value;
  if (IsBehind) Kept->SetValue(Found, Value);
  Transaction.Commit();
}

void TStandaloneDicDatabase::CreateGenerator(const std::string& Name, std::optional<std::int64_t> StartValue,
                                             bool Replace) {
  const TDicGeneratorDescription Stored = Described(StoredGenerator(FDatabaseName, Name), "generator", Name);
  TTransaction Transaction(FDatabaseName);
  const auto Kept = Generators();
  if (const std::optional<TDicGeneratorDescription> Found = Kept->Find(Stored.FullName())) {
    if (!Replace) RefuseSecond("generator", Stored.FullName());
    Kept->Alter(*Found, InPlaceOf(*Found, Stored), StartValue);
  } else {
    Kept->Create(Stored, StartValue);
  }
  const TDicGeneratorDescription WithOwnWords = WithWords(Stored, ExistingGenerator(Stored.FullName()), Engine());
  if (WithOwnWords != Stored) StoreDescription(FDatabaseName, WithOwnWords);
  Transaction.Commit();
}

void TStandaloneDicDatabase::DropGenerator(const std::string& Name) {
  TTransaction Transaction(FDatabaseName);
  Generators()->Drop(ExistingGenerator(Name));
  Transaction.Commit();
}

std::optional<TTableInfo> TStandaloneDicDatabase::FindView(const std::string& Name) {
  const std::optional<TTableInfo> Found = Connection().Schema().FindTable(Name);
  return Found && Found->Kind == TTableKind::View ? Found : std::nullopt;
}

TTableInfo TStandaloneDicDatabase::ExistingView(const std::string& Name) {
  const std::optional<TTableInfo> Found = FindView(Name);
  if (!Found) RefuseMissing("view", Name);
  return *Found;
}

bool TStandaloneDicDatabase::ViewExist(const std::string& Name) { return FindView(Name).has_value(); }

void TStandaloneDicDatabase::MakeView(const TDicViewDescription& View, bool Replace, bool Verify) {
  TConnection& Target = Connection();
  RunScript(Target, Target.Scripts().View(View, Replace), FGaps);
  if (!Verify) return;
  const std::string Quoted = Target.Dialect().SQLName(ExistingView(View.FullName()));
  Target.Query("SELECT * FROM " + Quoted + " WHERE 1 = 0")->Next();
}

void TStandaloneDicDatabase::Trace(const TSurroundings& Around) {
  for (const std::string& Remark : Around.Remarks()) FManager.WriteTrace(TraceSubsystem, TTraceLevel::Info, Remark);
}

void TStandaloneDicDatabase::ReplaceView(const TDicViewDescription& View, const TTableInfo& There, bool Verify) {
  TConnection& Target = Connection();
  const TDicViewDescription Before = Target.Definitions().View(There), After = InPlaceOf(Before, View);
  const auto Around = Target.Surroundings(There, {});
  const bool CanRedefine = Target.Capabilities().RedefinesViews && !Before.Materialized && !View.Materialized;
  RedefineOrMakeAnew(
      FDatabaseName,
      CanRedefine ? [&] { MakeView(WithoutTriggersOf(Before, After), true, Verify); } : std::function<void()>(),
      [&] {
        Around->SetAside();
        Target.Execute(Target.Scripts().DropView(Before));
      },
      [&] {
        MakeView(After, false, Verify);
        Around->PutBack(TPutBack::Whole);
        Trace(*Around);
      });
}

void TStandaloneDicDatabase::CreateView(const std::string& Name, bool Replace, bool Verify) {
  const TDicViewDescription Stored = Described(StoredView(FDatabaseName, Name), "view", Name);
  const std::string View = Stored.FullName();
  TTransaction Transaction(FDatabaseName);
  const std::optional<TTableInfo> There = FindView(View);
  if (!Replace && There) RefuseSecond("view", View);
  const bool IsForeign = !ForeignEngine(Stored.Words, Engine()).empty();
  const TScriptGap Gap{"views", Format("the view '%s'", View)};
  TryToMake(FDatabaseName, Stored.Words, Connection(), Gap, [&] {
    if (There)
      ReplaceView(Stored, *There, Verify || IsForeign);
    else
      MakeView(Stored, false, Verify || IsForeign);
  });
  const TDicViewDescription WithOwnWords =
      WithWords(Stored, Connection().Definitions().View(ExistingView(View)), Engine());
  if (WithOwnWords != Stored) StoreDescription(FDatabaseName, WithOwnWords);
  Transaction.Commit();
}

void TStandaloneDicDatabase::DropView(const std::string& Name) {
  TTransaction Transaction(FDatabaseName);
  TConnection& Target = Connection();
  Target.Execute(Target.Scripts().DropView(Target.Definitions().View(ExistingView(Name))));
  Transaction.Commit();
}

bool TStandaloneDicDatabase::HasProcedure(const std::string& Name, bool Selects) {
  const std::optional<TDicProcedureDescription> Found = Procedures()->Find(Name);
  return Found && Found->Selects == Selects;
}

void TStandaloneDicDatabase::ReplaceProcedure(TProcedures& Kept, const TDicProcedureDescription& There,
                                              const TDicProcedureDescription& Procedure) {
  const TDicProcedureDescription After = InPlaceOf(There, Procedure);
  const auto Around = Kept.Surroundings(There);
  if (Around) Around->SetAside();
  RedefineOrMakeAnew(
      FDatabaseName, [&] { Kept.Redefine(After); }, [&] { Kept.Drop(There); }, [&] { Kept.Create(After); });
  if (!Around) return;
  Around->PutBack(TPutBack::Whole);
  Trace(*Around);
}

void TStandaloneDicDatabase::CreateProcedure(const std::string& Name, bool Selects, bool Replace) {
  const TDicProcedureDescription Stored = Described(StoredProcedure(FDatabaseName, Name, Selects), "procedure", Name);
  const std::string Procedure = Stored.FullName();
  TTransaction Transaction(FDatabaseName);
  const auto Kept = Procedures();
  const std::optional<TDicProcedureDescription> There = Kept->Find(Procedure);
  if (There && There->Selects != Selects)
    throw EDatabaseError(Format("There is a procedure '%s' in the database already that %s; drop it first", Procedure,
                                Selects ? "returns no rows" : "returns rows"));
  if (There && !Replace) RefuseSecond("procedure", Procedure);
  const TScriptGap Gap{"procedures", Format("the procedure '%s'", Procedure)};
  TryToMake(FDatabaseName, Stored.Words, Connection(), Gap, [&] {
    if (There)
      ReplaceProcedure(*Kept, *There, Stored);
    else
      Kept->Create(Stored);
  });
  const std::optional<TDicProcedureDescription> Found = Kept->Find(Procedure);
  if (!Found) RefuseMissing("procedure", Procedure);
  const TDicProcedureDescription WithOwnWords = WithWords(Stored, *Found, Engine());
  if (WithOwnWords != Stored) StoreDescription(FDatabaseName, WithOwnWords);
  Transaction.Commit();
}

void TStandaloneDicDatabase::DropStoredProc(const std::string& Name) {
  TTransaction Transaction(FDatabaseName);
  const auto Kept = Procedures();
  const std::optional<TDicProcedureDescription> Found = Kept->Find(Name);
  if (!Found) RefuseMissing("procedure", Name);
  Kept->Drop(*Found);
  Transaction.Commit();
}

TStandaloneDicDatabase& TStandaloneDicDatabases::Database(const std::string& DatabaseName) {
  std::unique_ptr<TStandaloneDicDatabase>& Result = FDatabases[DatabaseName];
  if (!Result) Result = std::make_unique<TStandaloneDicDatabase>(FManager, DatabaseName, FGaps);
  return *Result;
}

}  // namespace velkrund

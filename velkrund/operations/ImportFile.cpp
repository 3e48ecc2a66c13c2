#include "velkrund/operations/ImportFile.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "velkrund/operations/GoOnQuestion.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

struct TStructure {
  int Type;
  std::string Name;
  const TEISection* Section;
};

bool EndsEverything(const std::exception& Error) {
  return dynamic_cast<const EAbort*>(&Error) || dynamic_cast<const EQuestionUnanswered*>(&Error);
}

bool IsTableData(const TEISection& Section) { return Section.ObjectClass.Role() == TSectionRole::TableData; }

int ObjectTypeOf(const TEISection& Section) {
  const std::string Text = Section.ParamValue("ObjectType");
  if (const auto Number = StrToInt32(Text)) return *Number;
  throw EConvertError(Format("'%s' is not a valid integer value (section '%s', ObjectType)", Text, Section.Name()));
}

/// Puts a host's settings for sections back, whatever sections add to them in a run.
class TSettingsOfHost {
 public:
  explicit TSettingsOfHost(TKvParamsList& Settings) : FSettings(Settings), FBefore(Settings.Pairs()) {}
  TSettingsOfHost(const TSettingsOfHost&) = delete;
  TSettingsOfHost& operator=(const TSettingsOfHost&) = delete;
  ~TSettingsOfHost() {
    FSettings.Clear();
    for (const auto& [Name, Value] : FBefore) FSettings.Add(Name, Value);
  }

 private:
  TKvParamsList& FSettings;
  const std::vector<TKvParamsList::TPair> FBefore;
};

/// The table that rows are for, or that a structure describes; empty: none.
std::string TableOf(const TEISection& Section) {
  const auto TableName = Section.FindParam("TableName");
  if (IsTableData(Section)) return TableName ? *TableName : Section.Name();
  const bool IsTable =
      Section.ObjectClass.Role() == TSectionRole::Structure && ObjectTypeOf(Section) == TableObjectType;
  return IsTable ? Section.ParamValue("ObjectName") : std::string();
}

}  // namespace

constinit const TUtilOperationDescriptor TUOImportFile::Descriptor =
    OperationDescriptor<TUOImportFile>("TUOImportFile");

int TUOImportFile::Execute() {
  if (FCrypted)
    throw Exception(
        "Encrypted files are not supported yet. Decrypt the file first, and import the decrypted one with IsCrypted "
        "off");
  FStopping = false;
  FMissing.reset();
  SetUpContainer();
  Host().FDatabaseName = DatabaseName;
  const TSettingsOfHost Settings(FEIObjectProperties);
  try {
    return ImportAll();
  } catch (const EAbort&) {
    return 0;
  }
}

int TUOImportFile::ImportAll() {
  std::vector<TSource> Sources;
  const TSource& Source = Sources.emplace_back(OpenFile(FFileName));
  BeginPass(BytesOf(*Source.File, Source.Structures) + BytesOf(*Source.File, Source.Tables));
  if (!ImportStructures(Source)) return 0;
  if (!fCreateDBStructures) {
    ImportAllBehind(Sources);
    return 0;
  }
  if (!ImportTables(Sources)) return 0;
  EndPass();
  return FinishObjects(Sources);
}

int TUOImportFile::FinishObjects(const std::vector<TSource>& Sources) {
  const int Result = CreateObjects();
  return Result != 0 && ImportAllBehind(Sources) ? Result : 0;
}

bool TUOImportFile::ImportAllBehind(const std::vector<TSource>& Sources) {
  if (!ImportBehind(Sources, &TSource::Generators)) return false;
  std::int64_t Bytes = 0;
  for (const TSource& Source : Sources)
    Bytes += BytesOf(*Source.File, Source.Languages) + BytesOf(*Source.File, Source.Resources);
  BeginPass(Bytes);
  if (!ImportBehind(Sources, &TSource::Languages) || !ImportBehind(Sources, &TSource::Resources)) return false;
  EndPass();
  return true;
}

bool TUOImportFile::ImportBehind(const std::vector<TSource>& Sources, std::vector<int> TSource::*Sections) {
  for (const TSource& Source : Sources)
    for (const int Index : Source.*Sections) {
      if (Stopping()) return false;
      ImportSection(*Source.File, Index, nullptr);
    }
  return !FStopping;
}

void TUOImportFile::SetUpContainer() {
  FContainer.Clear();
  FContainer.Owner = this;
  FContainer.DatabaseName = DatabaseName;
  FContainer.ContinueOnError = ContinueOnError;
  FContainer.OverwriteAsk.Assign(OverwriteAsk);
  FContainer.FOnShowProgress = FOnShowProgress;
}

int TUOImportFile::CreateObjects() {
  int Result = 1;
  try {
    if (Host().TellsObjects())
      FContainer.CreatePending();
    else
      Result = FContainer.Execute();
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception&) {
    TellObjects();
    throw;
  }
  TellObjects();
  return Result;
}

void TUOImportFile::TellObjects() {
  for (int Index = 0; Index < FContainer.Count(); ++Index)
    Host().ObjectEnded(FContainer.Items(Index)->ObjectName, FContainer.GetObjectType(Index), FContainer.State(Index),
                       FContainer.Error(Index));
}

TUOImportFile::TSource TUOImportFile::OpenFile(const std::string& FileName) {
  try {
    TSource Source{nullptr, Host().OpenedFile(FileName), {}, {}, {}, {}, {}};
    if (!Source.File) {
      Source.Owned = OpenedHere(FileName);
      Source.File = Source.Owned.get();
    }
    TakeSections(Source);
    return Source;
  } catch (const std::exception& Error) {
    Host().FileFailed(FileName, Error);
    throw;
  }
}

std::unique_ptr<TEIFile> TUOImportFile::OpenedHere(const std::string& FileName) const {
  auto File = std::make_unique<TEIFile>(FileSystem ? *FileSystem : BaseMng().Files());
  File->SetReadonly(true);
  File->SetFileName(FileName);
  File->Open();
  return File;
}

void TUOImportFile::TakeSections(TSource& Source) {
  std::vector<TStructure> Structures;
  for (int Index = 0; Index < Source.File->Sections().Count(); ++Index) {
    const TEISection& Section = Source.File->Sections()[Index];
    if (!Host().Takes(*Source.File, Section)) continue;
    const TSectionRole Role = Section.ObjectClass.Role();
    PlaceOf(Source, Role).push_back(Index);
    if (fCreateDBStructures && Role == TSectionRole::Structure)
      Structures.push_back({ObjectTypeOf(Section), Section.ParamValue("ObjectName"), &Section});
  }
  for (const TStructure& Structure : Structures) WillCreate(Structure.Type, Structure.Name, *Structure.Section);
}

std::vector<int>& TUOImportFile::PlaceOf(TSource& Source, TSectionRole Role) {
  switch (Role) {
    case TSectionRole::TableData:
    case TSectionRole::QueryData:
      return Source.Tables;
    case TSectionRole::GeneratorData:
      return Source.Generators;
    case TSectionRole::Language:
      return Source.Languages;
    case TSectionRole::Resource:
    case TSectionRole::SingleResource:  // an error, behind all else
      return Source.Resources;
    default:
      return Source.Structures;
  }
}

void TUOImportFile::CreateEarly() {
  if (Host().CreatesEarly()) FContainer.CreatePending();
}

void TUOImportFile::WillCreate(int Type, const std::string& Name, const TEISection& Section) {
  TRecreateOperation* const Operation = FContainer.Add(Type, Name, &Section);
  if (Operation && !Host().Creates(*Operation, Type)) FContainer.Remove(Section);
  if (Operation || !TUORecreateContainer::OurObjectType(Type)) return;
  Host().NotCreated(Name, Type);
  WriteLog(TTraceLevel::Error, Format("'%s' (type %d) is stored as a structure only: the application has nothing that "
                                      "creates objects of this type in the database",
                                      Name, Type));
}

std::int64_t TUOImportFile::BytesOf(const TEIFile& File, const std::vector<int>& Sections) {
  std::int64_t Bytes = 0;
  for (const int Index : Sections) Bytes += File.Sections()[Index].DataSize;
  return Bytes;
}

bool TUOImportFile::ImportStructures(const TSource& Source) {
  for (const int Index : Source.Structures) {
    if (Stopping()) break;
    ImportSection(*Source.File, Index, nullptr);
  }
  return !Stopping();
}

void TUOImportFile::MakeMissingTables(const std::vector<TSource>& Sources) {
  CreateEarly();
  FMissing = MissingTables(*this, DatabaseName);
  if (!FMissing) return;
  std::vector<std::string> WithRows, Described;
  for (const TSource& Source : Sources) {
    const TEISectionList& Sections = Source.File->Sections();
    for (const int Index : Source.Tables) WithRows.push_back(TableOf(Sections[Index]));
    for (const int Index : Source.Structures) Described.push_back(TableOf(Sections[Index]));
  }
  std::vector<std::string> Names = Described;
  Names.insert(Names.end(), WithRows.begin(), WithRows.end());
  std::erase(Names, std::string());
  FMissing->Make(Names);
  // The error of a table that has rows is that of their section.
  const TStringList HaveRows(std::move(WithRows));
  for (const std::string& Name : Described) {
    if (Name.empty() || HaveRows.IndexOf(Name) >= 0) continue;
    try {
      FMissing->Check(Name);
    } catch (const std::exception& Error) {
      FailTable(Name, Error);
    }
  }
}

/// Whether the table could not be made, which its section will tell. Empty: nobody knows the table yet.
bool TUOImportFile::HasFailed(const std::string& Table) {
  if (!FMissing || Table.empty()) return false;
  try {
    FMissing->Check(Table);
    return false;
  } catch (const std::exception&) {
    return true;
  }
}

void TUOImportFile::CompleteTables() {
  if (FMissing && !Stopping())
    FMissing->Complete([this](const std::string& Table, const std::exception& Error) { FailTable(Table, Error); },
                       [this](const std::string& Table) { Host().TableTakenBack(Table); });
  FMissing.reset();
}

/// Within the handler of Error.
void TUOImportFile::FailTable(const std::string& Table, const std::exception& Error) {
  Host().TableFailed(Table, Error);
  if (EndsEverything(Error)) throw;
  ContinueOrRaise(Error, "M_Velkrund_ComUtils_ErrorOnImportSection", Table);
}

std::optional<TLoadTarget> TUOImportFile::TargetOf(TEIFile& File, const TEISection& Section) {
  if (!Relations() || HasFailed(TableOf(Section))) return std::nullopt;
  std::optional<TLoadTarget> Target = Host().TargetOf(File, Section);
  // Query data name no table themselves.
  if (Target && !IsTableData(Section) && HasFailed(Target->Table)) return std::nullopt;
  if (Target) Target->Many = HoldsManyRows(Section.DataSize);
  return Target;
}

bool TUOImportFile::ImportTables(const std::vector<TSource>& Sources) {
  MakeMissingTables(Sources);
  TTablePlan Plan;
  for (const TSource& Source : Sources)
    for (const int Index : Source.Tables)
      Plan.Add(*Source.File, Index, TargetOf(*Source.File, Source.File->Sections()[Index]));
  Plan.Settle(DatabaseName, LoadOptions);
  for (const TTablePlan::TPart& Part : Plan.Parts()) {
    if (Stopping()) break;
    if (Part.Group)
      ImportGroup(Plan, Part);
    else
      ImportSection(*Plan.Steps()[Part.First].File, Plan.Steps()[Part.First].Index, nullptr);
  }
  if (Plan.Loading()) Host().EndTables(*Plan.Loading());
  if (!Stopping()) CreateEarly();
  CompleteTables();
  return !Stopping();
}

void TUOImportFile::ImportGroup(const TTablePlan& Plan, const TTablePlan::TPart& Part) {
  TTableLoading& Loading = *Plan.Loading();
  const std::span Steps = std::span(Plan.Steps()).subspan(Part.First, Part.Count);
  bool IsOfSection = false;
  try {
    Loading.Begin(*Part.Group);
    for (const TTablePlan::TStep& Step : Steps) {
      if (Stopping()) break;
      IsOfSection = true;
      ImportSection(*Step.File, Step.Index, &Loading);
      IsOfSection = false;
    }
    Loading.End(!Stopping());
  } catch (const std::exception& Error) {
    Loading.End(false);
    TellTakenBack(Steps, EndsEverything(Error) || IsOfSection ? nullptr : &Error);
    if (EndsEverything(Error)) throw;
    ContinueOrRaise(Error, "M_Velkrund_ComUtils_ErrorOnImportSection", CurrentObjectName);
    return;
  }
  if (Stopping()) TellTakenBack(Steps, nullptr);
}

void TUOImportFile::TellTakenBack(std::span<const TTablePlan::TStep> Steps, const std::exception* Error) {
  std::vector<TImportFileObserver::TPlace> Sections;
  for (const TTablePlan::TStep& Step : Steps) Sections.push_back({*Step.File, Step.File->Sections()[Step.Index]});
  Host().TakenBack(Sections, Error);
}

void TUOImportFile::ImportSection(TEIFile& File, int Index, TTableLoading* Loading) {
  const TEISection& Section = File.Sections()[Index];
  CurrentObjectName = Section.Name();
  ShowPosition(CurrentProgress, CurrentObjectName);
  CurrentTotal = Section.DataSize;
  std::unique_ptr<TEIObject> Object;
  bool LeftOut = false;
  try {
    Object = MakeObject(File, Index);
    Object->Loading = Loading;
    LeftOut = !Host().BeginSection(File, Section, *Object);
    if (!LeftOut) {
      if (IsTableData(Section) && FMissing) FMissing->Check(TableOf(Section));
      File.ImportObject(*Object);
      Object->SaveProperties(FEIObjectProperties);
    }
  } catch (const std::exception& Error) {
    FContainer.Remove(Section);
    Host().EndSection(File, Section, Object.get(), &Error);
    // What comes in one go with others takes them back with it.
    if (EndsEverything(Error) || Loading) throw;
    ContinueOrRaise(Error, "M_Velkrund_ComUtils_ErrorOnImportSection", CurrentObjectName);
    return;
  }
  if (LeftOut || Object->LeftAlone()) FContainer.Remove(Section);
  FStopping = FStopping || Object->Stopped();
  CurrentProgress += CurrentTotal;
  if (!LeftOut) Host().EndSection(File, Section, Object.get(), nullptr);
}

std::unique_ptr<TEIObject> TUOImportFile::MakeObject(TEIFile& File, int Index) {
  std::unique_ptr<TEIObject> Object = File.CreateEIObject(Index);
  Object->LoadProperties(FEIObjectProperties);
  Object->DatabaseName = DatabaseName;
  Object->OnCancel = [this] { return IsCanceled(); };
  Object->OnProgress = [this](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    ChildProgress(Current, Total, Name);
  };
  return Object;
}

void TUOImportFile::ContinueOrRaise(const std::exception& Error, std::string_view Key, const std::string& Name) {
  const std::string Report = Format(BaseMng().LString(Key), Name) + "\r\n" + Error.what();
  WriteLog(TTraceLevel::Error, Report);
  if (!ContinueOnError) throw;
  if (const std::optional<bool> Decided = Host().GoOn(Error)) {
    ContinueOnError = *Decided;
    if (*Decided) return;
    throw;
  }
  const std::string Question = Report + "\r\n" + BaseMng().LString("M_Velkrund_DSPUtils_ContinueImport");
  try {
    GoOnOrRaise(Error, Question);
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception&) {
    ContinueOnError = false;  // asked once is enough, for this operation and for those around it
    throw;
  }
}

void TUOImportFile::BeginPass(std::int64_t Total) {
  CurrentProgress = FShown = 0;
  TotalProgress = Total;
}

void TUOImportFile::EndPass() {
  if (TotalProgress > 0) ShowPosition(TotalProgress, CurrentObjectName);
}

void TUOImportFile::ChildProgress(std::int32_t Current, std::int32_t Total, std::string_view ObjectName) {
  const double Share = Total > 0 ? std::clamp(static_cast<double>(Current) / Total, 0.0, 1.0) : 0.0;
  ShowPosition(CurrentProgress + static_cast<std::int64_t>(Share * static_cast<double>(CurrentTotal)), ObjectName);
}

// A failed section counts for nothing, so that the next one begins where it began; what was shown stays.
void TUOImportFile::ShowPosition(std::int64_t Position, std::string_view ObjectName) {
  FShown = std::max(FShown, std::min(Position, TotalProgress));
  ReportProgress(FOnShowProgress, FShown, TotalProgress, ObjectName);
}

}  // namespace velkrund

#include <algorithm>

#include "hosts/cli/ExitCodes.h"
#include "hosts/cli/InputFile.h"
#include "hosts/cli/SectionCheck.h"
#include "hosts/cli/Sections.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/StrayMarkers.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/report/Json.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

const TCommandTexts FileCheckTexts = {
    "file",
    "check",
    "reads every section of export/import files as an import would, and writes nothing",
    "FILE...",
    "Takes no lock and needs no database. What a section says is checked as far as that is possible without the table "
    "that it is for: every value is one that some column could take, whatever the configuration says about values that "
    "can not be read. After a faulty section the next one is checked; after a faulty header there is no next one.\n\n"
    "What looks like a section and is read by nobody is a fault: its lines end with a line feed alone, or its "
    "\"[SECTION]\" line is damaged or holds something else too. Sections of the same type and name, and other lines "
    "outside of sections that begin as markers do, are named but are no faults.",
    {{"file check orders.eif", "a line for each section, errors to standard error"},
     {"file check *.eif --json", "one document about all of them"},
     {"file check - < shop.eif", "from standard input"}}};

const char* StateText(TItemState State) {
  switch (State) {
    case TItemState::Done:
      return "ok";
    case TItemState::Failed:
      return "faulty";
    case TItemState::Cancelled:
      return "cancelled";
    case TItemState::LeftOut:
    case TItemState::NotReached:
    case TItemState::TakenBack:
      break;
  }
  return "not reached";
}

struct TTotals {
  int Sections = 0;  // looked at
  int Faults = 0;    // faulty or hidden sections, faulty headers and files
  std::int64_t Rows = 0, Bytes = 0;
  double Seconds = 0;
  bool Cancelled = false;
};

class TFileCheck final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return FileCheckTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Arguments", {Required(List("FILE", "FILE", "a file; - is standard input", FFiles))}},
            {"Options", {Shared.AllowLossOption()}},
            Shared.General()};
  }
  void CheckOptions() override {
    if (std::count(FFiles.begin(), FFiles.end(), "-") > 1) throw EUsage("standard input can be read only once");
  }
  bool ReadsStandardInput() const override { return std::find(FFiles.begin(), FFiles.end(), "-") != FFiles.end(); }
  int Run(TSession& Session) override;

 private:
  TJson CheckFile(const TSession& Session, const std::string& Name);
  TJson CheckSection(const TSession& Session, TSectionChecker& Checker, TInputFile& Input, int Index);
  void CheckGaps(const TSession& Session, TInputFile& Input, TJson& Result);
  void Say(const TSession& Session, const std::string& Line) const;
  void SayFault(const TSession& Session, const std::string& Where, const std::string& Error);

  std::vector<std::string> FFiles;
  TTotals FTotals;
};

/// The result for people; programs get it all at the end.
void TFileCheck::Say(const TSession& Session, const std::string& Line) const {
  if (!Shared.Json) Session.Console.Result(Printable(Line) + "\n");
}

void TFileCheck::SayFault(const TSession& Session, const std::string& Where, const std::string& Error) {
  ++FTotals.Faults;
  Session.Console.Message(Format("velkrund: %s: %s", Where, Error));
}

TJson TFileCheck::CheckSection(const TSession& Session, TSectionChecker& Checker, TInputFile& Input, int Index) {
  const TEISectionList& Sections = Input.File().Sections();
  const TEISection& Section = Sections[Index];
  const TSectionCheck Check = Checker.Check(Input.File(), Index);
  TJson Result = {{"index", Index},
                  {"name", Section.Name()},
                  {"type", Section.TypeName()},
                  {"version", Section.Version()},
                  {"state", StateText(Check.State)}};
  FTotals.Cancelled |= Check.State == TItemState::Cancelled || Check.State == TItemState::NotReached;
  if (Check.State == TItemState::NotReached) return Result;

  const std::string Where = Input.Name() + ": " + SectionText(Sections, Index);
  const bool IsDone = Check.State == TItemState::Done;
  std::vector<std::string> Facts;
  if (Check.Rows) Facts.push_back((IsDone ? "" : "after ") + Counted(*Check.Rows, "row"));
  if (IsDone) Facts.push_back(ByteText(static_cast<double>(Section.DataSize)));
  if (Check.Losses.Malformed) Facts.push_back(Counted(Check.Losses.Malformed, "malformed character"));
  if (Check.Losses.Unrepresentable)
    Facts.push_back(Counted(Check.Losses.Unrepresentable, "character") + " that the code page lacks");
  Say(Session, Where + ": " + StateText(Check.State) + (Facts.empty() ? "" : ", " + Joined(Facts)));
  if (Check.State == TItemState::Failed) SayFault(Session, Where, Check.Error);

  if (Check.Rows) Result["rows"] = *Check.Rows;
  Result["bytes"] = Section.DataSize;
  Result["charactersLost"] = Check.Losses.Unrepresentable;
  Result["malformedCharacters"] = Check.Losses.Malformed;
  if (!Check.Error.empty()) Result["error"] = Check.Error;
  ++FTotals.Sections;
  FTotals.Rows += IsDone ? Check.Rows.value_or(0) : 0;
  FTotals.Bytes += IsDone ? Section.DataSize : 0;
  FTotals.Seconds += Check.Seconds;
  return Result;
}

void TFileCheck::CheckGaps(const TSession& Session, TInputFile& Input, TJson& Result) {
  const TStrayMarkers Found = FindStrayMarkers(Input.File());
  for (const std::string& Hidden : Found.Hidden) {
    Say(Session, Input.Name() + ": a section that is not read");
    SayFault(Session, Input.Name(), Hidden);
    Result["hidden"].push_back(Hidden);
  }
  for (const std::string& Note : Found.Doubtful) Result["notes"].push_back(Note);
}

TJson TFileCheck::CheckFile(const TSession& Session, const std::string& Name) {
  TInputFile Input(Session, Name);
  TEIFile& File = Input.File();
  TJson Result = {{"file", Name}, {"sections", TJson::array()}, {"hidden", TJson::array()}, {"notes", TJson::array()}};
  std::string Error;
  bool IsOpen = true;
  try {
    Input.Open();
  } catch (const EAbort&) {
    FTotals.Cancelled = true;
    return Result;
  } catch (const EFOpenError& Failure) {
    Error = Failure.what();
    IsOpen = false;
  } catch (const std::exception& Failure) {
    Error = Failure.what();
  }
  if (Shared.AllowLoss && File.Losses().Any()) Result["notes"].push_back("headers hold malformed characters");
  TSectionChecker Checker(Session);
  const int Count = File.Sections().Count();
  for (int Index = 0; Index < Count; ++Index)
    Result["sections"].push_back(CheckSection(Session, Checker, Input, Index));
  for (const std::string& Note : RepeatedNames(File.Sections())) Result["notes"].push_back(Note);
  try {
    if (IsOpen) CheckGaps(Session, Input, Result);
  } catch (const EStreamError& Failure) {
    if (Error.empty()) Error = Failure.what();
  }
  for (const TJson& Note : Result["notes"])
    Session.Console.Message(Format("%s: note: %s", Input.Name(), Note.get<std::string>()));
  if (!Error.empty()) {
    Say(Session, Input.Name() + ": " +
                     (IsOpen ? "faulty behind " + Counted(Count, "section") : std::string("can not be opened")));
    SayFault(Session, Input.Name(), Error);
    Result["error"] = Error;
  } else if (Count == 0) {
    Say(Session, Input.Name() + ": no section");
  }
  return Result;
}

int TFileCheck::Run(TSession& Session) {
  TJson Files = TJson::array();
  for (const std::string& Name : FFiles)
    if (!FTotals.Cancelled) Files.push_back(CheckFile(Session, Name));
  const int ExitCode = FTotals.Faults > 0 ? ExitFailed : FTotals.Cancelled ? ExitCancelled : ExitDone;
  if (Shared.Json)
    Session.Console.Result(JsonText({{"command", "file check"},
                                     {"exitCode", ExitCode},
                                     {"files", std::move(Files)},
                                     {"faults", FTotals.Faults},
                                     {"rows", FTotals.Rows},
                                     {"bytes", FTotals.Bytes},
                                     {"seconds", FTotals.Seconds}}));
  Session.Console.Message(Format("checked %s: %s, %s, %s; %s%s", Counted(FTotals.Sections, "section"),
                                 Counted(FTotals.Rows, "row"), ByteText(static_cast<double>(FTotals.Bytes)),
                                 DurationText(FTotals.Seconds), Counted(FTotals.Faults, "fault"),
                                 FTotals.Cancelled ? "; cancelled" : ""));
  return ExitCode;
}

}  // namespace

std::unique_ptr<TCommand> MakeFileCheck() { return std::make_unique<TFileCheck>(); }

}  // namespace velkrund

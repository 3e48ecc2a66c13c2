#include "hosts/cli/Errors.h"

#include "hosts/cli/UnattendedWindows.h"
#include "jobs/report/ErrorReport.h"
#include "jobs/sections/CheckFiles.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

struct TPropertyRemedy {
  TErrorCode Code;
  std::string_view Property;  // that a job has to have, so that its option helps
  std::string_view Key;       // of the text behind the option's name; empty where the message says what it does
  std::int64_t Remedied = 1;  // what the property is then; where it is that already, it is no help
};

constexpr TPropertyRemedy PropertyRemedies[] = {
    {TErrorCode::UnreadableValue, "Lenient", "M_Velkrund_Cli_MakesNull"},
    {TErrorCode::Text, "AllowLoss", ""},
    {TErrorCode::Loss, "AllowLoss", ""},
    {TErrorCode::LanguageMissing, "AddLanguages", "M_Velkrund_Cli_AddsLanguages"},
    {TErrorCode::FuzzyEntry, "FuzzyEntries", "M_Velkrund_Cli_FuzzySkip"},
    {TErrorCode::FieldMissing, "MissingFields", "M_Velkrund_Cli_SkipsFields", 0},
    {TErrorCode::RepeatedTable, "RepeatedTables", "M_Velkrund_Cli_JoinsRows"},
    {TErrorCode::Unfinished, "Unfinished", "M_Velkrund_Cli_SkipsUnfinished"},
    {TErrorCode::DatabaseMissing, "CreateDatabase", "M_Velkrund_Cli_MakesDatabase"},
    {TErrorCode::DatabaseLocks, "Commit", "M_Velkrund_Cli_EachTakesFewer"},
    {TErrorCode::References, "BrokenReferences", "M_Velkrund_Cli_AllowsRows"},
    {TErrorCode::TriggerRefused, "Triggers", "M_Velkrund_Cli_TriggersOff"},
};

/// Whether a check of the file finds it too.
bool IsFaultOfFile(const TErrorFacts& Error) {
  switch (Error.Info.Code) {
    case TErrorCode::FileStructure:
    case TErrorCode::Record:
    case TErrorCode::Structure:
      return true;
    case TErrorCode::Value:
      return Error.ClassName != "EDatabaseError";
    default:
      return false;
  }
}

/// What can be done about it with another command, or outside; empty where the message says all that is known.
std::string OtherRemedy(const TSession& Session, const TErrorFacts& Error) {
  const TErrorInfo& Info = Error.Info;
  const bool IsOfResult = Error.ClassName == "EWriteError" && Info.File.empty() && !Session.Console.TakesResults();
  // To run it again could do it twice.
  if (IsOfResult && Session.Json()) return LText("M_Velkrund_Cli_DocumentMissing").Local();
  const bool InFile = Info.Line > 0 && Info.File != "standard input";
  if (Info.Code == TErrorCode::FileStructure && InFile && Error.Message.find("end not found") != std::string::npos)
    return LText("M_Velkrund_Cli_RepairCuts", Info.File).Local();
  if (Info.Code == TErrorCode::LineFeeds) return LineFeedRemedy(Info.File);
  const bool Checks = Session.Interface && Session.Interface->ClassType() == TInterfaceClass(TJobCheckFiles::Interface);
  if (IsFaultOfFile(Error) && InFile && !Checks) return LText("M_Velkrund_Cli_CheckNames", Info.File).Local();
  if (Info.Code == TErrorCode::ContextMissing)
    return LText("M_Velkrund_Cli_MakesIDs", Session.Command.OptionOf("SectionID")).Local();
  if (Info.Code == TErrorCode::StructureMissing) return LText("M_Velkrund_Cli_ListShows").Local();
  const bool SaysWhatThereIs =
      Error.Message.find(": it has ") != std::string::npos && Error.Message.find(" more") == std::string::npos;
  if (Info.Code == TErrorCode::TableMissing && !SaysWhatThereIs) return LText("M_Velkrund_Cli_InfoShows").Local();
  if (Info.Code == TErrorCode::DatabaseAccess && !Info.Table.empty()) return LText("M_Velkrund_Cli_GrantRight").Local();
  const bool IsOfDatabase =
      Info.Code == TErrorCode::Value && Error.ClassName == "EDatabaseError" && !Info.Table.empty();
  if (IsOfDatabase && Session.Interface && Session.Interface->ClassType().Properties().Find("CreateTables"))
    return LText("M_Velkrund_Cli_ScannedHolds").Local();
  if (Info.Code == TErrorCode::DiskFull) return LText("M_Velkrund_Cli_MakeRoom").Local();
  if (Info.Code == TErrorCode::FileInUse || Info.Code == TErrorCode::DatabaseBusy)
    return LText("M_Velkrund_Cli_RunAgain").Local();
  return {};
}

/// How a line goes on behind the error itself.
std::string RemedyText(const TSession& Session, const TErrorFacts& Error, std::string_view Line) {
  const bool IsSentence = Line.ends_with('.') || Line.ends_with('?');
  const auto Behind = [&](const std::string& Remedy) { return (IsSentence ? " " : "; ") + Remedy; };
  if (Error.Info.Code == TErrorCode::NoWords && Session.Interface &&
      Session.Interface->ClassType().Properties().Find("AllowMissing"))
    return Behind(
        LText("M_Velkrund_Cli_GoesOnWithout", Session.Command.OptionOf("AllowMissing"), Error.Info.Value).Local());
  for (const auto& [Code, Property, Key, Remedied] : PropertyRemedies) {
    if (Code != Error.Info.Code || !Session.Interface) continue;
    // Of other fields it is the file that lacks them, or the table lacks all.
    if (Code == TErrorCode::FieldMissing && (Error.Info.Table.empty() || Error.Info.Column.empty())) continue;
    if (!Session.Interface->ClassType().Properties().Find(Property)) continue;
    if (GetPropertyInteger(*Session.Interface, Property) == Remedied) continue;
    return Key.empty() ? Format(": %s", Session.Command.OptionOf(Property))
                       : Behind(Format("%s %s", Session.Command.OptionOf(Property), LText(Key).Local()));
  }
  const std::string Remedy = OtherRemedy(Session, Error);
  return Remedy.empty() ? Remedy : Behind(Remedy);
}

}  // namespace

TErrorFacts FactsForPrograms(const TCommand& Command, const std::exception& Error) {
  TErrorFacts Result = FactsOf(Error);
  if (const auto* const Unanswered = dynamic_cast<const EPolicyUnanswered*>(&Error))
    Result.Message = UnansweredText(Unanswered->Stakes(), Command.Remedy(Unanswered->Policy())).English();
  else if (const auto* const Settings = dynamic_cast<const ESettingsError*>(&Error))
    Result.Message = Settings->Worded([&](std::string_view Property) { return Command.OptionOf(Property); });
  return Result;
}

TErrorFacts FactsForPeople(const TCommand& Command, const std::exception& Error) {
  TErrorFacts Result = FactsForPrograms(Command, Error);
  if (const auto* const Unanswered = dynamic_cast<const EPolicyUnanswered*>(&Error))
    Result.Message = UnansweredText(Unanswered->Stakes(), Command.Remedy(Unanswered->Policy())).Local();
  else if (dynamic_cast<const EAbort*>(&Error))
    Result.Message = CancelText(Result.Message).Local();
  return Result;
}

void SayError(const TSession& Session, const TErrorFacts& Error) {
  // Programs have it in the report.
  if (Session.Console.TellsEvents()) return;
  // Whoever reads results and has seen enough knows it; only data would be missed.
  if (Error.Info.Code == TErrorCode::PipeClosed && !Session.Command.WritesStandardOutput()) return;
  std::string Line = "velkrund: " + LErrorLine(Error).Local();
  Line += RemedyText(Session, Error, Line);
  if (Session.Command.Shared.Verbose) Line += "\n" + ErrorDetails(Error);
  Session.Console.Message(Line);
}

std::string LineFeedRemedy(const std::string& File) {
  if (File == "standard input") return LText("M_Velkrund_Cli_KeepInFile").Local();
  return LText("M_Velkrund_Cli_RepairMends", File).Local();
}

}  // namespace velkrund

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
  std::string_view Text;      // behind the option's name; empty where the message says what it does
  std::int64_t Remedied = 1;  // what the property is then; where it is that already, it is no help
};

constexpr TPropertyRemedy PropertyRemedies[] = {
    {TErrorCode::UnreadableValue, "Lenient", "makes such values NULL and counts them"},
    {TErrorCode::Text, "AllowLoss", ""},
    {TErrorCode::Loss, "AllowLoss", ""},
    {TErrorCode::FieldMissing, "MissingFields", "skip passes over fields that the table lacks", 0},
    {TErrorCode::RepeatedTable, "RepeatedTables", "join loads the rows of all"},
    {TErrorCode::DatabaseMissing, "CreateDatabase", "makes it"},
    {TErrorCode::DatabaseLocks, "Commit", "each takes fewer at a time"},
    {TErrorCode::References, "BrokenReferences", "allow lets such rows in, and counts them"},
    {TErrorCode::TriggerRefused, "Triggers", "off keeps triggers from firing"},
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
  if (IsOfResult && Session.Json()) return "the document is missing; what the run has done stays";
  const bool InFile = Info.Line > 0 && Info.File != "standard input";
  if (Info.Code == TErrorCode::FileStructure && InFile && Error.Message.find("end not found") != std::string::npos)
    return Format("velkrund file repair '%s' cuts off what an export has left unfinished", Info.File);
  if (Info.Code == TErrorCode::LineFeeds) return LineFeedRemedy(Info.File);
  const bool Checks = Session.Interface && Session.Interface->ClassType() == TInterfaceClass(TJobCheckFiles::Interface);
  if (IsFaultOfFile(Error) && InFile && !Checks) return Format("velkrund file check '%s' names every fault", Info.File);
  if (Info.Code == TErrorCode::StructureMissing) return "velkrund dictionary list shows what there is";
  const bool SaysWhatThereIs =
      Error.Message.find(": it has ") != std::string::npos && Error.Message.find(" more") == std::string::npos;
  if (Info.Code == TErrorCode::TableMissing && !SaysWhatThereIs) return "velkrund database info shows what there is";
  if (Info.Code == TErrorCode::DatabaseAccess && !Info.Table.empty())
    return "have the right granted, or connect as a role that has it";
  const bool IsOfDatabase = Info.Code == TErrorCode::Value && Error.ClassName == "EDatabaseError";
  if (IsOfDatabase && Session.Interface && Session.Interface->ClassType().Properties().Find("CreateTables"))
    return "a table that export table --structures --columns scanned describes holds every cell of SQLite's";
  if (Info.Code == TErrorCode::DiskFull) return "make room, then run it again";
  if (Info.Code == TErrorCode::FileInUse || Info.Code == TErrorCode::DatabaseBusy)
    return "run it again when that is done";
  return {};
}

/// How a line goes on behind the error itself.
std::string RemedyText(const TSession& Session, const TErrorFacts& Error, std::string_view Line) {
  const bool IsSentence = Line.ends_with('.') || Line.ends_with('?');
  const auto Behind = [&](const std::string& Remedy) { return (IsSentence ? " " : "; ") + Remedy; };
  if (Error.Info.Code == TErrorCode::NoWords && Session.Interface &&
      Session.Interface->ClassType().Properties().Find("AllowMissing"))
    return Behind(Format("%s %s goes on without", Session.Command.OptionOf("AllowMissing"), Error.Info.Value));
  for (const auto& [Code, Property, Text, Remedied] : PropertyRemedies) {
    if (Code != Error.Info.Code || !Session.Interface) continue;
    // Of other fields it is the file that lacks them, or the table lacks all.
    if (Code == TErrorCode::FieldMissing && (Error.Info.Table.empty() || Error.Info.Column.empty())) continue;
    if (!Session.Interface->ClassType().Properties().Find(Property)) continue;
    if (GetPropertyInteger(*Session.Interface, Property) == Remedied) continue;
    return Text.empty() ? Format(": %s", Session.Command.OptionOf(Property))
                        : Behind(Format("%s %s", Session.Command.OptionOf(Property), Text));
  }
  const std::string Remedy = OtherRemedy(Session, Error);
  return Remedy.empty() ? Remedy : Behind(Remedy);
}

}  // namespace

TErrorFacts FactsForPeople(const TCommand& Command, const std::exception& Error) {
  TErrorFacts Result = FactsOf(Error);
  if (const auto* const Unanswered = dynamic_cast<const EPolicyUnanswered*>(&Error))
    Result.Message = UnansweredText(Unanswered->Stakes(), Command.Remedy(Unanswered->Policy()));
  else if (const auto* const Settings = dynamic_cast<const ESettingsError*>(&Error))
    Result.Message = Settings->Worded([&](std::string_view Property) { return Command.OptionOf(Property); });
  return Result;
}

void SayError(const TSession& Session, const TErrorFacts& Error) {
  // Programs have it in the report.
  if (Session.Console.TellsEvents()) return;
  // Whoever reads results and has seen enough knows it; only data would be missed.
  if (Error.Info.Code == TErrorCode::PipeClosed && !Session.Command.WritesStandardOutput()) return;
  std::string Line = "velkrund: " + ErrorLine(Error);
  Line += RemedyText(Session, Error, Line);
  if (Session.Command.Shared.Verbose) Line += "\n" + ErrorDetails(Error);
  Session.Console.Message(Line);
}

std::string LineFeedRemedy(const std::string& File) {
  if (File == "standard input") return "keep it in a file, which velkrund file repair mends";
  return Format("velkrund file repair '%s' mends it", File);
}

}  // namespace velkrund

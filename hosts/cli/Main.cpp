#include "hosts/cli/Errors.h"
#include "hosts/cli/ExitCodes.h"
#include "hosts/cli/Interrupt.h"
#include "hosts/cli/PersonAtTerminal.h"
#include "hosts/cli/UnattendedWindows.h"
#include "hosts/cli/line/CommandLine.h"
#include "jobs/application/Application.h"
#include "jobs/report/ErrorReport.h"
#include "standalone/windows/scripted/ScriptedWindows.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

/// The platform that a command works with, and whoever answers its questions.
struct TRunning {
  TRunning(const TCommand& Command, TConsole& Console)
      : Person(FindPerson(Console, Command.ReadsStandardInput())),
        Nobody([&Console](std::string_view Text) { Console.Message(Text); }),
        Windows(Person ? Person.get() : &Nobody),
        Application(Command.Shared.ApplicationOptions(), &Windows) {
    if (Command.Shared.Yes) Windows.AnswerAlways("TMessageBoxForm", {"YesButton", {}});
  }

  std::unique_ptr<TWindowSystem> Person;
  TUnattendedWindows Nobody;
  TScriptedWindows Windows;
  TApplication Application;
};

/// An error as a document, where one was asked for. A program that reads it gets one in every case.
void PrintErrorDocument(const TSession& Session, const TErrorFacts& Error, TEnd End) {
  if (!Session.Json() || Session.Command.WritesStandardOutput()) return;
  try {
    Session.Console.Result(ErrorDocument(Error, Session.Command.Name(), End).Text());
  } catch (const std::exception& Failure) {
    // Where nothing can be printed the error itself may say so already.
    if (Failure.what() != Error.Message) SayError(Session, FactsOf(Failure));
  }
}

/// The last event.
void TellEnd(TSession& Session, int ExitCode) {
  TDocument Told = TConsole::NewEvent("end");
  Told.Set("exitCode", ExitCode);
  if (Session.Report) Told.Set("report", std::move(*Session.Report));
  Session.Console.Event(Told);
}

TEnd EndOf(const std::exception& Error) {
  if (dynamic_cast<const EAbort*>(&Error)) return TEnd::Cancelled;
  const bool Wrong = dynamic_cast<const EUsage*>(&Error) || dynamic_cast<const ESettingsError*>(&Error);
  return Wrong ? TEnd::WrongSettings : TEnd::Failed;
}

int RunReported(TCommand& Command, TConsole& Console) {
  TProgress Progress(Console, Command.Shared.Progress);
  TSession Session{Console, Progress, Command};
  if (Command.Shared.Progress == TProgressStyle::Json) Console.TellEvents();
  int ExitCode;
  const TPlainTexts Texts;
  std::optional<TRunning> Running;  // its language is that of the error, too
  try {
    if (Command.WritesStandardOutput() && Command.Shared.Json)
      throw EUsage("--json and the file cannot both go to standard output");
    Running.emplace(Command, Console);
    ExitCode = Command.Run(Session);
  } catch (const std::exception& Error) {
    const TErrorFacts Facts = FactsForPrograms(Command, Error);
    const TEnd End = EndOf(Error);
    PrintErrorDocument(Session, Facts, End);
    SayError(Session, FactsForPeople(Command, Error));
    Session.Report = ErrorDocument(Facts, Command.Name(), End);
    ExitCode = static_cast<int>(End);
  }
  if (Console.TellsEvents()) TellEnd(Session, ExitCode);
  return ExitCode;
}

/// The same for a line that names no command, or says something wrong to it.
void ReportWrongLine(TConsole& Console, const EWrongLine& Error, const TWanted& Wanted) {
  if (Wanted.Events) Console.TellEvents();
  const auto Document = [&Error] { return ErrorDocument(FactsOf(Error), Error.Reached(), TEnd::WrongSettings); };
  try {
    if (Wanted.Document) Console.Result(Document().Text());
  } catch (const std::exception& Failure) {
    Console.Message(std::string("velkrund: ") + Failure.what());
  }
  if (!Wanted.Events) {
    const std::string Line = Error.Reached().empty() ? "velkrund" : "velkrund " + Error.Reached();
    return Console.Message(Format("velkrund: %s\n(%s --help tells more)", Error.what(), Line));
  }
  Console.Event(TConsole::NewEvent("end").Set("exitCode", ExitUsage).Set("report", Document()));
}

/// Help and the like.
int PrintText(TConsole& Console, const std::string& Text, const TWanted& Wanted) {
  if (Wanted.Events) Console.TellEvents();
  int ExitCode = ExitDone;
  try {
    Console.Result(Text);
  } catch (const std::exception& Error) {
    Console.Message(std::string("velkrund: ") + Error.what());
    ExitCode = ExitFailed;
  }
  if (Wanted.Events) Console.Event(TConsole::NewEvent("end").Set("exitCode", ExitCode));
  return ExitCode;
}

int RunProgram(int Count, const char* const* Arguments) {
  TConsole Console;
  try {
    const TInterrupt Interrupt;
    Console.SetCanceled(&TInterrupt::Requested);
    const TCommands Commands = AllCommands();
    const TParsedLine Line = ParseCommandLine(Commands, Count, Arguments);
    if (Line.Command) return RunReported(*Line.Command, Console);
    return PrintText(Console, Line.Text, WantedOf(Count, Arguments));
  } catch (const EWrongLine& Error) {
    ReportWrongLine(Console, Error, WantedOf(Count, Arguments));
    return ExitUsage;
  } catch (const std::exception& Error) {
    Console.Message(std::string("velkrund: ") + Error.what());
    return ExitFailed;
  }
}

}  // namespace

}  // namespace velkrund

int main(int Count, char** Arguments) { return velkrund::RunProgram(Count, Arguments); }

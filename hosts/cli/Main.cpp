#include "hosts/cli/ExitCodes.h"
#include "hosts/cli/Interrupt.h"
#include "hosts/cli/PersonAtTerminal.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/line/CommandLine.h"
#include "jobs/report/Json.h"
#include "standalone/windows/scripted/ScriptedWindows.h"

namespace velkrund {

namespace {

/// What people are told: the system's own errors speak for themselves, of foreign ones the class says where to look.
std::string ErrorText(const std::exception& Error) {
  const bool IsOwn = dynamic_cast<const Exception*>(&Error) != nullptr;
  return IsOwn ? Error.what() : ExceptionClassName(Error) + ": " + Error.what();
}

int RunCommand(TCommand& Command, TConsole& Console) {
  if (Command.WritesStandardOutput() && Command.Shared.Json)
    throw EUsage("--json and the file can not both go to standard output");
  const std::unique_ptr<TWindowSystem> Person = FindPerson(Console, Command.ReadsStandardInput());
  TUnattendedWindows Nobody([&](std::string_view Text) { Console.Message(Text); });
  TScriptedWindows Windows(Person ? Person.get() : &Nobody);
  if (Command.Shared.Yes) Windows.AnswerAlways("TMessageBoxForm", {"YesButton", {}});
  TApplication Application(Command.ApplicationOptions(), &Windows);
  Application.Manager().Databases().SetCanceled(&TInterrupt::Requested);
  TProgress Progress(Console, Command.Shared.Progress);
  TAnswers Answers(Person != nullptr);
  TSession Session{Console, Application, Answers, Progress, Command.Shared};
  return Command.Run(Session);
}

/// The same as a document, where one was asked for. A program that reads it gets one in every case.
void PrintErrorDocument(const TCommand& Command, TConsole& Console, const std::string& Error, int ExitCode) {
  if (!Command.Shared.Json || Command.WritesStandardOutput()) return;
  try {
    Console.Result(JsonText({{"exitCode", ExitCode}, {"error", Error}}));
  } catch (const std::exception& Failure) {
    Console.Message(std::string("velkrund: ") + Failure.what());
  }
}

int RunReported(TCommand& Command, TConsole& Console) {
  try {
    return RunCommand(Command, Console);
  } catch (const EUsage&) {
    throw;
  } catch (const EAbort& Abort) {
    PrintErrorDocument(Command, Console, Abort.what(), ExitCancelled);
    Console.Message(std::string("velkrund: ") + Abort.what());
    return ExitCancelled;
  } catch (const std::exception& Error) {
    PrintErrorDocument(Command, Console, ErrorText(Error), ExitFailed);
    Console.Message("velkrund: " + ErrorText(Error));
    return ExitFailed;
  }
}

int RunProgram(int Count, const char* const* Arguments) {
  TConsole Console;
  try {
    const TInterrupt Interrupt;
    const TCommands Commands = AllCommands();
    const TParsedLine Line = ParseCommandLine(Commands, Count, Arguments);
    if (Line.Command) return RunReported(*Line.Command, Console);
    Console.Result(Line.Text);
    return ExitDone;
  } catch (const EUsage& Error) {
    Console.Message(std::string("velkrund: ") + Error.what());
    return ExitUsage;
  } catch (const std::exception& Error) {
    Console.Message("velkrund: " + ErrorText(Error));
    return ExitFailed;
  }
}

}  // namespace

}  // namespace velkrund

int main(int Count, char** Arguments) { return velkrund::RunProgram(Count, Arguments); }

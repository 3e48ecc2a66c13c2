#include "hosts/cli/ExitCodes.h"
#include "hosts/cli/Interrupt.h"
#include "hosts/cli/PersonAtTerminal.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/UnattendedWindows.h"
#include "hosts/cli/line/CommandLine.h"
#include "jobs/application/Application.h"
#include "jobs/structures/StructureSearch.h"
#include "standalone/windows/scripted/ScriptedWindows.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

int RunCommand(TCommand& Command, TConsole& Console) {
  if (Command.WritesStandardOutput() && Command.Shared.Json)
    throw EUsage("--json and the file cannot both go to standard output");
  const std::unique_ptr<TWindowSystem> Person = FindPerson(Console, Command.ReadsStandardInput());
  TUnattendedWindows Nobody([&](std::string_view Text) { Console.Message(Text); });
  TScriptedWindows Windows(Person ? Person.get() : &Nobody);
  if (Command.Shared.Yes) Windows.AnswerAlways("TMessageBoxForm", {"YesButton", {}});
  const TApplication Application(Command.Shared.ApplicationOptions(), &Windows);
  TProgress Progress(Console, Command.Shared.Progress);
  TSession Session{Console, Progress, Command};
  return Command.Run(Session);
}

/// What people are told: the system's own errors speak for themselves, of foreign ones the class says where to look.
std::string TextForPeople(const TCommand& Command, const std::exception& Error) {
  if (const auto* const Unanswered = dynamic_cast<const EPolicyUnanswered*>(&Error))
    return UnansweredText(Unanswered->Stakes(), Command.Remedy(Unanswered->Policy()));
  if (dynamic_cast<const EStructureMissing*>(&Error))
    return std::string(Error.what()) + "; velkrund dictionary list shows what there is";
  const bool IsOwn = dynamic_cast<const Exception*>(&Error) != nullptr;
  return IsOwn ? Error.what() : ExceptionClassName(Error) + ": " + Error.what();
}

/// The same as a document, where one was asked for. A program that reads it gets one in every case.
void PrintErrorDocument(const TCommand& Command, TConsole& Console, const std::string& Error, int ExitCode) {
  if (!Command.Shared.Json || Command.WritesStandardOutput()) return;
  TDocument Document;
  Document.Set("exitCode", ExitCode).Set("error", Error);
  try {
    Console.Result(Document.Text());
  } catch (const std::exception& Failure) {
    Console.Message(std::string("velkrund: ") + Failure.what());
  }
}

int RunReported(TCommand& Command, TConsole& Console) {
  const auto Report = [&](const std::string& Error, int ExitCode) {
    PrintErrorDocument(Command, Console, Error, ExitCode);
    Console.Message("velkrund: " + Error);
    return ExitCode;
  };
  try {
    return RunCommand(Command, Console);
  } catch (const EUsage&) {
    throw;
  } catch (const ESettingsError& Error) {
    throw EUsage(Error.Worded(&OptionOf));
  } catch (const EAbort& Abort) {
    return Report(Abort.what(), ExitCancelled);
  } catch (const std::exception& Error) {
    return Report(TextForPeople(Command, Error), ExitFailed);
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
    Console.Message(std::string("velkrund: ") + Error.what());
    return ExitFailed;
  }
}

}  // namespace

}  // namespace velkrund

int main(int Count, char** Arguments) { return velkrund::RunProgram(Count, Arguments); }

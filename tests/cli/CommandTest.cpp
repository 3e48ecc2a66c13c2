#include "tests/cli/CommandTest.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

namespace velkrund::tests {

namespace {

constexpr auto Patience = std::chrono::seconds(60);
constexpr int SilenceMilliseconds = 20'000;

int ExitCodeOf(int Status) { return WIFEXITED(Status) ? WEXITSTATUS(Status) : 128 + WTERMSIG(Status); }

void Redirect(const std::string& File, int Flags, int Descriptor) {
  const int Opened = open(File.c_str(), Flags, 0600);
  if (Opened < 0 || dup2(Opened, Descriptor) < 0) _exit(126);
  close(Opened);
}

/// Nobody types before a program has come to listen. The thread sanitizer's runtime loses now and then a signal that
/// comes while the program is still on its way there.
void WaitUntilAsleep(pid_t Process) {
  for (int Tries = 0; Tries < SilenceMilliseconds; ++Tries) {
    std::ifstream Stat("/proc/" + std::to_string(Process) + "/stat");
    std::string Number, Name, State;
    Stat >> Number >> Name >> State;
    if (State != "R" && State != "D") return;  // asleep, or at its end
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

}  // namespace

std::string Joined(const TArguments& Arguments) {
  std::string Result;
  for (const std::string& Argument : Arguments) Result += " " + Argument;
  return Result;
}

TCommandTest::TCommandTest() { std::filesystem::create_directory(Path(".captured")); }

void TCommandTest::Become(const TArguments& Arguments) const {
  const std::string Home = Path("");
  if (chdir(Home.c_str()) != 0) _exit(126);
  setenv("HOME", Home.c_str(), 1);
  setenv("TERM", "xterm", 1);
  setenv("LC_ALL", "C", 1);
  unsetenv("XDG_CONFIG_HOME");
  unsetenv("VELKRUND_CONFIG");
  std::vector<char*> Words;
  for (const std::string& Argument : Arguments) Words.push_back(const_cast<char*>(Argument.c_str()));
  Words.push_back(nullptr);
  execv(Words.front(), Words.data());
  _exit(127);
}

pid_t TCommandTest::Start(const TArguments& Arguments, const std::string& Input) {
  Write(".captured/in", Input);
  const pid_t Process = fork();
  if (Process != 0) return Process;
  Redirect(Path(".captured/in"), O_RDONLY, STDIN_FILENO);
  Redirect(Path(".captured/out"), O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
  Redirect(Path(".captured/err"), O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
  TArguments Words = Arguments;
  if (Words.empty() || !Words.front().starts_with('/')) Words.insert(Words.begin(), VELKRUND_COMMAND);
  Become(Words);
}

TOutcome TCommandTest::Finish(pid_t Process) {
  int Status = 0;
  EXPECT_EQ(waitpid(Process, &Status, 0), Process);
  return {ExitCodeOf(Status), Read(".captured/out"), Read(".captured/err")};
}

TOutcome TCommandTest::Run(const TArguments& Arguments, const std::string& Input) {
  return Finish(Start(Arguments, Input));
}

TOutcome TCommandTest::Shell(const std::string& Line) {
  return Run({"/bin/sh", "-c", "V='" VELKRUND_COMMAND "'; " + Line});
}

TOutcome TCommandTest::RunOnTerminal(const TArguments& Arguments, const std::string& Prompt, const std::string& Keys) {
  int Terminal = -1;
  const pid_t Process = forkpty(&Terminal, nullptr, nullptr, nullptr);
  if (Process == 0) {
    TArguments Words = Arguments;
    Words.insert(Words.begin(), VELKRUND_COMMAND);
    Become(Words);
  }
  TOutcome Result;
  char Block[4096];
  bool Typed = false;
  struct pollfd Poll = {Terminal, POLLIN, 0};
  for (ssize_t Got; poll(&Poll, 1, SilenceMilliseconds) > 0 && (Got = read(Terminal, Block, sizeof Block)) > 0;) {
    Result.Output.append(Block, static_cast<std::size_t>(Got));
    if (Typed || Result.Output.find(Prompt) == std::string::npos) continue;
    WaitUntilAsleep(Process);
    Typed = write(Terminal, Keys.data(), Keys.size()) == static_cast<ssize_t>(Keys.size());
  }
  if (Poll.revents == 0) kill(Process, SIGKILL);  // it waits for something that nobody types
  int Status = 0;
  waitpid(Process, &Status, 0);
  close(Terminal);
  EXPECT_TRUE(Typed) << Result.Output;
  Result.ExitCode = ExitCodeOf(Status);
  return Result;
}

nlohmann::json TCommandTest::RunJson(TArguments Arguments) {
  Arguments.push_back("--json");
  const TOutcome Outcome = Run(Arguments);
  EXPECT_EQ(Outcome.ExitCode, 0) << Joined(Arguments) << "\n" << Outcome.Errors;
  return nlohmann::json::parse(Outcome.Output, nullptr, false);
}

bool TCommandTest::Exists(const std::string& Name) const { return std::filesystem::exists(Path(Name)); }

std::vector<std::string> TCommandTest::Files() const {
  std::vector<std::string> Result;
  for (const auto& Entry : std::filesystem::directory_iterator(Path("")))
    if (Entry.path().filename() != ".captured") Result.push_back(Entry.path().filename());
  std::sort(Result.begin(), Result.end());
  return Result;
}

std::string TCommandTest::Query(const std::string& Database, const std::string& Sql) const {
  sqlite3* Handle = nullptr;
  sqlite3_open(Path(Database).c_str(), &Handle);
  const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> Owner(Handle, &sqlite3_close);
  std::string Result;
  const auto AddRow = [](void* Text, int Count, char** Cells, char**) {
    std::string& Rows = *static_cast<std::string*>(Text);
    if (!Rows.empty()) Rows += '\n';
    for (int I = 0; I < Count; ++I) Rows += (I > 0 ? "|" : "") + std::string(Cells[I] ? Cells[I] : "NULL");
    return 0;
  };
  char* Error = nullptr;
  sqlite3_exec(Handle, Sql.c_str(), AddRow, &Result, &Error);
  EXPECT_EQ(Error, nullptr) << Sql << ": " << Error;
  sqlite3_free(Error);
  return Result;
}

std::string TCommandTest::Names(const std::string& File) {
  std::string Result;
  const auto List = RunJson({"file", "list", File});
  for (const auto& Section : List["sections"])
    Result += (Result.empty() ? "" : " ") + Section["name"].get<std::string>();
  return Result;
}

bool TCommandTest::WaitUntil(const std::function<bool()>& Condition) const {
  const auto End = std::chrono::steady_clock::now() + Patience;
  while (!Condition()) {
    if (std::chrono::steady_clock::now() > End) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace velkrund::tests

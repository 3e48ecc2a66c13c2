#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace velkrund::tests {

using TArguments = std::vector<std::string>;

struct TOutcome {
  int ExitCode = -1;  // 128 + the signal's number when a signal ended it
  std::string Output, Errors;
};

/// Starts the real command in a folder of its own that is gone afterwards, and looks at what it left there.
class TCommandTest : public testing::Test {
 protected:
  TCommandTest();

  TOutcome Run(const TArguments& Arguments, const std::string& Input = {});
  /// Without waiting: for signals. Another program where the first argument is its whole path. Finish waits and
  /// collects.
  pid_t Start(const TArguments& Arguments, const std::string& Input = {});
  TOutcome Finish(pid_t Process);
  /// On a terminal, typing Keys once the text Prompt has appeared. Output is all that was seen.
  TOutcome RunOnTerminal(const TArguments& Arguments, const std::string& Prompt, const std::string& Keys);
  /// Runs, and expects success and a document on standard output.
  nlohmann::json RunJson(TArguments Arguments);
  /// A line of the shell, with the command as $V.
  TOutcome Shell(const std::string& Line);

  std::string Path(const std::string& Name) const { return FFolder / Name; }
  std::string Read(const std::string& Name) const { return FFolder.Read(Name); }
  void Write(const std::string& Name, const std::string& Content) const { FFolder.Write(Name, Content); }
  bool Exists(const std::string& Name) const;
  std::vector<std::string> Files() const;
  /// Every row of the query, cells separated by "|", rows by line feeds.
  std::string Query(const std::string& Database, const std::string& Sql) const;
  /// The names of a file's sections in order, such as "A B B".
  std::string Names(const std::string& File);
  bool WaitUntil(const std::function<bool()>& Condition) const;

 private:
  [[noreturn]] void Become(const TArguments& Arguments) const;

  TTemporaryFolder FFolder;
};

/// For failure messages.
std::string Joined(const TArguments& Arguments);

}  // namespace velkrund::tests

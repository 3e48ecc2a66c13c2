#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "hosts/cli/line/Option.h"
#include "hosts/cli/line/SharedOptions.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

struct TSession;

/// A command line that says something wrong: exit code 2. Messages name the option.
VELKRUND_EXCEPTION(EUsage, Exception);

struct TExample {
  std::string_view Line;  // without the program's name
  std::string_view Meaning;
};

/// What help texts say about a command.
struct TCommandTexts {
  std::string_view Verb;     // "export"
  std::string_view Object;   // "table"
  std::string_view Summary;  // one line
  std::string_view Usage;    // the options that matter, in short
  std::string_view Details;  // paragraphs between empty lines
  std::vector<TExample> Examples;
  std::string_view Plural = {};  // another spelling of the object; empty: there is none
};

/// One command of the program. Its options are declared before a command line is parsed into it; then it runs once.
class TCommand {
 public:
  TCommand() = default;
  TCommand(const TCommand&) = delete;
  TCommand& operator=(const TCommand&) = delete;
  virtual ~TCommand() = default;

  virtual const TCommandTexts& Texts() const = 0;
  /// "export table".
  std::string Name() const { return std::string(Texts().Verb).append(" ").append(Texts().Object); }
  /// Called once. The options store into the command.
  virtual std::vector<TOptionGroup> Options() = 0;
  /// After parsing: what the options say together. Raises EUsage, or a job's ESettingsError.
  virtual void CheckOptions() {}
  /// The options that decide what a policy leaves open, to be read behind "Give".
  virtual TLText Remedy(TPolicy Policy) const;
  /// The option by which people give a job's property; its own name where there is none.
  virtual std::string OptionOf(std::string_view Property) const;
  /// Whether standard input carries the data, so that questions have to be asked elsewhere.
  virtual bool ReadsStandardInput() const { return false; }
  /// Whether standard output carries the data, so that it can carry nothing else.
  virtual bool WritesStandardOutput() const { return false; }
  /// The exit code. Errors leave it as exceptions; EAbort is a cancelled run.
  virtual int Run(TSession& Session) = 0;

  TSharedOptions Shared;
};

/// A command and the options that it declared: what texts about it are made from.
struct TDeclaredCommand {
  const TCommand* Command;
  std::vector<TOptionGroup> Groups;
};
/// The options that all of them have. Commands: at least one.
const TOptionGroup& GeneralOptions(const std::vector<TDeclaredCommand>& Commands);

}  // namespace velkrund

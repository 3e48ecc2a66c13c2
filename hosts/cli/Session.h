#pragma once

#include "hosts/cli/line/SharedOptions.h"
#include "hosts/cli/render/Console.h"
#include "hosts/cli/render/Progress.h"
#include "jobs/application/Application.h"
#include "jobs/policies/Questions.h"

namespace velkrund {

/// What a running command works with. All borrowed.
struct TSession {
  TConsole& Console;
  TApplication& Application;
  TAnswers& Answers;
  TProgress& Progress;
  const TSharedOptions& Shared;

  TStandaloneManager& Manager() const { return Application.Manager(); }
  TFileSystem& Files() const { return Application.Manager().Files(); }
  /// The name given for the database, checked: EUsage when none is given and none is configured, or when it is a file's
  /// name.
  const std::string& Database() const;
};

}  // namespace velkrund

#pragma once

#include <string>

#include "hosts/cli/line/Option.h"
#include "hosts/cli/render/Progress.h"
#include "jobs/application/Application.h"
#include "jobs/policies/ErrorPolicy.h"

namespace velkrund {

enum class TOverwrite { Ask, Yes, No };

/// Options that mean the same in every command that has them, in groups that commands put together.
struct TSharedOptions {
  std::string ConfigFile;
  std::string Database;
  bool Json = false;
  bool Verbose = false;
  bool Yes = false;
  bool AllowLoss = false;
  TProgressStyle Progress = TProgressStyle::Auto;
  TOnError OnError = TOnError::Ask;

  TOption DatabaseOption();
  /// --allow-loss, for commands that decode or encode texts.
  TOption AllowLossOption();
  /// --on-error, for commands that do several things.
  TOption OnErrorOption();
  /// What every command has.
  TOptionGroup General();

  TApplicationOptions ApplicationOptions() const;
};

}  // namespace velkrund

#pragma once

#include <string>

#include "hosts/cli/Option.h"
#include "hosts/common/Application.h"
#include "hosts/common/ErrorPolicy.h"

namespace velkrund {

enum class TProgressStyle { Auto, Bar, Plain, None };
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

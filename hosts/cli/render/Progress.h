#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "hosts/cli/render/Console.h"
#include "hosts/cli/render/Glances.h"

namespace velkrund {

enum class TProgressStyle { Auto, Bar, Plain, None, Json };

/// How far a run has come: for people a bar with rate and time left that is drawn over and over on a terminal, or
/// lines; for programs events. Told of every row, it shows something a few times a second.
class TProgress {
 public:
  /// Console: borrowed. Auto: a bar on a terminal, nothing elsewhere.
  TProgress(TConsole& Console, TProgressStyle Style);

  bool IsShown() const { return FStyle != TProgressStyle::None; }
  /// What is counted, in the plural: "rows". Total: of these; -1: what Show says. Name: of what is worked on.
  void Begin(const std::string& Name, std::string Unit, std::int64_t Total);
  /// The work has come to something else.
  void SetName(const std::string& Name);
  /// Total may be scaled: only the proportion counts where Begin knew the total.
  void Show(std::int32_t Current, std::int32_t Total);
  /// Something that has no measure has begun.
  void Doing(const std::string& Text);
  /// Takes the bar away.
  void End();

 private:
  using TClock = TGlances::TClock;

  void Tell(double Fraction, double Seconds) const;
  std::string Line(double Fraction, double Seconds) const;
  std::string Bar(double Fraction, const std::string& Rest) const;

  TConsole& FConsole;
  TProgressStyle FStyle;
  TClock::duration FInterval;
  std::string FName, FUnit;
  std::int64_t FTotal = -1, FCount = -1;
  TClock::time_point FStart, FNext;
  TGlances FGlances;
};

}  // namespace velkrund

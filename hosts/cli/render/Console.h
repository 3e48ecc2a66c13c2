#pragma once

#include <string_view>

#include "jobs/report/Document.h"
#include "standalone/windows/terminal/Terminal.h"

namespace velkrund {

/// The program's standard output for results, and standard error for everything said to people or, once TellEvents was
/// called, to the program that runs this one: then it carries events only, a JSON object a line.
class TConsole final : public TTerminal {
 public:
  /// Holds the places of standard streams that are closed, so that no file gets in there.
  TConsole();
  /// Raises EWriteError: a reader that is gone, a full disk; EAbort where the reader takes nothing and the run is to
  /// stop.
  void Result(std::string_view Text);
  /// False once that has failed.
  bool TakesResults() const { return FTakesResults; }

  void TellEvents() { FTellsEvents = true; }
  bool TellsEvents() const { return FTellsEvents; }
  /// Where events are told: an object that NewEvent has begun.
  void Event(const TDocument& Told) noexcept;
  static TDocument NewEvent(std::string_view Kind);
  void Message(std::string_view Text) noexcept;

 private:
  bool FTellsEvents = false;
  bool FTakesResults = true;
};

}  // namespace velkrund

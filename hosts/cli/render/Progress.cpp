#include "hosts/cli/render/Progress.h"

#include <algorithm>
#include <cmath>

#include "hosts/cli/render/Texts.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

using namespace std::chrono_literals;

constexpr int LongestBar = 40, ShortestBar = 10;
// Before that a guess would be wild.
constexpr double SecondsUntilTimeLeft = 0.5;
constexpr double FractionUntilTimeLeft = 0.01;

/// What is counted, behind a number of thousands.
TLText UnitText(const std::string& Unit) {
  if (Unit == "rows") return LText("M_Velkrund_Cli_UnitRows");
  return Unit == "objects" ? LText("M_Velkrund_Cli_UnitObjects") : Unit;
}

}  // namespace

TProgress::TProgress(TConsole& Console, TProgressStyle Style) : FConsole(Console), FStyle(Style) {
  if (FStyle == TProgressStyle::Auto) FStyle = Console.MessagesAreSeen() ? TProgressStyle::Bar : TProgressStyle::None;
  FInterval = FStyle == TProgressStyle::Bar    ? TClock::duration(100ms)
              : FStyle == TProgressStyle::Json ? TClock::duration(200ms)
                                               : TClock::duration(2s);
}

void TProgress::Begin(const std::string& Name, std::string Unit, std::int64_t Total) {
  SetName(Name);
  FUnit = std::move(Unit);
  FTotal = Total;
  FCount = -1;
  FStart = TClock::now();
  FNext = FStart + FInterval;
  FGlances.Begin(FStart);
  if (FStyle != TProgressStyle::Json) return;
  TDocument Told = TConsole::NewEvent("begin");
  Told.Set("subject", Name).Set("unit", FUnit);
  if (FTotal >= 0) Told.Set("total", FTotal);
  FConsole.Event(Told);
}

void TProgress::SetName(const std::string& Name) { FName = Name; }

void TProgress::Show(std::int32_t Current, std::int32_t Total) {
  if (FStyle == TProgressStyle::None || Total <= 0) return;
  TClock::time_point Now;
  if (!FGlances.Due(Now) || Now < FNext) return;
  FNext = Now + FInterval;
  const double Fraction = std::clamp(static_cast<double>(Current) / Total, 0.0, 1.0);
  FCount = FTotal < 0 ? Current : std::llround(Fraction * static_cast<double>(FTotal));
  const double Seconds = std::chrono::duration<double>(Now - FStart).count();
  if (FStyle == TProgressStyle::Json) return Tell(Fraction, Seconds);
  const std::string Text = Line(Fraction, Seconds);
  if (FStyle == TProgressStyle::Bar)
    FConsole.Status(Bar(Fraction, Text));
  else
    FConsole.Message(FName + ": " + Text);
}

void TProgress::Doing(const std::string& Text) {
  if (FStyle == TProgressStyle::None) return;
  if (FStyle == TProgressStyle::Bar)
    FConsole.Status(CutToWidth(Printable(Text) + " ...", FConsole.Width() - 1));
  else
    FConsole.Message(Text);
}

void TProgress::End() { FConsole.ClearStatus(); }

void TProgress::Tell(double Fraction, double Seconds) const {
  TDocument Told = TConsole::NewEvent("progress");
  Told.Set("subject", FName).Set("unit", FUnit).Set("count", FCount).Set("fraction", Fraction).Set("seconds", Seconds);
  FConsole.Event(Told);
}

std::string TProgress::Line(double Fraction, double Seconds) const {
  const double Rate = static_cast<double>(FCount) / std::max(Seconds, 1e-6);
  const bool Bytes = FUnit == "bytes";
  std::string Result = Format("%d%%  ", static_cast<int>(Fraction * 100));
  if (Bytes)
    Result += LText("M_Velkrund_Cli_BytesAndRate", ByteText(static_cast<double>(FCount)), ByteText(Rate)).Local();
  else
    Result += LText("M_Velkrund_Cli_CountAndRate", ShortNumber(static_cast<double>(FCount)), UnitText(FUnit),
                    ShortNumber(Rate), UnitText(FUnit))
                  .Local();
  if (Seconds >= SecondsUntilTimeLeft && Fraction >= FractionUntilTimeLeft)
    Result += LText("M_Velkrund_Cli_TimeLeft", ClockText(std::llround(std::ceil(Seconds / Fraction * (1 - Fraction)))))
                  .Local();
  return Result;
}

std::string TProgress::Bar(double Fraction, const std::string& Rest) const {
  const int Width = FConsole.Width() - 1;
  std::string Result = std::string(CutToWidth(OnOneLine(FName), std::max(Width / 3, 1))) + "  ";
  const int Room = std::min(Width - DisplayWidth(Result) - DisplayWidth(Rest) - 4, LongestBar);
  if (Room >= ShortestBar) {
    const int Done = static_cast<int>(Fraction * Room);
    Result += "[" + std::string(static_cast<std::size_t>(Done), '#') +
              std::string(static_cast<std::size_t>(Room - Done), '.') + "]  ";
  }
  Result += Rest;
  return std::string(CutToWidth(Result, Width));
}

}  // namespace velkrund

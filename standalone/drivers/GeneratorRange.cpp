#include "standalone/drivers/GeneratorRange.h"

#include <limits>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {

namespace {

std::int64_t Number(const std::string& Name, std::string_view What, const std::optional<std::string>& Text,
                    std::int64_t Usual) {
  if (!Text) return Usual;
  if (const std::optional<std::int64_t> Value = StrToInt64(*Text)) return *Value;
  throw EDatabaseError(Format("The %s of the generator '%s' is no number of 64 bits: '%s'", What, Name, *Text));
}

std::optional<std::int64_t> Sum(std::int64_t A, std::int64_t B) {
  std::int64_t Result = 0;
  return __builtin_add_overflow(A, B, &Result) ? std::nullopt : std::optional(Result);
}

[[noreturn]] void RefuseWide(const std::string& Name) {
  throw EDatabaseError(Format("The generator '%s' would stand at a number of more than 64 bits", Name));
}

}  // namespace

std::optional<std::int64_t> TGeneratorRange::After(std::optional<std::int64_t> Value) const {
  if (!Value) return Start;
  const std::optional<std::int64_t> Next = Sum(*Value, Step);
  if (Next && *Next >= Min && *Next <= Max) return Next;
  return Cycle ? std::optional(Step > 0 ? Min : Max) : std::nullopt;
}

bool TGeneratorRange::Takes(std::int64_t Value) const {
  if (Value >= Min && Value <= Max) return true;
  const std::optional<std::int64_t> Next = Sum(Value, Step);
  return Next && *Next >= Min && *Next <= Max;
}

TGeneratorRange RangeOf(const std::string& Name, const TDicCounter& Counter) {
  using TLimits = std::numeric_limits<std::int64_t>;
  TGeneratorRange Result{};
  Result.Step = Number(Name, "step", Counter.Step, 1);
  const bool Up = Result.Step > 0;
  Result.Min = Number(Name, "least number", Counter.Min, Up ? 1 : TLimits::min());
  Result.Max = Number(Name, "greatest number", Counter.Max, Up ? TLimits::max() : -1);
  Result.Start = Number(Name, "start", Counter.Start, Up ? Result.Min : Result.Max);
  Result.Cycle = Counter.Cycle;
  if (Result.Step == 0) throw EDatabaseError(Format("The generator '%s' has a step of 0", Name));
  if (Result.Min >= Result.Max)
    throw EDatabaseError(Format("The generator '%s' has nothing to count from %d to %d", Name, Result.Min, Result.Max));
  if (Result.Start < Result.Min || Result.Start > Result.Max)
    throw EDatabaseError(Format("The generator '%s' cannot start with %d: it counts from %d to %d", Name, Result.Start,
                                Result.Min, Result.Max));
  return Result;
}

std::int64_t Before(const std::string& Name, std::int64_t Value, std::int64_t Step) {
  std::int64_t Result = 0;
  if (__builtin_sub_overflow(Value, Step, &Result)) RefuseWide(Name);
  return Result;
}

std::int64_t Behind(const std::string& Name, std::int64_t Value, std::int64_t Step) {
  const std::optional<std::int64_t> Result = Sum(Value, Step);
  if (!Result) RefuseWide(Name);
  return *Result;
}

}  // namespace velkrund

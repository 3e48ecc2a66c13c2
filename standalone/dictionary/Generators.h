#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "standalone/dictionary/ScriptRun.h"

namespace velkrund {

/// The generators of one database, wherever they are kept: by the engine, or in a catalogue table. Names are found
/// ignoring case, the exact one first. What changes something runs in the caller's transaction. Raises EDatabaseError.
class TGenerators {
 public:
  TGenerators() = default;
  TGenerators(const TGenerators&) = delete;
  TGenerators& operator=(const TGenerators&) = delete;
  virtual ~TGenerators() = default;

  virtual std::vector<TDicGeneratorDescription> List() = 0;
  virtual std::optional<TDicGeneratorDescription> Find(const std::string& Name) = 0;

  /// Start: the first value; nothing: what the description says. To be called for one that does not exist.
  virtual void Create(const TDicGeneratorDescription& Generator, std::optional<std::int64_t> Start) = 0;

  // Of one that Find has found.
  /// Makes it count as Generator says, which goes by the name of the one that is there. It goes on where it stands
  /// unless Start, the next number, says otherwise; one that was never asked begins with its new start, should that lie
  /// ahead. Until the end of the transaction nobody else asks it. EDatabaseError where the new limits leave out where
  /// it stands.
  virtual void Alter(const TDicGeneratorDescription& There, const TDicGeneratorDescription& Generator,
                     std::optional<std::int64_t> Start) = 0;
  /// The last value that was given out; of one that was never asked, start minus step.
  virtual std::int64_t Value(const TDicGeneratorDescription& Generator) = 0;
  virtual void SetValue(const TDicGeneratorDescription& Generator, std::int64_t Value) = 0;
  virtual void Drop(const TDicGeneratorDescription& Generator) = 0;
};

/// Both borrowed.
std::unique_ptr<TGenerators> GeneratorsOf(TConnection& Connection, TGapBook& Gaps);

}  // namespace velkrund

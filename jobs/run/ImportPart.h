#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "jobs/files/InputFile.h"
#include "jobs/report/Outcome.h"
#include "jobs/report/PlanStep.h"
#include "velkrund/eif/EIObject.h"
#include "velkrund/platform/database/Relations.h"

namespace velkrund {

/// What an import does with the sections of one kind. Lives for one run. Sections are named by the numbers of their
/// items in the outcome.
class TImportPart {
 public:
  virtual ~TImportPart() = default;

  /// A section that is to be imported, before any of all files is added.
  virtual void Announce(TInputFile& /*Input*/, int /*Index*/) {}
  /// The same; Item gets what is known of it. Raises what is certain to fail.
  virtual void Add(TInputFile& Input, int Index, TItem& Item, std::size_t Number) = 0;
  /// Decides about what is there already, before anything is changed; items that are not to be imported become left
  /// out.
  virtual void Settle(TOutcome& Outcome) = 0;
  /// The table that the section goes into; nothing: none that is there, or will be.
  virtual std::optional<TLoadTarget> TargetOf(std::size_t /*Number*/) const { return std::nullopt; }
  /// Whether that table is made by this run.
  virtual bool IsMade(std::size_t /*Number*/) const { return false; }
  /// For a dry run: the emptying that comes before all rows, told once for a table; nothing where it keeps its rows.
  virtual std::optional<TPlanStep> Emptying(std::size_t /*Number*/) const { return std::nullopt; }
  /// The same of what is done with the section.
  virtual std::vector<TPlanStep> Steps(const TItem& /*Item*/, std::size_t /*Number*/) const { return {}; }
  /// Sets the section's object up.
  virtual void Begin(std::size_t Number, TEIObject& Object) = 0;
  /// Takes over what the object counted, after success and after failure. Object: null when it could not be made.
  virtual void End(TItem& Item, const TEIObject* Object) = 0;
};

}  // namespace velkrund

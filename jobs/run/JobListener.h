#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "jobs/policies/Policies.h"
#include "jobs/report/Document.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// A host that wants to know more of a running job than progress as a fraction: for a bar with rates, and for errors as
/// they happen. Called on the job's thread.
class TJobListener {
 public:
  virtual ~TJobListener() = default;

  /// Whether anybody sees Begin and Progress; otherwise nothing is counted for them.
  virtual bool ShowsProgress() const { return true; }
  /// Something begins that takes its time. Subject: what is worked on. Unit: what is counted, in the plural ("rows",
  /// "bytes"). Total: how many there are; -1: Progress says so.
  virtual void Begin(const std::string& /*Subject*/, const std::string& /*Unit*/, std::int64_t /*Total*/) {}
  /// The work has come to something else.
  virtual void SetSubject(const std::string& /*Subject*/) {}
  /// Called for every row: has to be quick. Total may be scaled: only the proportion counts where Begin told a total.
  virtual void Progress(std::int32_t /*Current*/, std::int32_t /*Total*/) {}
  virtual void End() {}
  /// What begins takes its time, and there is nothing to count: "taking back what was changed". Ends with the next call
  /// of any other kind.
  virtual void Doing(const std::string& /*Text*/) {}
  /// A section of a file has come to an end. Kind: "section" of one that was moved, "checked" of one that was checked.
  /// Describe: as the report will have it, unless it is taken back later.
  virtual void Item(const std::string& /*File*/, std::string_view /*Kind*/,
                    const std::function<TDocument()>& /*Describe*/) {}

  /// An error while the run may go on.
  virtual void Fault(const TErrorFacts& /*Error*/) {}
  /// The run goes no further after an error, since nobody could be asked what the policy leaves open.
  virtual void Stopped(TPolicy /*Policy*/) {}
  /// What cannot be put right any more.
  virtual void Complain(const std::string& /*Text*/) {}
};

}  // namespace velkrund

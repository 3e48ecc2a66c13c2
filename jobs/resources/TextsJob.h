#pragma once

#include <functional>
#include <optional>
#include <string>

#include "jobs/policies/ErrorPolicy.h"
#include "jobs/run/Job.h"
#include "velkrund/platform/database/Transaction.h"

namespace velkrund {

/// Works on localized texts without a file between, one item after the other, all in one transaction of the database:
/// after an error that nobody goes on after, and when it is cancelled, all is as it was.
class TTextsJob : public TSectionsJob {
 protected:
  /// Does each item that has not been decided about, in order, within the transaction; what fails is undone by itself.
  void DoAll(const std::function<void(TItem& Item)>& DoOne);
  /// For a dry run: what would be done, a step for each item.
  void PlanAll(const std::function<std::string(const TItem& Item)>& Step);

 private:
  bool GoOn(const TItem& Failed);
  void TakeBack();

  std::optional<TErrorPolicy> FErrors;
};

}  // namespace velkrund

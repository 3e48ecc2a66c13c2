#include "jobs/report/PlanStep.h"

#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

TElements PlanElements(const std::vector<TPlanStep>& Steps) {
  return {Steps.size(), [&Steps](std::size_t Index) {
            const TPlanStep& Step = Steps[Index];
            TDocument Entry;
            Entry.Set("what", Step.What).Set("rows", Step.Rows);
            if (!Step.Statement.empty()) Entry.Set("statement", Step.Statement);
            return Entry;
          }};
}

std::string PlanText(const std::vector<TPlanStep>& Steps) {
  std::string Result;
  for (const TPlanStep& Step : Steps) {
    Result += "-- " + OnOneLine(Step.What) + (Step.Rows ? ": " + Counted(*Step.Rows, "row") : "") + "\n";
    if (!Step.Statement.empty()) Result += Printable(Step.Statement) + ";\n";
  }
  return Result;
}

}  // namespace velkrund

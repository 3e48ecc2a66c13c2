#include "jobs/tables/ExistingRows.h"

namespace velkrund {

bool TExistingRows::Counts() const {
  return FPolicies.ExistingRows == TExisting::Ask || FPolicies.ExistingRows == TExisting::Skip;
}

void TExistingRows::Announce(const std::string& Table, std::int64_t Rows) {
  if (Rows == 0) return;
  FMet += LCounted(FMet.Empty() ? "M_Velkrund_Jobs_TableHas" : "M_Velkrund_Jobs_NextTableHas", Rows, Table, Rows);
}

void TExistingRows::RefuseUnanswered() const {
  if (FPolicies.ExistingRows == TExisting::Ask && !FMet.Empty() && !CanAsk())
    throw EPolicyUnanswered(TPolicy::ExistingRows, FMet + ".");
}

TRowsFate TExistingRows::FateOf(const std::string& Table, std::int64_t Rows) {
  switch (FPolicies.ExistingRows) {
    case TExisting::Replace:
      return TRowsFate::Go;
    case TExisting::Add:
      return TRowsFate::Stay;
    default:
      break;
  }
  if (Rows == 0) return TRowsFate::Stay;
  if (FPolicies.ExistingRows == TExisting::Skip) return TRowsFate::Prevail;
  const TAnswer Answer =
      FQuestion.Ask({LCounted("M_Velkrund_Jobs_ReplaceRows", Rows, Table, Rows, FNew),
                     {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::None, TAnswer::Append, TAnswer::Cancel},
                     TPolicy::ExistingRows});
  if (Answer == TAnswer::Yes) return TRowsFate::Go;
  return Answer == TAnswer::Append ? TRowsFate::Stay : TRowsFate::Prevail;
}

}  // namespace velkrund

#include "jobs/tables/ExistingRows.h"

#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

bool TExistingRows::Counts() const {
  return FPolicies.ExistingRows == TExisting::Ask || FPolicies.ExistingRows == TExisting::Skip;
}

void TExistingRows::Announce(const std::string& Table, std::int64_t Rows) {
  if (Rows == 0) return;
  FMet += Format("%s '%s' has %s", FMet.empty() ? "Table" : ", table", Table, Counted(Rows, "row"));
}

void TExistingRows::RefuseUnanswered() const {
  if (FPolicies.ExistingRows == TExisting::Ask && !FMet.empty() && !CanAsk())
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
  const TAnswer Answer = FQuestion.Ask(
      {Format("Table '%s' has %s. Delete them and put %s in their place?", Table, Counted(Rows, "row"), FNew),
       {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::None, TAnswer::Append, TAnswer::Cancel},
       TPolicy::ExistingRows});
  if (Answer == TAnswer::Yes) return TRowsFate::Go;
  return Answer == TAnswer::Append ? TRowsFate::Stay : TRowsFate::Prevail;
}

}  // namespace velkrund

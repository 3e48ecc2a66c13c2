#include "jobs/policies/MissingSources.h"

namespace velkrund {

bool TMissingSources::LeavesOut(const std::exception& Error) {
  if (FPolicy != TMissingSourcePolicy::Ask) return FPolicy == TMissingSourcePolicy::Skip;
  return FQuestion.Ask({LText("M_Velkrund_Jobs_GoOnWithout", Error.what()),
                        {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::Cancel},
                        TPolicy::MissingSources}) == TAnswer::Yes;
}

}  // namespace velkrund

#include "jobs/policies/MissingSources.h"

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

bool TMissingSources::LeavesOut(const std::exception& Error) {
  if (FPolicy != TMissingSourcePolicy::Ask) return FPolicy == TMissingSourcePolicy::Skip;
  return FQuestion.Ask({Format("%s. Go on without it?", Error.what()),
                        {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::Cancel},
                        TPolicy::MissingSources}) == TAnswer::Yes;
}

}  // namespace velkrund

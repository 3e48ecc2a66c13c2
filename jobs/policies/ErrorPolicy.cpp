#include "jobs/policies/ErrorPolicy.h"

#include "jobs/policies/Questions.h"

namespace velkrund {

bool TErrorPolicy::GoOn(const TLText& Text) {
  if (FOnError != TOnError::Ask) return FOnError == TOnError::Continue;
  switch (Ask({Text, {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::Cancel}, TPolicy::OnError})) {
    case TAnswer::All:
      FOnError = TOnError::Continue;
      return true;
    case TAnswer::Yes:
      return true;
    default:
      return false;
  }
}

}  // namespace velkrund

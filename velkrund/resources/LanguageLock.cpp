#include "velkrund/resources/LanguageLock.h"

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

TLanguageLock::TLanguageLock(TLocalizatorTable& Table, const std::string& SectionID, const std::string& Language)
    : FTable(Table), FSectionID(SectionID), FLanguage(Language) {
  FTable.Lock(FSectionID, FLanguage);
}

TLanguageLock::~TLanguageLock() {
  if (FEnded) return;
  try {
    FTable.UnLock(FSectionID, FLanguage);
  } catch (const std::exception& Error) {
    // The transaction that ends now takes the lock with it.
    BaseMng().WriteTrace(TraceSubsystem, TTraceLevel::Error, Format("Cannot unlock: %s", Error.what()));
  }
}

void TLanguageLock::End() {
  FEnded = true;
  FTable.UnLock(FSectionID, FLanguage);
}

}  // namespace velkrund

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "jobs/report/Outcome.h"
#include "standalone/discard/DiscardLocalization.h"
#include "standalone/discard/DiscardManager.h"
#include "standalone/discard/DiscardObjects.h"
#include "standalone/discard/DiscardStructures.h"
#include "velkrund/eif/EIFile.h"
#include "velkrund/platform/database/Relations.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund {

/// Reads sections as an import does, each through its own reader, on a platform whose stores swallow everything. While
/// it lives that platform is the installed one. A value that nothing can read is a fault, whatever the configuration
/// says, and a reader that asks a question gets no answer.
class TSectionChecker {
 public:
  /// Real: the application manager whose settings and files hold. Canceled: polled. Both are borrowed.
  TSectionChecker(TApplicationManager& Real, const TCancelCallback& Canceled, TProgressCallback OnProgress);

  struct TChecked {
    TItem Item;
    bool HasRows = false;  // it got as far as rows: the item counts those before the end or the fault
  };
  /// What an import would make of the section. File: opened, as far as it could be.
  TChecked Check(TEIFile& File, int Index);

 private:
  void Read(TEIFile& File, int Index, TChecked& Result);

  const TCancelCallback& FCanceled;
  const TProgressCallback FOnProgress;
  TDiscardManager FDiscard;
  TDiscardStructures FStructures;
  TDiscardObjects FObjects;
  TDiscardLocalization FLocalization;
  TServiceGuard<TApplicationManager> FManagerGuard;
  TServiceGuard<TDSPContainer> FStructuresGuard;
  TServiceGuard<TDicDBContainer> FObjectsGuard;
  TServiceGuard<TLContainer> FLocalizationGuard;
  TServiceGuard<TRelations> FRelationsGuard;
  TServiceGuard<TWindowSystem> FWindowsGuard;
};

/// A text for every section whose type and name an earlier one has: no reader stumbles over it, and a person may want
/// to know.
std::vector<std::string> RepeatedNames(const TEISectionList& Sections);

}  // namespace velkrund

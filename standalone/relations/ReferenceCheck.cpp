#include "standalone/relations/ReferenceCheck.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

/// For errors, which are in English whatever texts there are.
std::string BrokenText(const TBrokenReferences& Broken, std::int64_t Before) {
  return Format("%s to rows that are not there (before: %d), for example %s",
                Counted(Broken.Count, "value") + (Broken.Count == 1 ? " refers" : " refer"), Before, Broken.Example);
}

}  // namespace

void TReferenceCheck::Count(const TTableInfo& Table, bool IsLoaded) {
  const std::string Name = FullName(Table);
  if (FTables.contains(Name) || FUnchecked.contains(Name)) return;
  try {
    FTables.emplace(Name, TTable{Table, IsLoaded, FSchema.BrokenReferences(Table).Count});
  } catch (const EDatabaseError& Error) {
    // A key that the engine itself cannot follow.
    FUnchecked.emplace(Name, Error.what());
  }
}

void TReferenceCheck::Compare(std::vector<TLText>& Remarks) const {
  for (const auto& [Name, Reason] : FUnchecked) Remarks.push_back(LText("M_Velkrund_Jobs_Warning", Reason));
  for (const auto& [Name, Table] : FTables) {
    const TBrokenReferences After = FSchema.BrokenReferences(Table.Info);
    if (FAllowed && Table.IsLoaded) {
      if (After.Count > 0)
        Remarks.push_back(LCounted("M_Velkrund_ComUtils_BrokenReferences", After.Count, Name, After.Count, Table.Before,
                                   After.Example));
      continue;
    }
    if (After.Count <= Table.Before) continue;
    throw EDatabaseError(Format("Foreign keys of the table '%s' would be broken by what was loaded: %s", Name,
                                BrokenText(After, Table.Before)),
                         {.Code = Table.IsLoaded ? TErrorCode::References : TErrorCode::RowRefused, .Table = Name});
  }
}

}  // namespace velkrund

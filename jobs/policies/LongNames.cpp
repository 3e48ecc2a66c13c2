#include "jobs/policies/LongNames.h"

#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/operations/NameLengths.h"
#include "velkrund/platform/dictionary/TableDescription.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

template <typename TAskCancel>
bool TLongNames::Decide(const std::string& Name, TAskCancel AskCancel) {
  const auto Unanswered = [&] {
    return EPolicyUnanswered(TPolicy::LongNames, Format("The name '%s' is longer than some databases take.", Name));
  };
  bool Keeps = FPolicy == TLongNamePolicy::Keep;
  if (FPolicy == TLongNamePolicy::Ask) {
    if (!HasUtilOperationsMessageBox() && !Windows().CanAsk()) throw Unanswered();
    try {
      Keeps = !AskCancel();
    } catch (const EQuestionUnanswered&) {
      throw Unanswered();
    }
  }
  if (Keeps) FKept.push_back(Name);
  return Keeps;
}

bool TLongNames::MayMakeTable(const TDicTableDescription& Table) {
  int Limit = 0;
  return !IsLongNameTable(Table, Limit) ||
         Decide(Table.FullName(), [&] { return AskCancelCreateLongNameTable(Table); });
}

bool TLongNames::MayMakeView(const std::string& ViewName) {
  return !IsLongNameView(ViewName) || Decide(ViewName, [&] { return AskCancelCreateLongNameView(ViewName); });
}

void TLongNames::AddNote(std::vector<std::string>& Notes) const {
  if (!FKept.empty())
    Notes.push_back(Format("%s longer than some databases take: %s",
                           FKept.size() == 1 ? "1 name is" : Format("%d names are", FKept.size()),
                           JoinedInShort(FKept)));
}

}  // namespace velkrund

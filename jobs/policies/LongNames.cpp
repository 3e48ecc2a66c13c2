#include "jobs/policies/LongNames.h"

#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/operations/NameLengths.h"
#include "velkrund/platform/dictionary/TableDescription.h"
#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund {

template <typename TAskCancel>
bool TLongNames::Decide(const std::string& Name, TAskCancel AskCancel) {
  const auto Unanswered = [&] {
    return EPolicyUnanswered(TPolicy::LongNames, LText("M_Velkrund_Jobs_LongName", Name));
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

void TLongNames::AddNote(std::vector<TLText>& Notes) const {
  const auto Count = static_cast<std::int64_t>(FKept.size());
  if (Count > 0) Notes.push_back(LCounted("M_Velkrund_Jobs_LongNames", Count, Count, LJoinedInShort(FKept)));
}

}  // namespace velkrund

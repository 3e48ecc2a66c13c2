#include "standalone/drivers/TableWords.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

std::string FilledPattern(const std::string& Pattern, const std::string& Table, const std::string& Items,
                          const std::string& Words) {
  std::string Result;
  bool HasTable = false;
  bool HasItems = false;
  for (std::size_t At = 0;;) {
    const std::size_t Open = Pattern.find('{', At);
    Result += Pattern.substr(At, Open - At);
    if (Open == std::string::npos) break;
    const std::size_t Close = Pattern.find('}', Open);
    const std::string Place = Pattern.substr(Open, Close == std::string::npos ? Close : Close - Open + 1);
    HasTable = HasTable || Place == "{table}";
    HasItems = HasItems || Place == "{items}";
    if (Place == "{table}")
      Result += Table;
    else if (Place == "{items}")
      Result += Items;
    else if (Place == "{words}")
      Result += Words;
    else
      throw EDatabaseError(
          Format("Cannot make table %s: its pattern has the place '%s'; there are {table}, {items} "
                 "and {words}",
                 Table, Place));
    At = Close + 1;
  }
  if (!HasTable || !HasItems)
    throw EDatabaseError(
        Format("Cannot make table %s: its pattern lacks the place %s", Table, HasTable ? "{items}" : "{table}"));
  return Result;
}

std::string DeferrableWords(TDicDeferrable Deferrable) {
  if (Deferrable == TDicDeferrable::No) return {};
  return Deferrable == TDicDeferrable::Deferred ? " DEFERRABLE INITIALLY DEFERRED" : " DEFERRABLE";
}

std::string ActionWords(std::string_view Event, TDicKeyAction Action) {
  constexpr std::string_view Words[] = {"", "CASCADE", "SET NULL", "SET DEFAULT", "RESTRICT"};
  if (Action == TDicKeyAction::NoAction) return {};
  return Format(" ON %s %s", Event, Words[static_cast<std::size_t>(Action)]);
}

}  // namespace velkrund

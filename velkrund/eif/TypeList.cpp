#include "velkrund/eif/TypeList.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

TEIObjectClass TEITypeList::Objects(int Index) const {
  if (Index < 0 || Index >= Count()) throw EListError(Format("Section class index %d is out of bounds", Index));
  return FList[static_cast<std::size_t>(Index)];
}

void TEITypeList::UnregisterEIObject(TEIObjectClass Class) {
  const auto At = std::find(FList.begin(), FList.end(), Class);
  if (At != FList.end()) FList.erase(At);
}

int TEITypeList::IndexOf(TEIObjectClass Class) const {
  const auto At = std::find(FList.begin(), FList.end(), Class);
  return At == FList.end() ? -1 : static_cast<int>(At - FList.begin());
}

TEIObjectClass TEITypeList::Find(std::string_view TypeName, int Version) const {
  for (const TEIObjectClass& Class : FList)
    if (SameText(Class.TypeName(), TypeName) && Class.AcceptVersion(Version)) return Class;
  return {};
}

TEITypeList& EITypeList() {
  static TEITypeList List;
  return List;
}

int CompareIntStringList(const TStringList& List, int Index1, int Index2) {
  const auto Number = [&List](int Index) {
    const auto Value = StrToInt32(List[Index]);
    if (!Value) throw EConvertError(Format("'%s' is not a valid integer value", List[Index]));
    return *Value;
  };
  const std::int32_t A = Number(Index1), B = Number(Index2);
  return A == B ? 0 : A > B ? 1 : -1;
}

}  // namespace velkrund

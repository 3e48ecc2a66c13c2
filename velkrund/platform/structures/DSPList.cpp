#include "velkrund/platform/structures/DSPList.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

const TDSPListItem& TDSPList::operator[](int Index) const {
  if (Index < 0 || Index >= Count()) throw EListError(Format("Structure index %d is out of bounds", Index));
  return FItems[static_cast<std::size_t>(Index)];
}

int TDSPList::IndexOf(std::string_view ObjectName, int ObjectType) const {
  for (int Index = 0; Index < Count(); ++Index)
    if ((*this)[Index].ObjectType == ObjectType && SameText((*this)[Index].ObjectName, ObjectName)) return Index;
  return -1;
}

}  // namespace velkrund

#pragma once

#include <string_view>
#include <vector>

#include "velkrund/eif/EIObject.h"
#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

/// The section classes that readers know, in the order of their registration. Filled when the module starts and only
/// read afterwards; takes no lock.
class TEITypeList {
 public:
  int Count() const { return static_cast<int>(FList.size()); }
  /// Index: 0 .. Count - 1, else EListError.
  TEIObjectClass Objects(int Index) const;
  /// Appends; the same class may stand in the list more than once.
  void RegisterEIObject(TEIObjectClass Class) { FList.push_back(Class); }
  /// Removes the first entry of that class, if any.
  void UnregisterEIObject(TEIObjectClass Class);
  /// -1 when absent.
  int IndexOf(TEIObjectClass Class) const;
  /// The first class of that type name (ignoring case) that accepts the version; empty when there is none.
  TEIObjectClass Find(std::string_view TypeName, int Version) const;

 private:
  std::vector<TEIObjectClass> FList;
};

/// The module's registry.
TEITypeList& EITypeList();

/// Compares two entries of a list as decimal integers: 0, 1 or -1. EConvertError on an entry that is none.
int CompareIntStringList(const TStringList& List, int Index1, int Index2);

}  // namespace velkrund

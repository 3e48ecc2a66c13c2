#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <typeinfo>
#include <variant>
#include <vector>

#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

class TUtilOperationInterface;

enum class TPropertyType { Boolean, Integer, String, Enumeration, StringList, PairList, Object };

/// A property's value; the alternatives stand in the order of TPropertyType's types, an enumeration being its ordinal
/// and an object a borrowed pointer to an object of the class that the property's help names.
using TPropertyValue = std::variant<bool, std::int64_t, std::string, std::vector<std::string>, TStringPairs, void*>;

/// One scriptable property of an operation's interface.
struct TProperty {
  std::string_view Name;
  TPropertyType Type;
  TPropertyValue (*Get)(const TUtilOperationInterface& Object);
  void (*Set)(TUtilOperationInterface& Object, const TPropertyValue& Value);  // null: read-only
  std::string_view Help;
  std::span<const std::string_view> EnumNames = {};  // names by ordinal, for enumerations
  const std::type_info* ObjectType = nullptr;        // class of the object, for objects
};

/// The properties of an interface class: its own, then those of its parents.
struct TPropertyTable {
  const TPropertyTable* Parent;
  std::span<const TProperty> Own;

  /// Ignoring case; null when neither the class nor a parent has it.
  const TProperty* Find(std::string_view Name) const;
  /// All of them, parents first.
  std::vector<const TProperty*> All() const;
};

/// Reads and writes by name. EPropertyError for an unknown name, a value of another type, an ordinal out of range and
/// the writing of a read-only property.
TPropertyValue GetProperty(const TUtilOperationInterface& Object, std::string_view Name);
void SetProperty(TUtilOperationInterface& Object, std::string_view Name, const TPropertyValue& Value);
/// Writes from a text, as scripts and commands have it: true/false, a decimal integer, an enumeration's name or
/// ordinal, list entries separated by commas, pairs as a=b. Not for objects.
void SetPropertyText(TUtilOperationInterface& Object, std::string_view Name, std::string_view Text);
/// The text that SetPropertyText takes. Not for objects.
std::string GetPropertyText(const TUtilOperationInterface& Object, std::string_view Name);
/// What a property of a number is: an integer, the ordinal of an enumeration, 0 or 1 of a boolean. EPropertyError for
/// all others.
std::int64_t GetPropertyInteger(const TUtilOperationInterface& Object, std::string_view Name);
/// Writes a list from its entries, which may hold commas; pairs as a=b. For lists only.
void SetPropertyItems(TUtilOperationInterface& Object, std::string_view Name, const std::vector<std::string>& Items);

}  // namespace velkrund

#include "velkrund/operations/Properties.h"

#include "velkrund/operations/OperationErrors.h"
#include "velkrund/operations/UtilOperationInterface.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

const TProperty& PropertyOf(const TUtilOperationInterface& Object, std::string_view Name) {
  const TInterfaceClass Class = Object.ClassType();
  if (const TProperty* Property = Class.Properties().Find(Name)) return *Property;
  std::vector<std::string> Names;
  for (const TProperty* const Property : Class.Properties().All()) Names.emplace_back(Property->Name);
  throw EPropertyError(
      Format("%s has no property '%s'%s", Class.Name(), Name, ContentHint(Name, Names, "; its properties are ")));
}

bool HoldsType(const TPropertyValue& Value, TPropertyType Type) {
  switch (Type) {
    case TPropertyType::Boolean:
      return std::holds_alternative<bool>(Value);
    case TPropertyType::Integer:
    case TPropertyType::Enumeration:
      return std::holds_alternative<std::int64_t>(Value);
    case TPropertyType::String:
      return std::holds_alternative<std::string>(Value);
    case TPropertyType::StringList:
      return std::holds_alternative<std::vector<std::string>>(Value);
    case TPropertyType::PairList:
      return std::holds_alternative<TStringPairs>(Value);
    case TPropertyType::Object:
      return std::holds_alternative<void*>(Value);
  }
  return false;
}

bool InRange(const TProperty& Property, const TPropertyValue& Value) {
  if (Property.Type == TPropertyType::Enumeration) {
    const std::int64_t Ordinal = std::get<std::int64_t>(Value);
    return Ordinal >= 0 && Ordinal < static_cast<std::int64_t>(Property.EnumNames.size());
  }
  if (Property.Type == TPropertyType::Integer) return std::in_range<std::int32_t>(std::get<std::int64_t>(Value));
  return true;
}

std::vector<std::string> SplitList(std::string_view Text) {
  std::vector<std::string> Items;
  while (!Text.empty()) {
    const std::size_t Comma = Text.find(',');
    Items.emplace_back(Trim(Text.substr(0, Comma)));
    Text = Comma == std::string_view::npos ? std::string_view() : Text.substr(Comma + 1);
  }
  return Items;
}

TStringPairs PairsOf(const std::vector<std::string>& Items) {
  TStringPairs Pairs;
  for (const std::string& Item : Items) {
    const std::size_t Equals = Item.find('=');
    Pairs.emplace_back(
        Trim(std::string_view(Item).substr(0, Equals)),
        Equals == std::string::npos ? std::string_view() : Trim(std::string_view(Item).substr(Equals + 1)));
  }
  return Pairs;
}

void AppendItem(std::string& List, const std::string& Item) {
  if (!List.empty()) List += ',';
  List += Item;
}

std::optional<TPropertyValue> ParseValue(const TProperty& Property, std::string_view Text) {
  switch (Property.Type) {
    case TPropertyType::Boolean:
      if (SameText(Text, "true") || Text == "1") return true;
      if (SameText(Text, "false") || Text == "0") return false;
      return std::nullopt;
    case TPropertyType::Enumeration:
      for (std::size_t Ordinal = 0; Ordinal < Property.EnumNames.size(); ++Ordinal)
        if (SameText(Property.EnumNames[Ordinal], Text)) return static_cast<std::int64_t>(Ordinal);
      [[fallthrough]];
    case TPropertyType::Integer:
      if (const auto Number = StrToInt64(Text)) return *Number;
      return std::nullopt;
    case TPropertyType::String:
      return std::string(Text);
    case TPropertyType::StringList:
      return SplitList(Text);
    case TPropertyType::PairList:
      return PairsOf(SplitList(Text));
    case TPropertyType::Object:
      break;
  }
  return std::nullopt;
}

/// What the property takes, where that can be listed.
std::string ValuesHint(const TProperty& Property, std::string_view Text) {
  std::vector<std::string> Values(Property.EnumNames.begin(), Property.EnumNames.end());
  if (Property.Type == TPropertyType::Boolean) Values = {"true", "false"};
  return ContentHint(Text, Values, "; it takes ");
}

}  // namespace

const TProperty* TPropertyTable::Find(std::string_view Name) const {
  for (const TPropertyTable* Table = this; Table; Table = Table->Parent)
    for (const TProperty& Property : Table->Own)
      if (SameText(Property.Name, Name)) return &Property;
  return nullptr;
}

std::vector<const TProperty*> TPropertyTable::All() const {
  std::vector<const TProperty*> Properties;
  if (Parent) Properties = Parent->All();
  for (const TProperty& Property : Own) Properties.push_back(&Property);
  return Properties;
}

TPropertyValue GetProperty(const TUtilOperationInterface& Object, std::string_view Name) {
  return PropertyOf(Object, Name).Get(Object);
}

void SetProperty(TUtilOperationInterface& Object, std::string_view Name, const TPropertyValue& Value) {
  const TProperty& Property = PropertyOf(Object, Name);
  if (!Property.Set) throw EPropertyError(Format("Property '%s' is read-only", Property.Name));
  if (!HoldsType(Value, Property.Type)) throw EPropertyError(Format("Property '%s' takes another type", Property.Name));
  if (!InRange(Property, Value))
    throw EPropertyError(Format("The value of property '%s' is out of range", Property.Name));
  Property.Set(Object, Value);
}

void SetPropertyText(TUtilOperationInterface& Object, std::string_view Name, std::string_view Text) {
  const TProperty& Property = PropertyOf(Object, Name);
  const auto Value = ParseValue(Property, Text);
  if (!Value)
    throw EPropertyError(
        Format("'%s' is not a value for property '%s'%s", Text, Property.Name, ValuesHint(Property, Text)));
  SetProperty(Object, Property.Name, *Value);
}

std::string GetPropertyText(const TUtilOperationInterface& Object, std::string_view Name) {
  const TProperty& Property = PropertyOf(Object, Name);
  const TPropertyValue Value = Property.Get(Object);
  std::string Text;
  switch (Property.Type) {
    case TPropertyType::Boolean:
      return std::get<bool>(Value) ? "true" : "false";
    case TPropertyType::Enumeration:
      return std::string(Property.EnumNames[static_cast<std::size_t>(std::get<std::int64_t>(Value))]);
    case TPropertyType::Integer:
      AppendInteger(Text, std::get<std::int64_t>(Value));
      return Text;
    case TPropertyType::String:
      return std::get<std::string>(Value);
    case TPropertyType::StringList:
      for (const std::string& Item : std::get<std::vector<std::string>>(Value)) AppendItem(Text, Item);
      return Text;
    case TPropertyType::PairList:
      for (const auto& [First, Second] : std::get<TStringPairs>(Value)) {
        AppendItem(Text, First);
        Text += '=';
        Text += Second;
      }
      return Text;
    case TPropertyType::Object:
      break;
  }
  throw EPropertyError(Format("Property '%s' is an object, which has no text", Property.Name));
}

std::int64_t GetPropertyInteger(const TUtilOperationInterface& Object, std::string_view Name) {
  const TProperty& Property = PropertyOf(Object, Name);
  const TPropertyValue Value = Property.Get(Object);
  if (const bool* const Boolean = std::get_if<bool>(&Value)) return *Boolean ? 1 : 0;
  if (const std::int64_t* const Number = std::get_if<std::int64_t>(&Value)) return *Number;
  throw EPropertyError(Format("Property '%s' is no number", Property.Name));
}

void SetPropertyItems(TUtilOperationInterface& Object, std::string_view Name, const std::vector<std::string>& Items) {
  if (PropertyOf(Object, Name).Type == TPropertyType::PairList)
    SetProperty(Object, Name, PairsOf(Items));
  else
    SetProperty(Object, Name, Items);
}

}  // namespace velkrund

#pragma once

#include <functional>
#include <string>

#include "velkrund/operations/UtilOperationInterface.h"

namespace velkrund {

// Makers of property table rows from the accessors of an interface class, so that every table is plain constant data.

namespace property_access {

template <typename TClass, auto Getter>
decltype(auto) Read(const TUtilOperationInterface& Object) {
  return std::invoke(Getter, static_cast<const TClass&>(Object));
}

template <typename TClass, auto Setter, typename TValue>
void Write(TUtilOperationInterface& Object, TValue&& Value) {
  std::invoke(Setter, static_cast<TClass&>(Object), std::forward<TValue>(Value));
}

}  // namespace property_access

template <typename TClass, auto Getter, auto Setter>
constexpr TProperty BooleanProperty(std::string_view Name, std::string_view Help) {
  return {Name, TPropertyType::Boolean,
          [](const TUtilOperationInterface& Object) -> TPropertyValue {
            return property_access::Read<TClass, Getter>(Object);
          },
          [](TUtilOperationInterface& Object, const TPropertyValue& Value) {
            property_access::Write<TClass, Setter>(Object, std::get<bool>(Value));
          },
          Help};
}

template <typename TClass, auto Getter, auto Setter>
constexpr TProperty IntegerProperty(std::string_view Name, std::string_view Help) {
  return {Name, TPropertyType::Integer,
          [](const TUtilOperationInterface& Object) -> TPropertyValue {
            return static_cast<std::int64_t>(property_access::Read<TClass, Getter>(Object));
          },
          [](TUtilOperationInterface& Object, const TPropertyValue& Value) {
            property_access::Write<TClass, Setter>(Object, static_cast<int>(std::get<std::int64_t>(Value)));
          },
          Help};
}

template <typename TClass, auto Getter, auto Setter>
constexpr TProperty StringProperty(std::string_view Name, std::string_view Help) {
  return {Name, TPropertyType::String,
          [](const TUtilOperationInterface& Object) -> TPropertyValue {
            return std::string(property_access::Read<TClass, Getter>(Object));
          },
          [](TUtilOperationInterface& Object, const TPropertyValue& Value) {
            property_access::Write<TClass, Setter>(Object, std::get<std::string>(Value));
          },
          Help};
}

template <typename TClass, auto Getter>
constexpr TProperty ReadOnlyString(std::string_view Name, std::string_view Help) {
  return {Name, TPropertyType::String,
          [](const TUtilOperationInterface& Object) -> TPropertyValue {
            return std::string(property_access::Read<TClass, Getter>(Object));
          },
          nullptr, Help};
}

template <typename TClass, auto Getter>
constexpr TProperty ReadOnlyInteger(std::string_view Name, std::string_view Help) {
  return {Name, TPropertyType::Integer,
          [](const TUtilOperationInterface& Object) -> TPropertyValue {
            return static_cast<std::int64_t>(property_access::Read<TClass, Getter>(Object));
          },
          nullptr, Help};
}

template <typename TClass, typename TEnum, auto Getter, auto Setter>
constexpr TProperty EnumProperty(std::string_view Name, std::string_view Help,
                                 std::span<const std::string_view> EnumNames) {
  return {Name,
          TPropertyType::Enumeration,
          [](const TUtilOperationInterface& Object) -> TPropertyValue {
            return static_cast<std::int64_t>(property_access::Read<TClass, Getter>(Object));
          },
          [](TUtilOperationInterface& Object, const TPropertyValue& Value) {
            property_access::Write<TClass, Setter>(Object, static_cast<TEnum>(std::get<std::int64_t>(Value)));
          },
          Help,
          EnumNames};
}

template <typename TClass, auto Getter, auto Setter>
constexpr TProperty StringListProperty(std::string_view Name, std::string_view Help) {
  return {Name, TPropertyType::StringList,
          [](const TUtilOperationInterface& Object) -> TPropertyValue {
            return std::vector<std::string>(property_access::Read<TClass, Getter>(Object));
          },
          [](TUtilOperationInterface& Object, const TPropertyValue& Value) {
            property_access::Write<TClass, Setter>(Object, std::get<std::vector<std::string>>(Value));
          },
          Help};
}

template <typename TClass, typename TObject, auto Getter, auto Setter>
constexpr TProperty ObjectProperty(std::string_view Name, std::string_view Help) {
  return {Name,
          TPropertyType::Object,
          [](const TUtilOperationInterface& Object) -> TPropertyValue {
            return static_cast<void*>(property_access::Read<TClass, Getter>(Object));
          },
          [](TUtilOperationInterface& Object, const TPropertyValue& Value) {
            property_access::Write<TClass, Setter>(Object, static_cast<TObject*>(std::get<void*>(Value)));
          },
          Help,
          {},
          &typeid(TObject)};
}

}  // namespace velkrund

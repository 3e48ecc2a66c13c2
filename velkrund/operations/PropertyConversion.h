#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "velkrund/operations/Properties.h"

namespace velkrund::property_access {

// Which property a C++ type makes, and its values there and back. The caller has checked type and range.

template <typename TValue>
inline constexpr bool IsOptional = false;
template <typename TValue>
inline constexpr bool IsOptional<std::optional<TValue>> = true;

template <typename TValue>
inline constexpr bool IsChoice = std::is_enum_v<TValue> || IsOptional<TValue>;

template <typename TValue>
constexpr TPropertyType TypeOf() {
  if constexpr (std::is_same_v<TValue, bool>) return TPropertyType::Boolean;
  if constexpr (std::is_integral_v<TValue>) return TPropertyType::Integer;
  if constexpr (std::is_same_v<TValue, std::string>) return TPropertyType::String;
  if constexpr (IsChoice<TValue>) return TPropertyType::Enumeration;
  if constexpr (std::is_same_v<TValue, TStringList>) return TPropertyType::StringList;
  if constexpr (std::is_same_v<TValue, std::vector<std::string>>) return TPropertyType::StringList;
  if constexpr (std::is_same_v<TValue, TStringPairs>) return TPropertyType::PairList;
  if constexpr (std::is_pointer_v<TValue>) return TPropertyType::Object;
}

template <typename TValue>
TPropertyValue ToProperty(const TValue& Value) {
  if constexpr (IsOptional<TValue>)
    return Value ? static_cast<std::int64_t>(*Value) + 1 : std::int64_t{0};
  else if constexpr (std::is_same_v<TValue, TStringList>)
    return Value.Items();
  else if constexpr (std::is_pointer_v<TValue>)
    return static_cast<void*>(Value);
  else if constexpr (std::is_enum_v<TValue> || TypeOf<TValue>() == TPropertyType::Integer)
    return static_cast<std::int64_t>(Value);
  else
    return Value;
}

template <typename TValue>
TValue FromProperty(const TPropertyValue& Value) {
  if constexpr (IsOptional<TValue>) {
    const std::int64_t Ordinal = std::get<std::int64_t>(Value);
    return Ordinal == 0 ? TValue() : TValue(static_cast<typename TValue::value_type>(Ordinal - 1));
  } else if constexpr (std::is_same_v<TValue, TStringList>)
    return TStringList(std::get<std::vector<std::string>>(Value));
  else if constexpr (std::is_pointer_v<TValue>)
    return static_cast<TValue>(std::get<void*>(Value));
  else if constexpr (std::is_enum_v<TValue> || TypeOf<TValue>() == TPropertyType::Integer)
    return static_cast<TValue>(std::get<std::int64_t>(Value));
  else
    return std::get<TValue>(Value);
}

}  // namespace velkrund::property_access

#pragma once

#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "velkrund/operations/UtilOperationInterface.h"

namespace velkrund {

// Makers of property table rows straight from the members of jobs: JobProperty<&TJobExportTables::Tables>(name, help).
// With several members the later ones are members of the earlier one: <&TPolicyJob::Policies, &TPolicies::Lenient>.

namespace job_properties {

template <typename TMember>
struct TMemberOf;
template <typename TOwner, typename TType>
struct TMemberOf<TType TOwner::*> {
  using TClass = TOwner;
  using TValue = TType;
};

template <auto First, auto... Rest>
auto& At(auto& Object) {
  if constexpr (sizeof...(Rest) == 0)
    return Object.*First;
  else
    return At<Rest...>(Object.*First);
}

template <auto First, auto... Rest>
auto& Member(const TUtilOperationInterface& Object) {
  using TClass = typename TMemberOf<decltype(First)>::TClass;
  return At<First, Rest...>(static_cast<TClass&>(Object.Operation()));
}

template <auto... Members>
using TValueAt = std::remove_cvref_t<decltype(Member<Members...>(std::declval<const TUtilOperationInterface&>()))>;

template <typename TValue>
constexpr TPropertyType TypeOf() {
  if constexpr (std::is_same_v<TValue, bool>) return TPropertyType::Boolean;
  if constexpr (std::is_same_v<TValue, std::int32_t>) return TPropertyType::Integer;
  if constexpr (std::is_same_v<TValue, std::string>) return TPropertyType::String;
  if constexpr (std::is_same_v<TValue, std::vector<std::string>>) return TPropertyType::StringList;
}

}  // namespace job_properties

template <auto... Members>
constexpr TProperty JobProperty(std::string_view Name, std::string_view Help) {
  using TValue = job_properties::TValueAt<Members...>;
  return {Name, job_properties::TypeOf<TValue>(),
          [](const TUtilOperationInterface& Object) -> TPropertyValue {
            const TValue& Value = job_properties::Member<Members...>(Object);
            if constexpr (std::is_same_v<TValue, std::int32_t>)
              return static_cast<std::int64_t>(Value);
            else
              return Value;
          },
          [](TUtilOperationInterface& Object, const TPropertyValue& Value) {
            if constexpr (std::is_same_v<TValue, std::int32_t>)
              job_properties::Member<Members...>(Object) = static_cast<std::int32_t>(std::get<std::int64_t>(Value));
            else
              job_properties::Member<Members...>(Object) = std::get<TValue>(Value);
          },
          Help};
}

/// EnumNames: by ordinal, from 0.
template <auto... Members>
constexpr TProperty JobChoice(std::string_view Name, std::string_view Help,
                              std::span<const std::string_view> EnumNames) {
  using TEnum = job_properties::TValueAt<Members...>;
  return {Name,
          TPropertyType::Enumeration,
          [](const TUtilOperationInterface& Object) -> TPropertyValue {
            return static_cast<std::int64_t>(job_properties::Member<Members...>(Object));
          },
          [](TUtilOperationInterface& Object, const TPropertyValue& Value) {
            job_properties::Member<Members...>(Object) = static_cast<TEnum>(std::get<std::int64_t>(Value));
          },
          Help,
          EnumNames};
}

/// A choice that can be left to the job: ordinal 0 is no value, the others are those of the enumeration, from 0,
/// plus 1.
template <auto... Members>
constexpr TProperty OptionalJobChoice(std::string_view Name, std::string_view Help,
                                      std::span<const std::string_view> EnumNames) {
  using TEnum = typename job_properties::TValueAt<Members...>::value_type;
  return {Name,
          TPropertyType::Enumeration,
          [](const TUtilOperationInterface& Object) -> TPropertyValue {
            const std::optional<TEnum>& Value = job_properties::Member<Members...>(Object);
            return Value ? static_cast<std::int64_t>(*Value) + 1 : std::int64_t{0};
          },
          [](TUtilOperationInterface& Object, const TPropertyValue& Value) {
            const std::int64_t Ordinal = std::get<std::int64_t>(Value);
            job_properties::Member<Members...>(Object) =
                Ordinal == 0 ? std::nullopt : std::optional(static_cast<TEnum>(Ordinal - 1));
          },
          Help,
          EnumNames};
}

/// A number that the job counts.
template <typename TJobClass, auto Count>
constexpr TProperty JobCount(std::string_view Name, std::string_view Help) {
  return {Name, TPropertyType::Integer,
          [](const TUtilOperationInterface& Object) -> TPropertyValue {
            return Count(static_cast<const TJobClass&>(Object.Operation()));
          },
          nullptr, Help};
}

}  // namespace velkrund

#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "velkrund/operations/PropertyConversion.h"
#include "velkrund/operations/UtilOperationInterface.h"

namespace velkrund {

// Makers of property table rows, so that every table is plain constant data. What a row reads and writes are members of
// the operation or, where the class is one of interfaces, of the interface object; the row's type is that of the
// member.
//
//   PropertyOf<&TUOExportTableData::TableName>          a member
//   PropertyOf<&TPolicyJob::Policies, &TPolicies::Yes>  a member of a member
//   PropertyOf<&TThis::Answer, &TThis::SetAnswer>       what one operation reads and another one writes
//   ReadOnlyOf<&TUORecreateContainer::Count>            what an operation, or a function of the object, gives

namespace property_access {

/// The class that a member belongs to, or whose object a function takes.
template <typename TFunction>
struct TOwnerOf : TOwnerOf<decltype(&TFunction::operator())> {};
template <typename TValue, typename TClass>
struct TOwnerOf<TValue TClass::*> {
  using TOwner = TClass;
};
template <typename TValue, typename TFunction, typename TClass>
struct TOwnerOf<TValue (TFunction::*)(const TClass&) const> {
  using TOwner = TClass;
};

template <typename TOwner, typename TObject>
auto& OwnerIn(TObject& Object) {
  using TResult = std::conditional_t<std::is_const_v<TObject>, const TOwner, TOwner>;
  if constexpr (std::is_base_of_v<TUtilOperationInterface, TOwner>)
    return static_cast<TResult&>(Object);
  else if constexpr (std::is_base_of_v<TUtilOperation, TOwner>)
    return static_cast<TResult&>(Object.Operation());
  else  // a part that several operations have beside their base
    return dynamic_cast<TResult&>(Object.Operation());
}

template <auto Getter>
struct TReading {
  using TOwner = typename TOwnerOf<decltype(Getter)>::TOwner;
  using TValue = std::remove_cvref_t<std::invoke_result_t<decltype(Getter), const TOwner&>>;
  static TValue Get(const TUtilOperationInterface& Object) { return std::invoke(Getter, OwnerIn<TOwner>(Object)); }
};

template <auto First, auto... Rest>
auto& At(auto& Object) {
  if constexpr (sizeof...(Rest) == 0)
    return Object.*First;
  else
    return At<Rest...>(Object.*First);
}

/// A member, or a path of members.
template <auto First, auto... Rest>
struct TAccess {
  using TOwner = typename TOwnerOf<decltype(First)>::TOwner;
  using TValue = std::remove_cvref_t<decltype(At<First, Rest...>(std::declval<TOwner&>()))>;
  static TValue Get(const TUtilOperationInterface& Object) { return At<First, Rest...>(OwnerIn<TOwner>(Object)); }
  static void Set(TUtilOperationInterface& Object, TValue Value) {
    At<First, Rest...>(OwnerIn<TOwner>(Object)) = std::move(Value);
  }
};

template <auto Getter, auto Setter>
requires std::is_member_function_pointer_v<decltype(Getter)>
struct TAccess<Getter, Setter> : TReading<Getter> {
  using typename TReading<Getter>::TOwner;
  using typename TReading<Getter>::TValue;
  static void Set(TUtilOperationInterface& Object, const TValue& Value) {
    std::invoke(Setter, OwnerIn<TOwner>(Object), Value);
  }
};

template <typename TAccess>
constexpr TProperty Row(std::string_view Name, std::string_view Help,
                        std::span<const std::string_view> EnumNames = {}) {
  using TValue = typename TAccess::TValue;
  TProperty Result = {
      Name,
      TypeOf<TValue>(),
      [](const TUtilOperationInterface& Object) -> TPropertyValue { return ToProperty<TValue>(TAccess::Get(Object)); },
      nullptr,
      Help,
      EnumNames};
  if constexpr (requires { &TAccess::Set; })
    Result.Set = [](TUtilOperationInterface& Object, const TPropertyValue& Value) {
      TAccess::Set(Object, FromProperty<TValue>(Value));
    };
  if constexpr (std::is_pointer_v<TValue>) Result.ObjectType = &typeid(std::remove_pointer_t<TValue>);
  return Result;
}

}  // namespace property_access

template <auto... Members>
constexpr TProperty PropertyOf(std::string_view Name, std::string_view Help) {
  using TAccess = property_access::TAccess<Members...>;
  using TValue = typename TAccess::TValue;
  static_assert(!property_access::IsChoice<TValue>, "a choice needs names");
  static_assert(property_access::TypeOf<TValue>() != TPropertyType::Integer || std::is_same_v<TValue, std::int32_t>,
                "what is written has the range of 32 bits");
  return property_access::Row<TAccess>(Name, Help);
}

/// EnumNames: by ordinal, from 0. An enumeration that may be left out (std::optional) has ordinal 0 for no value; its
/// own ordinals begin with 1.
template <auto... Members>
constexpr TProperty ChoiceOf(std::string_view Name, std::string_view Help,
                             std::span<const std::string_view> EnumNames) {
  using TAccess = property_access::TAccess<Members...>;
  static_assert(property_access::IsChoice<typename TAccess::TValue>);
  return property_access::Row<TAccess>(Name, Help, EnumNames);
}

template <auto Getter>
constexpr TProperty ReadOnlyOf(std::string_view Name, std::string_view Help) {
  return property_access::Row<property_access::TReading<Getter>>(Name, Help);
}

}  // namespace velkrund

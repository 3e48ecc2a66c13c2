#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund::tests {

inline TKvVariant MakeValue(const std::function<void(TKvVariant&)>& Fill) {
  TKvVariant Value;
  Fill(Value);
  return Value;
}
inline TKvVariant Text(std::string_view Bytes, TKvKind Kind = TKvKind::String) {
  return MakeValue([&](TKvVariant& Value) { Value.SetText(Bytes, Kind); });
}
inline TKvVariant Integer(std::int64_t Number, TKvKind Kind = TKvKind::Int64) {
  return MakeValue([&](TKvVariant& Value) { Value.SetInteger(Number, Kind); });
}
inline TKvVariant Unsigned(std::uint64_t Number) {
  return MakeValue([&](TKvVariant& Value) { Value.SetUnsigned(Number); });
}
inline TKvVariant Real(double Number, TKvKind Kind = TKvKind::Double) {
  return MakeValue([&](TKvVariant& Value) { Value.SetReal(Number, Kind); });
}
inline TKvVariant Boolean(bool Truth, TKvKind Kind = TKvKind::Boolean) {
  return MakeValue([&](TKvVariant& Value) { Value.SetBoolean(Truth, Kind); });
}
inline TKvVariant Currency(std::int64_t TenThousandths) {
  return MakeValue([&](TKvVariant& Value) { Value.SetCurrency({TenThousandths}); });
}
inline TKvVariant Moment(std::string_view SysText) {
  return MakeValue([&](TKvVariant& Value) { Value.SetDateTime(*SysStrToDateTime(SysText)); });
}
inline TKvVariant Date(std::string_view SysText) {
  return MakeValue([&](TKvVariant& Value) { Value.SetSysDate(*StrToSysDate(SysText)); });
}
inline TKvVariant TimeOfDay(std::string_view SysText) {
  return MakeValue([&](TKvVariant& Value) { Value.SetSysTime(*StrToSysTime(SysText)); });
}

/// Class and message of the error that Action raises.
inline std::string ErrorOf(const std::function<void()>& Action) {
  try {
    Action();
  } catch (const std::exception& Error) {
    return ExceptionClassName(Error) + ": " + Error.what();
  }
  return "no error";
}

}  // namespace velkrund::tests

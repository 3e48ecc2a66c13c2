#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace velkrund {

/// One argument of Format: a text or an integer. Texts are borrowed for the duration of the call.
class TFormatArg {
 public:
  TFormatArg(std::string_view Text) : FText(Text) {}
  TFormatArg(const std::string& Text) : FText(Text) {}
  TFormatArg(const char* Text) : FText(Text) {}
  template <std::integral T>
  TFormatArg(T Value) : FNumber(static_cast<std::int64_t>(Value)), FIsNumber(true) {}

  void AppendTo(std::string& Out) const;

 private:
  std::string_view FText;
  std::int64_t FNumber = 0;
  bool FIsNumber = false;
};

/// The text of Pattern with every "%s" and "%d" replaced by the next argument, in order. "%%" stands for one percent
/// sign. A placeholder without an argument stays as it is; surplus arguments are ignored. Never fails on bad patterns,
/// so that the making of an error message cannot hide the error.
std::string Format(std::string_view Pattern, std::initializer_list<TFormatArg> Arguments);

template <typename... T>
std::string Format(std::string_view Pattern, const T&... Arguments) {
  return Format(Pattern, std::initializer_list<TFormatArg>{TFormatArg(Arguments)...});
}

}  // namespace velkrund

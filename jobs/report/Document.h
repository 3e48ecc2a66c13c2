#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

class TDocument;

/// The elements of a list that may be long, made one by one when the document is written.
struct TElements {
  std::size_t Count = 0;
  std::function<TDocument(std::size_t)> At = {};  // the element at a place, from 0; what it refers to has to live on
};

/// The result of a job for programs: a JSON document, or a part of one. Members stand in the order in which they were
/// set. This is the only place that knows the library behind it.
class TDocument {
 public:
  /// An object without members.
  TDocument();
  /// A whole document: an object that begins with its form ("velkrund/transfer/1"), what was asked for ("export
  /// table"; empty: that is not known) and how it ended. Schema: the form's name.
  static TDocument Headed(std::string_view Schema, std::string_view Command, int ExitCode);
  /// A list without elements.
  static TDocument List();
  /// A value by itself: integers, finite floating numbers, truth values and null as such, bytes as hexadecimal digits,
  /// all others as their texts. 8-bit texts are in the code page of the settings.
  static TDocument Value(const TKvVariant& Value);
  TDocument(TDocument&&) noexcept;
  TDocument& operator=(TDocument&&) noexcept;
  ~TDocument();

  TDocument& Set(std::string_view Name, std::string_view Value);
  TDocument& Set(std::string_view Name, const char* Value) { return Set(Name, std::string_view(Value)); }
  TDocument& Set(std::string_view Name, const std::string& Value) { return Set(Name, std::string_view(Value)); }
  TDocument& Set(std::string_view Name, double Value);
  TDocument& Set(std::string_view Name, const std::vector<std::string>& Values);
  TDocument& Set(std::string_view Name, TDocument Value);
  /// A document that has such a list is written while what the list refers to lives.
  TDocument& Set(std::string_view Name, TElements Elements);
  /// The same as Set for a name that is not there yet, at once however many there are.
  TDocument& Append(std::string_view Name, std::string_view Value);
  TDocument& SetNull(std::string_view Name);
  template <std::integral TInteger>
  TDocument& Set(std::string_view Name, TInteger Value) {
    if constexpr (std::same_as<TInteger, bool>)
      return SetBoolean(Name, Value);
    else if constexpr (std::unsigned_integral<TInteger>)
      return SetUnsigned(Name, Value);
    else
      return SetSigned(Name, Value);
  }
  /// Nothing where there is no value.
  template <typename TValue>
  TDocument& Set(std::string_view Name, const std::optional<TValue>& Value) {
    return Value ? Set(Name, *Value) : *this;
  }
  /// To a list.
  void Add(TDocument Value);

  using TSink = std::function<void(std::string_view)>;
  /// Writes it part by part as it is printed, with a line end; bytes that are no UTF-8 are replaced.
  void Write(const TSink& Sink) const;
  /// What is written.
  std::string Text() const;
  /// The same on one line.
  std::string Line() const;

 private:
  struct TValue;

  class TWriter;

  TDocument& SetBoolean(std::string_view Name, bool Value);
  TDocument& SetSigned(std::string_view Name, std::int64_t Value);
  TDocument& SetUnsigned(std::string_view Name, std::uint64_t Value);

  std::unique_ptr<TValue> FValue;
};

}  // namespace velkrund

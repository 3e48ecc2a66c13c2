#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

/// Rows as tab-separated text, a line each: a tab is "\t", a line feed "\n", a carriage return "\r", a backslash "\\",
/// any other control character, malformed byte and byte of a bytes value "\x" and two hexadecimal digits, and NULL
/// "\N".
class TRowLines {
 public:
  /// Takes whole lines, many at a time.
  using TTake = std::function<void(std::string_view Lines)>;

  explicit TRowLines(TTake Take) : FTake(std::move(Take)) {}

  void Add(const TKvVariant& Value);
  void AddText(std::string_view Text);
  void EndRow();
  /// Hands on what is left.
  void End();

 private:
  void AppendText(std::string_view Text);
  void AppendBytes(std::string_view Bytes);
  void BeginCell();

  const TTake FTake;
  std::string FLines;
  std::string FScratch;
  bool FInRow = false;
};

}  // namespace velkrund

#pragma once

#include <cstdint>
#include <string_view>

namespace velkrund {

/// A window of the host, as a number that only the host understands; 0 is none.
using TWindowHandle = std::uintptr_t;

// Flags and answers of message boxes; the numbers are those of the desktop systems' own message box.
inline constexpr std::uint32_t MB_YESNOCANCEL = 3;
inline constexpr std::uint32_t MB_YESNO = 4;
inline constexpr std::uint32_t MB_ICONQUESTION = 0x20;
inline constexpr std::uint32_t MB_ICONWARNING = 0x30;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

/// Shows a question and returns the answer's code. Without anybody to answer it raises EQuestionUnanswered that names
/// the question; it never guesses.
class TMessageBoxService {
 public:
  virtual ~TMessageBoxService() = default;
  virtual int MessageBox(TWindowHandle Window, std::string_view Text, std::string_view Caption,
                         std::uint32_t Flags) = 0;
};

}  // namespace velkrund

#include "standalone/windows/terminal/TerminalText.h"

#include <locale.h>
#include <wchar.h>

#include <algorithm>

#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

// In bytes. An error quotes the value at fault, and a value can be a document.
constexpr std::size_t LongestLine = 4000, LongestBeginning = 3000, LongestEnd = 500;

bool BeginsCharacter(char Byte) { return (static_cast<unsigned char>(Byte) & 0xC0U) != 0x80; }

void AppendShort(std::string& Out, std::string_view Line) {
  std::size_t Head = LongestBeginning, Tail = Line.size() - LongestEnd;
  if (Line.size() <= LongestLine) Head = Tail = Line.size();
  while (Head < Tail && !BeginsCharacter(Line[Head])) ++Head;
  while (Head < Tail && !BeginsCharacter(Line[Tail])) --Tail;
  Out += Head == Tail ? Line : Line.substr(0, Head);
  if (Head == Tail) return;
  const std::string_view Middle = Line.substr(Head, Tail - Head);
  Out += Format("... (%d characters left out) ...", std::count_if(Middle.begin(), Middle.end(), BeginsCharacter));
  Out += Line.substr(Tail);
}

/// The C library's widths, in a locale that knows all characters whatever the process uses.
class TUnicodeLocale {
 public:
  TUnicodeLocale() : FBefore(uselocale(Unicode())) {}
  TUnicodeLocale(const TUnicodeLocale&) = delete;
  TUnicodeLocale& operator=(const TUnicodeLocale&) = delete;
  ~TUnicodeLocale() { uselocale(FBefore); }

 private:
  static locale_t Unicode() {
    static const locale_t Made = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return Made;  // null leaves the locale as it is
  }

  locale_t FBefore;
};

int WidthOf(char32_t Code) {
  const int Width = wcwidth(static_cast<wchar_t>(Code));
  return Width < 0 ? 1 : Width;  // unknown to the library: most likely newer than it
}

}  // namespace

std::string WithShortLines(std::string_view Text) {
  std::string Result;
  for (bool More = true; More;) {
    const std::size_t End = Text.find('\n');
    More = End != std::string_view::npos;
    AppendShort(Result, Text.substr(0, End));
    if (More) Result += '\n';
    Text.remove_prefix(More ? End + 1 : Text.size());
  }
  return Result;
}

int DisplayWidth(std::string_view Text) {
  const TUnicodeLocale Locale;
  int Result = 0;
  for (std::size_t At = 0; At < Text.size();) Result += WidthOf(NextCodePoint(Text, At));
  return Result;
}

std::string_view CutToWidth(std::string_view Text, int Columns) {
  const TUnicodeLocale Locale;
  int Width = 0;
  for (std::size_t At = 0; At < Text.size();) {
    const std::size_t Start = At;
    Width += WidthOf(NextCodePoint(Text, At));
    if (Width > Columns) return Text.substr(0, Start);
  }
  return Text;
}

}  // namespace velkrund

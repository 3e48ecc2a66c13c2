#include "velkrund/platform/ormtools/Format.h"

#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {

void TFormatArg::AppendTo(std::string& Out) const {
  if (FIsNumber)
    AppendInteger(Out, FNumber);
  else
    Out += FText;
}

std::string Format(std::string_view Pattern, std::initializer_list<TFormatArg> Arguments) {
  std::string Out;
  const TFormatArg* Next = Arguments.begin();
  std::size_t At = 0;
  while (At < Pattern.size()) {
    const std::size_t Percent = Pattern.find('%', At);
    Out += Pattern.substr(At, Percent - At);
    if (Percent == std::string_view::npos) break;
    const char Kind = Percent + 1 < Pattern.size() ? Pattern[Percent + 1] : '\0';
    At = Percent + 2;
    if (Kind == '%') {
      Out += '%';
    } else if ((Kind == 's' || Kind == 'd') && Next != Arguments.end()) {
      Next->AppendTo(Out);
      ++Next;
    } else {
      Out += '%';
      At = Percent + 1;
    }
  }
  return Out;
}

}  // namespace velkrund

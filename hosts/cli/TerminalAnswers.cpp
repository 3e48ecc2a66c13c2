#include "hosts/cli/TerminalAnswers.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>

#include "hosts/cli/Interrupt.h"
#include "hosts/cli/Texts.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr int PollMilliseconds = 100;

struct TAnswerWord {
  TAnswer Answer;
  std::string_view Shown, Letter, Word;
};

constexpr TAnswerWord AnswerWords[] = {
    {TAnswer::Yes, "[y]es", "y", "yes"},          {TAnswer::No, "[n]o", "n", "no"},
    {TAnswer::All, "[A]ll", "a", "all"},          {TAnswer::None, "n[O]ne", "o", "none"},
    {TAnswer::Append, "a[p]pend", "p", "append"}, {TAnswer::Cancel, "[c]ancel", "c", "cancel"},
};

bool CanBeGiven(const TQuestion& Question, TAnswer Answer) {
  return std::find(Question.Answers.begin(), Question.Answers.end(), Answer) != Question.Answers.end();
}

}  // namespace

TAnswer TTerminalAnswers::Ask(const TQuestion& Question) {
  std::string Prompt = Printable(Question.Text) + "\n ";
  for (const TAnswerWord& Word : AnswerWords)
    if (CanBeGiven(Question, Word.Answer)) Prompt += " " + std::string(Word.Shown);
  Prompt += " ? ";
  for (;;) {
    FConsole.Prompt(Prompt);
    std::string Line;
    if (!ReadLine(Line)) {
      FConsole.Prompt("\n");
      return TAnswer::Cancel;
    }
    const std::string Given = LowerCase(Trim(Line));
    for (const TAnswerWord& Word : AnswerWords)
      if ((Given == Word.Letter || Given == Word.Word) && CanBeGiven(Question, Word.Answer)) return Word.Answer;
    Prompt = Prompt.substr(Prompt.rfind('\n') + 1);
  }
}

bool TTerminalAnswers::ReadLine(std::string& Line) {
  while (!TInterrupt::Requested()) {
    struct pollfd Poll = {FDescriptor, POLLIN, 0};
    if (poll(&Poll, 1, PollMilliseconds) <= 0) continue;
    char Byte;
    if (read(FDescriptor, &Byte, 1) <= 0) return false;
    if (Byte == '\n') return true;
    Line += Byte;
  }
  return false;
}

namespace {

/// Answers from a terminal of its own, which is closed with it.
class TControllingTerminalAnswers final : public TAnswers {
 public:
  TControllingTerminalAnswers(TConsole& Console, int Descriptor)
      : FDescriptor(Descriptor), FAnswers(Console, Descriptor) {}
  ~TControllingTerminalAnswers() override { close(FDescriptor); }
  bool CanAsk() const override { return true; }
  TAnswer Ask(const TQuestion& Question) override { return FAnswers.Ask(Question); }

 private:
  int FDescriptor;
  TTerminalAnswers FAnswers;
};

}  // namespace

std::unique_ptr<TAnswers> FindAnswers(TConsole& Console, bool InputIsData) {
  if (isatty(STDERR_FILENO)) {
    if (!InputIsData && isatty(STDIN_FILENO)) return std::make_unique<TTerminalAnswers>(Console, STDIN_FILENO);
    if (InputIsData)
      if (const int Descriptor = open("/dev/tty", O_RDONLY | O_CLOEXEC); Descriptor >= 0)
        return std::make_unique<TControllingTerminalAnswers>(Console, Descriptor);
  }
  return std::make_unique<TNoAnswers>();
}

}  // namespace velkrund

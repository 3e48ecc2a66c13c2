#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/support/TestPlatform.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/lctrls/MainThreadQueue.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund::tests {
namespace {

/// A window system with a loop of its own, and what each form got there.
class TLoopWindows final : public TWindowSystem {
 public:
  int ShowModal(TForm& Form) override {
    EXPECT_EQ(std::this_thread::get_id(), FMainThread);
    ++Shown;
    return Answer(Form);
  }
  void Synchronize(const std::function<void()>& Action) override { FQueue.Run(Action); }
  /// Runs Work on a thread of its own while this one runs the loop.
  void RunBehindLoop(const std::function<void()>& Work) {
    const TMainThreadQueue::TLoop Loop(FQueue);
    std::atomic<bool> Finished = false;
    std::thread Worker([&] {
      Work();
      Finished = true;
    });
    while (!Finished) FQueue.Pump();
    Worker.join();
  }

  std::function<int(TForm&)> Answer = [](TForm&) { return mrYes; };
  int Shown = 0;

 private:
  const std::thread::id FMainThread = std::this_thread::get_id();
  TMainThreadQueue FQueue;
};

class TWorkerQuestions : public testing::Test {
 protected:
  static int Ask() { return uoMessageBox(0, u"Go on?", u"", MB_YESNO, IDYES, IDNO); }

  TTestPlatform Platform;
  TLoopWindows Windows;
  TServiceGuard<TWindowSystem> Guard{&Windows};
};

TEST_F(TWorkerQuestions, AreShownOnTheMainThreadAndTheirAnswersComeBack) {
  Windows.RunBehindLoop([] {
    for (int I = 0; I < 100; ++I) EXPECT_EQ(Ask(), IDYES);
  });
  EXPECT_EQ(Windows.Shown, 100);
}

TEST_F(TWorkerQuestions, HooksRunOnTheMainThreadToo) {
  const std::thread::id MainThread = std::this_thread::get_id();
  const TMessageBoxGuard Hook([&](auto...) { return std::this_thread::get_id() == MainThread ? IDNO : IDCANCEL; });
  Windows.RunBehindLoop([] { EXPECT_EQ(Ask(), IDNO); });
  EXPECT_EQ(Windows.Shown, 0);
}

TEST_F(TWorkerQuestions, ErrorsOfWhoeverAnswersReachTheWorker) {
  Windows.Answer = [](TForm&) -> int { throw EAbort("given up"); };
  Windows.RunBehindLoop([] { EXPECT_THROW(Ask(), EAbort); });
  Windows.Answer = [](TForm& Form) { return NobodyAtTheScreen().ShowModal(Form); };
  Windows.RunBehindLoop([] { EXPECT_THROW(Ask(), EQuestionUnanswered); });
}

TEST_F(TWorkerQuestions, NobodyHangsWhereNoLoopRuns) {
  const TServiceGuard<TWindowSystem> Without(nullptr);
  std::thread Worker([] { EXPECT_THROW(Ask(), EQuestionUnanswered); });
  Worker.join();
}

}  // namespace
}  // namespace velkrund::tests

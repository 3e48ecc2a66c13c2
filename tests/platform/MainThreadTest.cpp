#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "velkrund/platform/lctrls/MainThreadQueue.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund::tests {
namespace {

constexpr int Workers = 8, Rounds = 200;

/// Workers that count under no lock of their own: a lost count is a race.
class TCounting {
 public:
  using TRun = std::function<void(const std::function<void()>&)>;
  explicit TCounting(const TRun& Run) {
    for (int I = 0; I < Workers; ++I)
      FThreads.emplace_back([this, Run] {
        for (int Round = 0; Round < Rounds; ++Round)
          Run([this] { ++Count, Threads.push_back(std::this_thread::get_id()); });
        ++Finished;
      });
  }
  ~TCounting() {
    for (std::thread& Thread : FThreads) Thread.join();
  }
  bool AllOn(std::thread::id Thread) const {
    return std::all_of(Threads.begin(), Threads.end(), [=](auto Each) { return Each == Thread; });
  }

  int Count = 0;
  std::vector<std::thread::id> Threads;
  std::atomic<int> Finished = 0;

 private:
  std::vector<std::thread> FThreads;
};

TEST(MainThread, ALoopRunsWhatWorkersAsk) {
  TMainThreadQueue Queue;
  const TMainThreadQueue::TLoop Loop(Queue);
  TCounting Counting([&](const auto& Action) { Queue.Run(Action); });
  while (Counting.Finished < Workers) Queue.Pump();
  EXPECT_EQ(Counting.Count, Workers * Rounds);
  EXPECT_TRUE(Counting.AllOn(std::this_thread::get_id()));
}

TEST(MainThread, WithoutALoopNobodyHangsAndNothingRunsAtOnce) {
  TMainThreadQueue Queue;
  int Count = 0, Global = 0;
  {
    TCounting InPlace([&](const auto& Action) { Queue.Run(Action); });
    while (InPlace.Finished < Workers) std::this_thread::yield();
    Count = InPlace.Count;
  }
  {
    TCounting Installed([](const auto& Action) { Synchronize(Action); });
    while (Installed.Finished < Workers) std::this_thread::yield();
    Global = Installed.Count;
  }
  EXPECT_EQ(Count, Workers * Rounds);
  EXPECT_EQ(Global, Workers * Rounds);
}

TEST(MainThread, TheEndOfALoopLeavesNobodyWaiting) {
  TMainThreadQueue Queue;
  TCounting Counting([&](const auto& Action) { Queue.Run(Action); });
  while (Counting.Finished < Workers) {
    const TMainThreadQueue::TLoop Loop(Queue);
    const TMainThreadQueue::TLoop Nested(Queue);
    Queue.Pump();
  }
  EXPECT_EQ(Counting.Count, Workers * Rounds) << "in place and by loops, but never two at once";
}

TEST(MainThread, TwoWorkersThatAskAtOnceLeaveTheQueueToOthers) {
  TMainThreadQueue Queue;
  std::atomic<int> Answered = 0;
  const auto AskWithin = [&](const std::function<bool()>& Done) {
    Queue.Run([&] {
      const TMainThreadQueue::TLoop Loop(Queue);
      while (!Done()) Queue.Pump();
      ++Answered;
    });
  };
  std::atomic<bool> OuterAsks = false;
  std::thread Third([&] {
    while (Answered < 2) std::this_thread::yield();
    Queue.Run([&] { ++Answered; });
  });
  std::thread Outer([&] {
    AskWithin([&] {
      OuterAsks = true;
      return Answered > 0;
    });
  });
  std::thread Inner([&] {
    while (!OuterAsks) std::this_thread::yield();
    AskWithin([] { return true; });
  });
  for (std::thread* Thread : {&Outer, &Inner, &Third}) Thread->join();
  EXPECT_EQ(Answered, 3);
}

TEST(MainThread, ErrorsComeBackToWhoAsked) {
  TMainThreadQueue Queue;
  const auto Failing = [&] { Queue.Run([] { throw EConvertError("on the main thread"); }); };
  EXPECT_THROW(Failing(), EConvertError) << "at once, on the main thread itself";
  const TMainThreadQueue::TLoop Loop(Queue);
  std::atomic<bool> Done = false;
  std::thread Worker([&] {
    EXPECT_THROW(Failing(), EConvertError);
    Done = true;
  });
  while (!Done) Queue.Pump();
  Worker.join();
}

}  // namespace
}  // namespace velkrund::tests

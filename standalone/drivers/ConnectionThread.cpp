#include "standalone/drivers/ConnectionThread.h"

#include <utility>

namespace velkrund {
namespace {

/// The one that runs here; null on every other thread.
thread_local TConnectionThread* Current = nullptr;

}  // namespace

TConnectOptions TConnectionThread::WithCallersCalls(TConnectOptions Options) {
  Options.Canceled = [Canceled = std::make_shared<const TCanceled>(std::move(Options.Canceled))] {
    return Ask(Canceled);
  };
  if (Options.Trace)
    Options.Trace = [Trace = std::move(Options.Trace)](TTraceLevel Level, const std::string& Line) {
      Current ? Tell([=] { Trace(Level, Line); }) : Trace(Level, Line);
    };
  if (Options.Warn)
    Options.Warn = [Warn = std::move(Options.Warn)](const std::string& Text) {
      Current ? Tell([=] { Warn(Text); }) : Warn(Text);
    };
  if (Options.Tell)
    Options.Tell = [Told = std::move(Options.Tell)](const std::string& Text) {
      Current ? Tell([=] { Told(Text); }) : Told(Text);
    };
  if (Options.AskPassword)
    Options.AskPassword = [Ask = std::move(Options.AskPassword)](const std::string& Database,
                                                                 const std::string& Error) {
      return Current ? std::nullopt : Ask(Database, Error);
    };
  return Options;
}

bool TConnectionThread::Ask(const std::shared_ptr<const TCanceled>& Canceled) {
  if (!Current) return *Canceled && (*Canceled)();
  const std::lock_guard Lock(Current->FMutex);
  Current->FCanceled = Canceled;
  return Current->FStopped;
}

void TConnectionThread::Tell(std::function<void()> Call) {
  {
    const std::lock_guard Lock(Current->FMutex);
    Current->FToTell.push_back(std::move(Call));
  }
  Current->FServed();
}

TConnectionThread::TConnectionThread(std::function<void()> Work, std::function<void()> Served)
    : FServed(std::move(Served)), FThread([this, Work = std::move(Work)] {
        Current = this;
        Work();
        Current = nullptr;
      }) {}

TConnectionThread::~TConnectionThread() { FThread.join(); }

void TConnectionThread::Serve() {
  std::vector<std::function<void()>> ToTell;
  std::shared_ptr<const TCanceled> Canceled;
  {
    const std::lock_guard Lock(FMutex);
    ToTell.swap(FToTell);
    Canceled = FCanceled;
  }
  for (const std::function<void()>& Call : ToTell) Call();
  if (Canceled && *Canceled && (*Canceled)()) Stop();
}

}  // namespace velkrund

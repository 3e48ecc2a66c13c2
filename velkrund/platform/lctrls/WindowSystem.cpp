#include "velkrund/platform/lctrls/WindowSystem.h"

#include <mutex>

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund {

namespace {

constinit TInstalledService<TWindowSystem> Installed("window system");

class TNobody final : public TWindowSystem {
 public:
  int ShowModal(TForm& Form) override {
    if (Form.IsQuestion()) {
      const std::string Instead = Form.NamedInstead();
      const std::string Remedy = Instead.empty() ? Instead : Format("; name %s beforehand", Instead);
      throw EQuestionUnanswered(
          Format("Nobody can be asked, no window system is installed%s: %s", Remedy, Form.Message()));
    }
    BaseMng().WriteTrace(TraceSubsystem, TTraceLevel::Info, Form.Message());
    return mrOk;
  }
  bool CanAsk() const override { return false; }
};

}  // namespace

void TWindowSystem::Synchronize(const std::function<void()>& Action) {
  // Recursive: an action may ask, and what answers may synchronise again.
  static std::recursive_mutex OneAtATime;
  const std::lock_guard Lock(OneAtATime);
  Action();
}

TWindowSystem& NobodyAtTheScreen() {
  static TNobody Nobody;
  return Nobody;
}

TWindowSystem& Windows() { return Installed.Get() ? *Installed.Get() : NobodyAtTheScreen(); }
TWindowSystem* InstallService(TWindowSystem* Service) { return Installed.Install(Service); }

void Synchronize(const std::function<void()>& Action) { Windows().Synchronize(Action); }

}  // namespace velkrund

#include "velkrund/module/Module.h"

#include <mutex>

#include "velkrund/dictionary/Registration.h"
#include "velkrund/dsp/Registration.h"
#include "velkrund/operations/Registration.h"
#include "velkrund/resources/Registration.h"

namespace velkrund {

void StartModule() {
  static std::once_flag Started;
  std::call_once(Started, [] {
    RegisterOperationClasses();
    RegisterDictionaryClasses();
    RegisterResourceClasses();
    RegisterDSPClasses();
  });
}

}  // namespace velkrund

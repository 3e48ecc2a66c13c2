#include "velkrund/module/Module.h"

#include <mutex>

#include "velkrund/dictionary/Registration.h"

namespace velkrund {

void StartModule() {
  static std::once_flag Started;
  std::call_once(Started, RegisterDictionaryClasses);
}

}  // namespace velkrund

#include "velkrund/platform/installation/Platform.h"

namespace velkrund {

TPlatform InstallPlatform(const TPlatform& Platform) {
  return {
      .ApplicationManager = InstallService(Platform.ApplicationManager),
      .ExtCalls = InstallService(Platform.ExtCalls),
      .Windows = InstallService(Platform.Windows),
      .DSPContainer = InstallService(Platform.DSPContainer),
      .Dictionary = InstallService(Platform.Dictionary),
      .Relations = InstallService(Platform.Relations),
      .DicDBContainer = InstallService(Platform.DicDBContainer),
      .LContainer = InstallService(Platform.LContainer),
  };
}

}  // namespace velkrund

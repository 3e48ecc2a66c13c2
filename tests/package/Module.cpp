// Uses the installed module the way an application does: a call into the library, and an error that crosses its border.

#include <cstdio>
#include <string>

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Numbers.h"

int main() {
  const std::string Text = velkrund::Str(0.1);
  if (Text != "0.1" || velkrund::StrToReal(Text) != 0.1) {
    std::printf("0.1 became %s\n", Text.c_str());
    return 1;
  }
  try {
    velkrund::BaseMng();
  } catch (const velkrund::EAccessViolation& Error) {
    std::printf("%s, and no platform: %s\n", Text.c_str(), Error.what());
    return 0;
  }
  std::printf("BaseMng() without an installed platform raised nothing\n");
  return 1;
}

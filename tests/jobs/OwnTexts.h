#pragma once

#include <string>
#include <string_view>

#include "jobs/application/DefaultTexts.h"
#include "tests/support/TestPlatform.h"

namespace velkrund::tests {

/// A platform with the program's own texts in a language.
class TOwnTexts final : public TTestPlatform {
 public:
  explicit TOwnTexts(const char* Language) : FLanguage(Language) {}
  std::string LString(std::string_view Key) const override {
    return TDefaultTexts::Own().Find(Key, FLanguage).value_or(std::string(Key));
  }

 private:
  const char* FLanguage;
};

}  // namespace velkrund::tests

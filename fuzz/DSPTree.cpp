// Any bytes as the tree of a structure section of version 200.

#include "fuzz/DSPTree.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace velkrund;
  static TFuzzPlatform Platform;
  CheckTree({reinterpret_cast<const char*>(Data), Size}, TCurrentNodeTexts(), true);
  return 0;
}

// Any bytes as a tree that a database has kept; bit 0 of the first one chooses whether they get a right frame and
// checksum.

#include "standalone/structures/StoredTree.h"
#include "fuzz/FuzzPlatform.h"
#include "standalone/values/StoredValues.h"
#include "velkrund/platform/ormtools/Checksum.h"
#include "velkrund/platform/structures/DSPErrors.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace velkrund;
  static TFuzzPlatform Platform;
  if (Size == 0) return 0;
  std::string Bytes(reinterpret_cast<const char*>(Data) + 1, Size - 1);
  if ((Data[0] & 1U) != 0) {
    Bytes.insert(0, "VKTR\1");
    AppendStoredFixed(Bytes, Crc32(Bytes), 4);
  }
  TDSPNode Tree;
  try {
    ReadStoredTree(Bytes, Tree);
  } catch (const std::exception& Error) {
    RequireOwn(Error);
    return 0;
  }
  std::string Written;
  AppendStoredTree(Written, Tree);
  TDSPNode Again;
  ReadStoredTree(Written, Again);
  Require(Again == Tree);
  return 0;
}

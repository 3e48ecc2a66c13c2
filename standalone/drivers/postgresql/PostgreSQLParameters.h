#pragma once

#include <span>
#include <string>
#include <vector>

#include "velkrund/platform/ormtools/CodePage.h"
#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

/// The values of a statement's parameters as the client library takes them: texts whose types the server infers, and
/// bytes as such.
class TPostgreSQLParameters {
 public:
  /// CodePage: of 8-bit texts. Raises EDatabaseError for a value that the engine cannot hold.
  TPostgreSQLParameters(std::span<const TKvVariant> Values, const TCodePage& CodePage);

  int Count() const { return static_cast<int>(FValues.size()); }
  const unsigned* Types() const { return FTypes.data(); }
  const char* const* Values() const { return FValues.data(); }
  const int* Lengths() const { return FLengths.data(); }
  const int* Formats() const { return FFormats.data(); }

 private:
  std::vector<std::string> FTexts;
  std::vector<const char*> FValues;
  std::vector<unsigned> FTypes;
  std::vector<int> FLengths;
  std::vector<int> FFormats;
};

}  // namespace velkrund

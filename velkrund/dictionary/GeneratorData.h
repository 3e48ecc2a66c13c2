#pragma once

#include <cstdint>
#include <string>

#include "velkrund/eif/EIObject.h"

namespace velkrund {

/// Where one generator stands, as a section: the header parameters "GeneratorName" and "StartValue", and no body.
class TEIGeneratorData final : public TEIObject {
 public:
  void FillParameters(TEISectionParameters& Parameters) override;
  /// EConvertError for a "StartValue" that is no number of 64 bits.
  void Initialize(const TEISection& Section) override;
  void ExportData(TEIStream&) override {}
  /// Makes StartValue the last value that the generator has given out, in one transaction; a generator that does not
  /// exist is made and counts by 1. Below 2 nothing is done, nor with OnlyForward where it stands further: LeftAlone()
  /// is true then. Raises EDicUtilError where the section names no generator, and EDatabaseError.
  void ImportData(TEIStream& Stream) override;
  bool LeftAlone() const override { return FLeftAlone; }
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }

  /// What is below is not set.
  static constexpr std::int64_t LeastStartValue = 2;

  std::string GeneratorName;
  std::int64_t StartValue = 0;
  bool OnlyForward = false;  // import: a generator that stands there or further, as it counts, stays where it is

  static const TEIObjectDescriptor Descriptor;

 private:
  bool FLeftAlone = false;
};

}  // namespace velkrund

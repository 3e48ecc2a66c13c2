#pragma once

#include <string>

#include "velkrund/dsp/DSPStructure.h"

namespace velkrund {

/// The structure of a generator: its header says in "StartValue" where the generator stands.
class TEIDSPGeneratorStructure : public TEIDSPStructure {
 public:
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }
  void FillParameters(TEISectionParameters& Parameters) override;
  void Initialize(const TEISection& Section) override;

  std::string StartValue;
  bool ReadStartValue = false;  // export: StartValue becomes the generator's current value, if there is one

  static const TEIObjectDescriptor Descriptor;
};

/// The same under the version that old readers expect; its body is of version 200 all the same.
class TEIDSPGeneratorStructureOld final : public TEIDSPGeneratorStructure {
 public:
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }

  static const TEIObjectDescriptor Descriptor;
};

}  // namespace velkrund

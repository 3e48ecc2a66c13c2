#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "velkrund/eif/Eifiles.h"

namespace velkrund::tests {

/// A section whose body is plain lines: writes Lines, reads into Lines.
class TTextSection : public TEIObject {
 public:
  void ExportData(TEIStream& Stream) override {
    for (const std::string& Line : Lines) Stream.Writeln(Line);
    if (OnExport) OnExport(Stream);
  }
  void ImportData(TEIStream& Stream) override {
    Lines.clear();
    while (Stream.Position() < Stream.Size()) {
      Lines.emplace_back(Stream.Readln());
      if (Lines.back() == "bad") throw EEIError("bad line");
      if (Lines.back() == "abort") throw EAbort("stop");
    }
  }
  void Initialize(const TEISection& Section) override { Name = Section.Name(); }
  void FillParameters(TEISectionParameters& Parameters) override {
    for (const auto& [Key, Value] : Parameter) Parameters.AddParam(Key, Value);
  }
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }

  static inline const TEIObjectDescriptor Descriptor{
      "TTextSection", nullptr, "Text", 100, TSectionRole::Other, nullptr, []() -> std::unique_ptr<TEIObject> {
        return std::make_unique<TTextSection>();
      }};

  std::vector<std::string> Lines;
  std::vector<std::pair<std::string, std::string>> Parameter;
  std::function<void(TEIStream&)> OnExport;
  std::string Name;
};

/// Registers TTextSection for a test's lifetime.
class TTextSectionRegistered {
 public:
  TTextSectionRegistered() { EITypeList().RegisterEIObject(TEIObjectClass(TTextSection::Descriptor)); }
  ~TTextSectionRegistered() { EITypeList().UnregisterEIObject(TEIObjectClass(TTextSection::Descriptor)); }
};

/// A source in memory.
class TMemorySource : public TEISource {
 public:
  explicit TMemorySource(std::string_view Bytes = {}) { Memory.Write(Bytes); }
  void CreateFile() override { Memory.Clear(); }
  TStream& Stream() override { return Memory; }
  std::string Bytes() const { return std::string(Memory.Memory()); }

  TMemoryStream Memory;

 protected:
  void InternalOpen() override { Memory.SetPosition(0); }
};

}  // namespace velkrund::tests

// Any bytes as an export/import file: opening lists sections that lie inside it, or is an error; every other section
// can be cut out, and what is left lists the same sections again.

#include "fuzz/FuzzPlatform.h"
#include "standalone/tables/MemoryTable.h"
#include "velkrund/dictionary/Dicutils.h"
#include "velkrund/eif/Eifiles.h"

namespace velkrund {
namespace {

class TMemorySource final : public TEISource {
 public:
  explicit TMemorySource(std::string_view Bytes) { FMemory.Write(Bytes); }
  void CreateFile() override { FMemory.Clear(); }
  TStream& Stream() override { return FMemory; }
  std::string_view Bytes() const { return FMemory.Memory(); }

 protected:
  void InternalOpen() override { FMemory.SetPosition(0); }

 private:
  TMemoryStream FMemory;
};

void ReadBodies(TEISource& Source) {
  for (int Index = 0; Index < Source.Sections().Count(); ++Index) {
    const TEISection& Section = Source.Sections()[Index];
    Require(Section.Position <= Section.DataPosition && Section.DataSize >= 0);
    Require(Section.DataPosition + Section.DataSize <= Source.Stream().Size());
    TMemoryTable Table("T", {{"A", TKvKind::Null}, {"B", TKvKind::DateTime}});
    try {
      const auto Object = Source.CreateEIObject(Index);
      if (auto* const Data = dynamic_cast<TEIRecordData*>(Object.get())) Data->Table = &Table;
      Source.ImportObject(*Object);
    } catch (const Exception& Error) {
      RequireOwn(Error);
      Require(Table.RecordCount() == 0);
    }
  }
}

void CutEveryOther(TMemorySource& Source) {
  TStringList Cut;
  for (int Index = 0; Index < Source.Sections().Count(); Index += 2) Cut.Add(std::to_string(Index));
  Source.DeleteSections(Cut);
  TMemorySource Rest(Source.Bytes());
  Rest.Open();
  Require(Rest.Sections().Count() == Source.Sections().Count());
  for (int Index = 0; Index < Rest.Sections().Count(); ++Index) {
    Require(Rest.Sections()[Index].Name() == Source.Sections()[Index].Name());
    Require(Rest.Sections()[Index].DataPosition == Source.Sections()[Index].DataPosition);
    Require(Rest.Sections()[Index].DataSize == Source.Sections()[Index].DataSize);
  }
}

}  // namespace
}  // namespace velkrund

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace velkrund;
  static TFuzzPlatform Platform;
  TMemorySource Source({reinterpret_cast<const char*>(Data), Size});
  bool Whole = true;
  try {
    Source.Open();
  } catch (const EEIError& Error) {
    RequireOwn(Error);
    Whole = false;
  }
  ReadBodies(Source);
  if (Whole) CutEveryOther(Source);
  return 0;
}

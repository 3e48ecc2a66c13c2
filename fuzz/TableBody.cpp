// Any bytes as the body of a table data section, in both versions and both encodings: an error, or rows that go out and
// come back as the same rows and the same bytes.

#include "fuzz/FuzzPlatform.h"
#include "standalone/tables/MemoryTable.h"
#include "velkrund/dictionary/Dicutils.h"

namespace velkrund {
namespace {

std::unique_ptr<TMemoryTable> Import(TEICommonTableData& Section, std::string_view Body, TKvEncoding Encoding) {
  auto Table = std::make_unique<TMemoryTable>(
      "T", TMemoryTable::TColumns{{"A", TKvKind::Null}, {"B", TKvKind::DateTime}, {"C", TKvKind::Currency}});
  TMemoryStream Memory;
  Memory.Write(Body);
  Memory.SetPosition(0);
  TEIStream Stream(Memory, static_cast<std::int64_t>(Body.size()));
  Stream.SetEncoding(Encoding);
  Section.Table = Table.get();
  Section.ImportData(Stream);
  return Table;
}

std::string Export(TEICommonTableData& Section, TMemoryTable& Table, TKvEncoding Encoding) {
  TMemoryStream Memory;
  TEIStream Stream(Memory);
  Stream.SetEncoding(Encoding);
  Section.Table = &Table;
  Section.ExportData(Stream);
  return std::string(Memory.Memory());
}

}  // namespace
}  // namespace velkrund

// The first byte chooses: bit 0 the version, bit 1 the encoding, bit 2 whether values are strict.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace velkrund;
  static TFuzzPlatform Platform;
  if (Size == 0) return 0;
  std::unique_ptr<TEICommonTableData> Section;
  if (Data[0] & 1)
    Section = std::make_unique<TEIOldTableData>();
  else
    Section = std::make_unique<TEITableData>();
  const TKvEncoding Encoding = Data[0] & 2 ? TKvEncoding::Ansi : TKvEncoding::Utf8;
  Section->StrictValues = (Data[0] & 4) != 0;
  std::unique_ptr<TMemoryTable> Table;
  try {
    Table = Import(*Section, {reinterpret_cast<const char*>(Data) + 1, Size - 1}, Encoding);
  } catch (const Exception&) {
    return 0;
  }
  const std::string Written = Export(*Section, *Table, Encoding);
  const auto Again = Import(*Section, Written, Encoding);
  Require(Export(*Section, *Again, Encoding) == Written);
  return 0;
}

// Any bytes as the body of a table data or query data section, in both versions and both encodings: an error, or rows
// that go out as table data and come back as the same rows and the same bytes.

#include "fuzz/FuzzPlatform.h"
#include "standalone/tables/MemoryTable.h"
#include "velkrund/dictionary/Dicutils.h"

namespace velkrund {
namespace {

std::unique_ptr<TMemoryTable> Import(TEIRecordData& Section, std::string_view Body, TKvEncoding Encoding) {
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

// The first byte chooses: bit 0 the version, bit 1 the encoding, bit 2 whether values are strict, bit 3 query data.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace velkrund;
  static TFuzzPlatform Platform;
  if (Size == 0) return 0;
  std::unique_ptr<TEICommonTableData> Section;
  std::unique_ptr<TEIRecordData> Query;
  if (Data[0] & 1) {
    Section = std::make_unique<TEIOldTableData>();
    Query = std::make_unique<TEIOldQueryData>();
  } else {
    Section = std::make_unique<TEITableData>();
    Query = std::make_unique<TEIQueryData>();
  }
  TEIRecordData& Reader = Data[0] & 8 ? *Query : *Section;
  const TKvEncoding Encoding = Data[0] & 2 ? TKvEncoding::Ansi : TKvEncoding::Utf8;
  Reader.StrictValues = (Data[0] & 4) != 0;
  std::unique_ptr<TMemoryTable> Table;
  try {
    Table = Import(Reader, {reinterpret_cast<const char*>(Data) + 1, Size - 1}, Encoding);
  } catch (const Exception&) {
    return 0;
  }
  const std::string Written = Export(*Section, *Table, Encoding);
  const auto Again = Import(*Section, Written, Encoding);
  Require(Export(*Section, *Again, Encoding) == Written);
  return 0;
}

// Any bytes as the value of a BLOB field; bit 0 of the first one chooses whether they get a right frame and checksum.
// What is a table is walked and written again, which gives the same bytes.

#include "standalone/tables/BlobTable.h"

#include "fuzz/FuzzPlatform.h"
#include "standalone/values/StoredValues.h"
#include "velkrund/platform/ormtools/Checksum.h"

namespace velkrund {
namespace {

std::string WrittenAgain(TStandaloneBlobTable& Table) {
  TBLOBTable::TFields Fields;
  const int Count = Table.Record().FieldCount();
  for (int I = 0; I < Count; ++I) Fields.emplace_back(Table.Record().Fields(I).Name(), Table.Record().Fields(I).Kind());
  TStandaloneBlobTable Copy(Table.TableName(), Fields);
  Copy.BeginAppend();
  std::int64_t Rows = 0;
  for (bool Found = Table.First(); Found; Found = Table.Next(), ++Rows) {
    for (int I = 0; I < Count; ++I) Copy.Record().Fields(I).SetValue(Table.Record().Fields(I).Value());
    Copy.AppendRecord();
  }
  Copy.EndAppend();
  Require(Rows == Table.RecordCount());
  return Copy.Bytes();
}

}  // namespace
}  // namespace velkrund

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace velkrund;
  if (Size == 0) return 0;
  std::string Bytes(reinterpret_cast<const char*>(Data) + 1, Size - 1);
  if ((Data[0] & 1U) != 0) {
    Bytes.insert(0, "\x8BVKBT\r\n\x1A\1");
    AppendStoredFixed(Bytes, Crc32(Bytes), 4);
  }
  if (!TStandaloneBlobTable::IsOne(Bytes)) return 0;
  std::unique_ptr<TStandaloneBlobTable> Table;
  try {
    Table = TStandaloneBlobTable::Open(Bytes);
  } catch (const std::exception& Error) {
    RequireOwn(Error);
    return 0;
  }
  Require(Table->Bytes() == Bytes);
  Require(WrittenAgain(*Table) == Bytes);
  return 0;
}

#pragma once

#include <string>
#include <vector>

#include "standalone/tables/MemoryTable.h"
#include "tests/support/TestPlatform.h"
#include "tests/support/Values.h"
#include "velkrund/dictionary/Dicutils.h"
#include "velkrund/platform/ormtools/Streams.h"

namespace velkrund::tests {

inline void AppendRow(TTable& Table, const std::vector<TKvVariant>& Row) {
  Table.BeginAppend();
  Table.ClearData();
  for (std::size_t Index = 0; Index < Row.size(); ++Index)
    Table.Record().Fields(static_cast<int>(Index)).SetValue(Row[Index]);
  Table.AppendRecord();
  Table.EndAppend();
}

inline std::vector<std::vector<TKvVariant>> Rows(TTable& Table) {
  std::vector<std::vector<TKvVariant>> All;
  for (bool Found = Table.First(); Found; Found = Table.Next()) {
    auto& Row = All.emplace_back();
    for (int Index = 0; Index < Table.Record().FieldCount(); ++Index)
      Row.push_back(Table.Record().Fields(Index).Value());
  }
  return All;
}

/// The body that a section writes for a table.
inline std::string Export(TEICommonTableData& Section, TTable& Table, TKvEncoding Encoding = TKvEncoding::Utf8) {
  Section.Table = &Table;
  TMemoryStream Memory;
  TEIStream Stream(Memory);
  Stream.SetEncoding(Encoding);
  Section.ExportData(Stream);
  return std::string(Memory.Memory());
}

/// CutOff: bytes that were behind Body when its size was taken.
inline void Import(TEIRecordData& Section, TTable& Table, std::string_view Body,
                   TKvEncoding Encoding = TKvEncoding::Utf8, std::size_t CutOff = 0) {
  Section.Table = &Table;
  TMemoryStream Memory;
  Memory.Write(Body);
  Memory.SetPosition(0);
  TEIStream Stream(Memory, static_cast<std::int64_t>(Body.size() + CutOff));
  Stream.SetEncoding(Encoding);
  Section.ImportData(Stream);
}

}  // namespace velkrund::tests

#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "standalone/tables/MemoryTable.h"
#include "tests/support/TestPlatform.h"
#include "velkrund/dictionary/Dicutils.h"
#include "velkrund/platform/ormtools/Streams.h"

namespace velkrund::tests {

inline TKvVariant MakeValue(const std::function<void(TKvVariant&)>& Fill) {
  TKvVariant Value;
  Fill(Value);
  return Value;
}
inline TKvVariant Text(std::string_view Bytes, TKvKind Kind = TKvKind::String) {
  return MakeValue([&](TKvVariant& Value) { Value.SetText(Bytes, Kind); });
}
inline TKvVariant Integer(std::int64_t Number, TKvKind Kind = TKvKind::Int64) {
  return MakeValue([&](TKvVariant& Value) { Value.SetInteger(Number, Kind); });
}
inline TKvVariant Unsigned(std::uint64_t Number) {
  return MakeValue([&](TKvVariant& Value) { Value.SetUnsigned(Number); });
}
inline TKvVariant Real(double Number) {
  return MakeValue([&](TKvVariant& Value) { Value.SetReal(Number); });
}
inline TKvVariant Boolean(bool Truth, TKvKind Kind = TKvKind::Boolean) {
  return MakeValue([&](TKvVariant& Value) { Value.SetBoolean(Truth, Kind); });
}
inline TKvVariant Currency(std::int64_t TenThousandths) {
  return MakeValue([&](TKvVariant& Value) { Value.SetCurrency({TenThousandths}); });
}
inline TKvVariant Moment(std::string_view SysText) {
  return MakeValue([&](TKvVariant& Value) { Value.SetDateTime(*SysStrToDateTime(SysText)); });
}
inline TKvVariant Date(std::string_view SysText) {
  return MakeValue([&](TKvVariant& Value) { Value.SetSysDate(*StrToSysDate(SysText)); });
}
inline TKvVariant TimeOfDay(std::string_view SysText) {
  return MakeValue([&](TKvVariant& Value) { Value.SetSysTime(*StrToSysTime(SysText)); });
}

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

inline void Import(TEICommonTableData& Section, TTable& Table, std::string_view Body,
                   TKvEncoding Encoding = TKvEncoding::Utf8) {
  Section.Table = &Table;
  TMemoryStream Memory;
  Memory.Write(Body);
  Memory.SetPosition(0);
  TEIStream Stream(Memory, static_cast<std::int64_t>(Body.size()));
  Stream.SetEncoding(Encoding);
  Section.ImportData(Stream);
}

/// Class and message of the error that Action raises.
inline std::string ErrorOf(const std::function<void()>& Action) {
  try {
    Action();
  } catch (const std::exception& Error) {
    return ExceptionClassName(Error) + ": " + Error.what();
  }
  return "no error";
}

}  // namespace velkrund::tests

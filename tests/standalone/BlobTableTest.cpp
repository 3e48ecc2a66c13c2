#include "standalone/tables/BlobTable.h"

#include <gmock/gmock.h>

#include <bit>

#include "standalone/databases/StandaloneManager.h"
#include "standalone/values/StoredValues.h"
#include "tests/standalone/Support.h"
#include "tests/support/StructureSamples.h"
#include "velkrund/platform/ormtools/Checksum.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class BlobTableTest : public testing::Test {
 protected:
  using TRow = std::vector<TKvVariant>;

  void Append(TBLOBTable& Table, const std::vector<TRow>& Rows) {
    Table.BeginAppend();
    for (const TRow& Row : Rows) {
      Table.ClearData();
      for (std::size_t I = 0; I < Row.size(); ++I) Table.Record().Fields(static_cast<int>(I)).SetValue(Row[I]);
      Table.AppendRecord();
    }
    Table.EndAppend();
  }

  static std::vector<TRow> RowsOf(TBLOBTable& Table) {
    std::vector<TRow> Result;
    for (bool Found = Table.First(); Found; Found = Table.Next()) {
      TRow& Row = Result.emplace_back();
      for (int I = 0; I < Table.Record().FieldCount(); ++I) Row.push_back(Table.Record().Fields(I).Value());
    }
    return Result;
  }

  /// Every kind and every awkward value, in a field that says nothing and in one of another kind.
  static std::vector<TRow> Samples() {
    std::vector<TRow> Result;
    for (const TNodeSample& Sample : NodeSamples()) Result.push_back({Sample.Value, Integer(1)});
    Result.push_back({Real(std::bit_cast<double>(0xFFF4000000000001U)), Text(std::string_view("\0", 1))});
    Result.push_back({Real(-0.0), TKvVariant()});
    return Result;
  }

  TBLOBTable::TFields Fields = {{"Значение", TKvKind::Null}, {"B", TKvKind::Boolean}};
  TStandaloneManager Manager{TConfiguration{}};
};

TEST_F(BlobTableTest, EveryKindComesBackExactlyAndEqualContentHasEqualBytes) {
  const auto Made = Manager.NewBLOBTable("СТРОКИ", Fields);
  Append(*Made, Samples());
  const auto Opened = Manager.OpenBLOBTable(Made->Bytes());
  ASSERT_TRUE(Opened);
  EXPECT_EQ(Opened->TableName(), "СТРОКИ");
  EXPECT_EQ(Opened->RecordCount(), static_cast<std::int64_t>(Samples().size()));
  EXPECT_EQ(Opened->FieldByName("b").Kind(), TKvKind::Boolean);
  EXPECT_EQ(RowsOf(*Opened), Samples());
  EXPECT_THAT(ErrorOf([&] { Opened->FieldByName("B").Value(); }), HasSubstr("stands on no row"));

  const auto Copy = Manager.NewBLOBTable("СТРОКИ", Fields);
  for (const TRow& Row : RowsOf(*Opened)) Append(*Copy, {Row});
  EXPECT_EQ(Copy->Bytes(), Made->Bytes());
}

TEST_F(BlobTableTest, RowsCountOnceTheAppendHasEnded) {
  const auto Table = Manager.NewBLOBTable("T", {{"A", TKvKind::Int64}});
  const std::string Empty = Table->Bytes();
  Table->BeginAppend();
  Table->Record().Fields(0).Buffer().SetInteger(1);
  Table->AppendRecord();
  EXPECT_EQ(Table->Bytes(), Empty);
  Append(*Table, {{Integer(7)}, {Integer(8)}});  // begins again, and drops the one before
  EXPECT_THAT(RowsOf(*Table), ElementsAre(ElementsAre(Integer(7)), ElementsAre(Integer(8))));
}

// What programs have stored has to be read for ever.
TEST_F(BlobTableTest, TheBytesAreFixed) {
  const auto Table = Manager.NewBLOBTable("T", {{"A", TKvKind::Integer}, {"Bc", TKvKind::String}});
  Append(*Table, {{Integer(-300, TKvKind::Integer), Text("x\n")}, {TKvVariant(), Real(1.5)}});
  std::string Expected("\x8BVKBT\r\n\x1A\1\1T\2\5\1A\n\2Bc\2\5\xD7\4\n\2x\n\0\7\0\0\0\0\0\0\xF8?", 37);
  AppendStoredFixed(Expected, Crc32(Expected), 4);
  EXPECT_EQ(Table->Bytes(), Expected);
}

TEST_F(BlobTableTest, EveryCutAndEveryChangedByteIsFound) {
  const auto Made = Manager.NewBLOBTable("T", Fields);
  Append(*Made, Samples());
  const std::string Good = Made->Bytes();
  constexpr std::size_t MagicSize = 8;
  for (std::size_t Place = 0; Place < Good.size(); ++Place) {
    std::string Changed = Good;
    Changed[Place] = static_cast<char>(Changed[Place] ^ (1 << (Place % 8)));
    const auto IsPlain = [&](std::string_view Bytes) { return Manager.OpenBLOBTable(Bytes) == nullptr; };
    if (Place < MagicSize) {
      EXPECT_TRUE(IsPlain(Changed) && IsPlain(std::string_view(Good).substr(0, Place))) << Place;
      continue;
    }
    EXPECT_THAT(ErrorOf([&] { IsPlain(Changed); }), HasSubstr("EDatabaseError: The BLOB table ")) << Place;
    EXPECT_THAT(ErrorOf([&] { IsPlain(std::string_view(Good).substr(0, Place)); }), HasSubstr("is damaged")) << Place;
  }
}

// What a checksum does not find, since whoever wrote it has counted it in.
TEST_F(BlobTableTest, WrongPartsAreRefusedWhateverTheChecksumSays) {
  using namespace std::string_view_literals;
  const struct {
    std::string_view Body;  // version and what follows, without the checksum
    const char* Says;
  } Cases[] = {
      {"\2\0"sv, "has a layout of version 2, and this program knows those up to 1: use a newer release of it"},
      {"\0\0\0"sv, "its layout has the version 0"},
      {"\1\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F"sv, "is damaged at byte 18: it is cut off"},
      {"\1\0\0\0"sv, "The BLOB table has no fields"},
      {"\1\1T\xFF\xFF\xFF\xFF\x0F"sv, "it cannot have so many fields"},
      {"\1\1T\2\5\1A\5\1A\0"sv, "The BLOB table 'T' has the field 'A' twice"},
      {"\1\1T\1\5\0\0"sv, "has a field without a name"},
      {"\1\1T\1\1\1A\0"sv, "unknown value kind 1"},
      {"\1\1T\1\5\1A\xFF\xFF\xFF\xFF\x0F\5\1"sv, "it cannot have so many rows"},
      {"\1\1T\1\5\1A\1\5"sv, "'T' is damaged at byte 16, in field 'A' of row 1: it is cut off"},
      {"\1\1T\1\5\1A\2\0\x0A\x7F"sv, "'T' is damaged at byte 17, in field 'A' of row 2: it is cut off"},
      {"\1\1T\1\5\1A\1\x63\0"sv, "unknown value kind 99"},
      {"\1\1T\1\5\1A\1\2\x80\4"sv, "a value of kind 2 is out of range"},
      {"\1\1T\1\5\1A\1\x0B\2"sv, "a truth value in it is neither 0 nor 1"},
      {"\1\1T\1\5\1A\1\5\x80\0"sv, "a number in it is longer than it needs to be"},
      {"\1\1T\1\5\1A\0\0"sv, "something stands behind its last row"},
  };
  for (const auto& [Body, Says] : Cases) {
    std::string Bytes = "\x8BVKBT\r\n\x1A" + std::string(Body);
    AppendStoredFixed(Bytes, Crc32(Bytes), 4);
    EXPECT_THAT(ErrorOf([&] { Manager.OpenBLOBTable(Bytes); }), HasSubstr(Says));
  }
}

TEST_F(BlobTableTest, WhatCouldNotBeReadAgainIsNotWritten) {
  const struct {
    TBLOBTable::TFields Asked;
    const char* Says;
  } Tables[] = {{{}, "has no fields"}, {{{"A", TKvKind::Null}, {"A", TKvKind::Null}}, "twice"}};
  for (const auto& Table : Tables)
    EXPECT_THAT(ErrorOf([&] { Manager.NewBLOBTable("T", Table.Asked); }), HasSubstr(Table.Says));

  const TKvVariant Values[] = {Integer(256, TKvKind::Byte), MakeValue([](TKvVariant& Value) { Value.SetSysTime(-1); }),
                               MakeValue([](TKvVariant& Value) { Value.SetDateTime({INT64_MAX}); })};
  for (const TKvVariant& Value : Values) {
    const auto Table = Manager.NewBLOBTable("T", {{"A", TKvKind::Null}, {"B", TKvKind::Null}});
    EXPECT_THAT(ErrorOf([&] {
                  Append(*Table, {{Text("x")}, {Text("y"), Value}});
                }),
                HasSubstr("cannot hold the value of field 'B' of record 2"));
    Table->EndAppend();
    EXPECT_EQ(RowsOf(*Table).size(), 1U);
  }
}

}  // namespace
}  // namespace velkrund::tests

#include "velkrund/platform/ormtools/Variant.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Records.h"

namespace velkrund::tests {
namespace {

// Around the size up to which a string keeps its bytes inside the object.
const std::string Texts[] = {"", "a", "fifteen bytes..", "sixteen bytes...", std::string(1000, 'x')};

TEST(Variant, OwnedBytesComeAlongWithCopiesAndMoves) {
  for (const std::string& Text : Texts) {
    auto Source = std::make_unique<TKvVariant>();
    Source->SetText(Text, TKvKind::AnsiString);
    const TKvVariant Copy(*Source);
    TKvVariant Assigned;
    Assigned.SetText("something else, longer than a short string");
    Assigned = *Source;
    const TKvVariant Moved(std::move(*Source));
    EXPECT_TRUE(Source->IsNull());
    EXPECT_EQ(Source->AsText(), "");
    Source->SetText("used again");
    Source.reset();
    for (const TKvVariant* Value : {&Copy, static_cast<const TKvVariant*>(&Assigned), &Moved}) {
      EXPECT_EQ(Value->Kind(), TKvKind::AnsiString);
      EXPECT_EQ(Value->AsText(), Text);
    }
    TKvVariant Target;
    Target.SetText("short");
    Target = std::move(Assigned);
    EXPECT_EQ(Target.AsText(), Text);
  }
}

TEST(Variant, BorrowedBytesAreCopiedByCopiesOnly) {
  for (const std::string& Text : Texts) {
    std::string Lender = Text + "!";
    TKvVariant Value;
    Value.SetText("own");
    Value.BorrowText(std::string_view(Lender).substr(0, Text.size()));
    const TKvVariant Copy(Value);
    const TKvVariant Moved(std::move(Value));
    EXPECT_NE(Copy.AsText().data(), Lender.data());
    EXPECT_EQ(Moved.AsText().data(), Lender.data());
    Lender.assign(Lender.size(), '#');
    EXPECT_EQ(Copy.AsText(), Text);
    EXPECT_EQ(Moved.AsText(), std::string(Text.size(), '#'));
  }
}

TEST(Variant, TakesPartsOfItsOwnText) {
  for (const std::string& Text : Texts) {
    if (Text.size() < 3) continue;
    const std::string Part = Text.substr(2);
    TKvVariant Value;
    Value.SetText(Text);
    Value.SetText(Value.AsText().substr(2));
    EXPECT_EQ(Value.AsText(), Part);
    Value.SetText(Text);
    Value.BorrowText(Value.AsText().substr(2));
    TKvVariant Moved(std::move(Value));
    Value.SetText("overwrites what a moved-from buffer may still hold");
    EXPECT_EQ(Moved.AsText(), Part);
    TKvVariant& Same = Moved;
    Moved = Same;
    Moved = std::move(Same);
    EXPECT_EQ(Moved.AsText(), Part);
  }
}

TEST(Variant, ReusesItsBufferFromRowToRow) {
  TKvVariant Source;
  Source.SetText(std::string(500, 'a'));
  TKvVariant Value;
  Value.SetText(std::string(1000, 'b'));
  const void* Buffer = Value.AsText().data();
  Value = Source;
  EXPECT_EQ(Value.AsText().data(), Buffer);
  Value.SetInteger(1);
  Value.StartText().append(700, 'c');
  EXPECT_TRUE(Value.IsNull());
  Value.FinishText(TKvKind::Bytes);
  EXPECT_EQ(Value.AsText().data(), Buffer);
  EXPECT_EQ(Value.AsText(), std::string(700, 'c'));
}

template <typename TFill>
TKvVariant Make(TFill Fill) {
  TKvVariant Value;
  Fill(Value);
  return Value;
}

TEST(Variant, SaysEveryKindAsTextAndEqualsItsCopyAlone) {
  struct TRow {
    TKvVariant Value;
    std::string_view Text;
  };
  const TRow Rows[] = {
      {{}, ""},
      {Make([](auto& V) { V.SetInteger(-5); }), "-5"},
      {Make([](auto& V) { V.SetInteger(255, TKvKind::Byte); }), "255"},
      {Make([](auto& V) { V.SetInteger(4294967295, TKvKind::LongWord); }), "4294967295"},
      {Make([](auto& V) { V.SetUnsigned(18446744073709551615u); }), "18446744073709551615"},
      {Make([](auto& V) { V.SetReal(2); }), "2.0"},
      {Make([](auto& V) { V.SetReal(-0.0); }), "-0.0"},
      {Make([](auto& V) { V.SetReal(0.0, TKvKind::Extended); }), "0.0"},
      {Make([](auto& V) { V.SetReal(0.0); }), "0.0"},
      {Make([](auto& V) { V.SetReal(std::nan("")); }), "NAN"},
      {Make([](auto& V) { V.SetBoolean(true); }), "TRUE"},
      {Make([](auto& V) { V.SetBoolean(false); }), "FALSE"},
      {Make([](auto& V) { V.SetBoolean(true, TKvKind::WordBool); }), "TRUE"},
      {Make([](auto& V) { V.SetCurrency({-125'000}); }), "-12.5"},
      {Make([](auto& V) { V.SetDateTime({1}); }), "1970-01-01 00:00:00.000001"},
      {Make([](auto& V) { V.SetSysDate({0}); }), "1970-01-01"},
      {Make([](auto& V) { V.SetSysTime(3'600'000'000); }), "01:00:00"},
      {Make([](auto& V) { V.SetText("text"); }), "text"},
      {Make([](auto& V) { V.SetText("text", TKvKind::AnsiString); }), "text"},
      {Make([](auto& V) { V.SetBytes(std::string_view("\0\xFF", 2)); }), std::string_view("\0\xFF", 2)},
  };
  for (const TRow& Row : Rows) {
    std::string Text = ">";
    Row.Value.AppendAsText(Text);
    EXPECT_EQ(Text, ">" + std::string(Row.Text));
    for (const TRow& Other : Rows) {
      const TKvVariant Copy = Other.Value;
      EXPECT_EQ(Row.Value == Copy, &Row == &Other) << Row.Text << " and " << Other.Text;
    }
  }
}

class TMemoryField final : public TField {
 public:
  explicit TMemoryField(std::string Name) : TField(std::move(Name), TKvKind::Null) {}
  const TKvVariant& Value() override { return Current; }
  TKvVariant Current;
};

class TMemoryRecord final : public TRecord {
 public:
  TMemoryRecord(std::initializer_list<const char*> Names) {
    for (const char* Name : Names) List.push_back(std::make_unique<TMemoryField>(Name));
  }
  int FieldCount() const override { return static_cast<int>(List.size()); }
  TField& Fields(int Index) override { return *List[static_cast<std::size_t>(Index)]; }
  std::vector<std::unique_ptr<TMemoryField>> List;
};

TEST(Record, FindsTheExactNameBeforeASimilarOne) {
  TMemoryRecord Record{"id", "Имя", "ID", "имя"};
  EXPECT_EQ(Record.FindField("ID"), Record.List[2].get());
  EXPECT_EQ(Record.FindField("Id"), Record.List[0].get());
  EXPECT_EQ(Record.FindField("ИМЯ"), Record.List[1].get());
  EXPECT_EQ(Record.FindField("имя"), Record.List[3].get());
  EXPECT_EQ(Record.FindField("NAME"), nullptr);
  try {
    Record.FieldByName("NAME");
    FAIL();
  } catch (const EDatabaseError& Error) {
    EXPECT_STREQ(Error.what(), "Field 'NAME' not found");
  }
}

TEST(Record, ReadsBlocksOfBytes) {
  TMemoryField Field("F");
  EXPECT_EQ(Field.GetDataSize(), 0);
  Field.Current.SetBytes("12345");
  EXPECT_EQ(Field.GetDataSize(), 5);
  for (const auto& [Size, Expected] : {std::pair{3, "123---"}, {99, "12345-"}, {0, "------"}, {-1, "------"}}) {
    char Data[] = "------";
    Field.GetData(Data, Size);
    EXPECT_STREQ(Data, Expected) << Size;
  }
  Field.Current.SetInteger(5);
  EXPECT_THROW(Field.GetDataSize(), EDatabaseError);
}

}  // namespace
}  // namespace velkrund::tests

#include <gtest/gtest.h>

#include "tests/dictionary/TableFixture.h"
#include "tests/eif/TextSection.h"
#include "velkrund/dictionary/Registration.h"

namespace velkrund::tests {
namespace {

struct TReading {
  std::string Name, Error;
  std::vector<std::vector<TKvVariant>> Rows;
  bool Unlike = false;  // read in another encoding, or without a field
};

/// A file of three sections of two rows each, in both versions and both encodings, and what can be read of it when it
/// is damaged.
class DamagedFile : public testing::TestWithParam<bool> {
 protected:
  DamagedFile() {
    if (!EITypeList().Find("TableData", 200)) RegisterDictionaryClasses();
    TMemoryTable Table("T", Columns);
    AppendRow(Table, {Integer(-17), Text("Ж#|'\r\n"), Currency(125'000)});
    AppendRow(Table, {{}, Text("x@<>"), Currency(-1)});
    for (int Index = 0; Index < 3; ++Index) {
      std::unique_ptr<TEICommonTableData> Section = std::make_unique<TEITableData>();
      if ((Index == 1) != GetParam()) Section = std::make_unique<TEIOldTableData>();
      Section->Table = &Table;
      File.SetDefaultEncoding((Index == 0) != GetParam() ? TKvEncoding::Utf8 : TKvEncoding::Ansi);
      File.ExportObject(*Section, "section " + std::to_string(Index));
    }
    Bytes = File.Bytes();
    ReadAll(Bytes);
    Sound = Readings;
  }

  /// The error that Action raises, which has to be the module's own.
  static std::string OwnErrorOf(const std::function<void()>& Action) {
    std::string Error = ErrorOf(Action);
    EXPECT_TRUE(Error == "no error" || Error.starts_with("EEIError: ")) << Error;
    EXPECT_EQ(Error.find("std::"), std::string::npos) << Error;
    return Error;
  }

  void ReadAll(std::string_view Damaged) {
    TMemorySource Source(Damaged);
    OpenError = OwnErrorOf([&] { Source.Open(); });
    Readings.clear();
    for (int Index = 0; Index < Source.Sections().Count(); ++Index) {
      TReading& Reading = Readings.emplace_back();
      Reading.Name = Source.Sections()[Index].Name();
      TMemoryTable Table("T", Columns);
      Reading.Error = OwnErrorOf([&] {
        const auto Object = Source.CreateEIObject(Index);
        auto& Section = dynamic_cast<TEICommonTableData&>(*Object);
        Section.Table = &Table;
        Source.ImportObject(Section);
        Reading.Unlike = !Section.Report->SkippedFields.empty() ||
                         Source.Sections()[Index].Encoding() != File.Sections()[Index].Encoding();
      });
      Reading.Rows = Rows(Table);
    }
  }

  void ExpectSound(const TReading& Reading, std::size_t Index) const {
    EXPECT_EQ(Reading.Name, "section " + std::to_string(Index));
    EXPECT_EQ(Reading.Error, "no error");
    EXPECT_EQ(Reading.Rows, Sound[Index].Rows);
  }
  void ExpectDamageStays(std::size_t At) const;

  std::size_t Start(std::size_t Index) const { return Bytes.find("[SECTION]", Index ? End(Index - 1) : 0); }
  /// Behind the section's last line, but for that line's end.
  std::size_t End(std::size_t Index) const {
    const TEISection& Section = File.Sections()[static_cast<int>(Index)];
    return static_cast<std::size_t>(Section.DataPosition + Section.DataSize) + std::string_view("[END]").size();
  }
  /// The row whose record holds the byte; -1: none.
  int RowAt(std::size_t At, std::size_t Section) const {
    const std::size_t First = Bytes.find("  <", Start(Section));
    const std::size_t Second = Bytes.find("\n", First) + 1;
    return At < First || At >= Bytes.find("[END]", Second) ? -1 : At < Second ? 0 : 1;
  }

  // A flipped bit makes one name another: the first of the second, among others.
  static inline const TMemoryTable::TColumns Columns = {
      {"C1", TKvKind::Int64}, {"C3", TKvKind::String}, {"PRICE", TKvKind::Currency}};
  TTestPlatform Platform;
  TMemorySource File;
  std::string Bytes, OpenError;
  std::vector<TReading> Readings, Sound;
};

// The sections before and behind are read as ever; the section itself is an error, or is missing where its beginning is
// no more, or differs in the damaged record alone.
void DamagedFile::ExpectDamageStays(std::size_t At) const {
  std::size_t Damaged = 2;
  while (Damaged > 0 && At < Start(Damaged)) --Damaged;
  for (std::size_t Index = 0; Index < Damaged; ++Index) ExpectSound(Readings.at(Index), Index);
  // What follows is found from the end of the list; without its own end a section swallows the next one.
  const std::size_t Behind = Damaged == 2 ? 0 : 2 - Damaged - (At >= End(Damaged) - 7 ? 1 : 0);
  for (std::size_t Back = 1; OpenError == "no error" && Back <= Behind; ++Back)
    ExpectSound(Readings.at(Readings.size() - Back), 3 - Back);
  if (Readings.size() <= Damaged) {
    EXPECT_TRUE(OpenError != "no error" || At < Start(Damaged) + 11);
    return;
  }
  const TReading& Reading = Readings[Damaged];
  if (Reading.Error != "no error" || Reading.Unlike || Readings.size() < 3) return;
  ASSERT_EQ(Reading.Rows.size(), 2u);
  for (std::size_t Row = 0; Row < 2; ++Row) {
    if (static_cast<int>(Row) == RowAt(At, Damaged)) continue;
    EXPECT_EQ(Reading.Rows[Row], Sound[Damaged].Rows[Row]);
  }
}

TEST_P(DamagedFile, EveryFlippedBitIsAnErrorOrStaysWhereItIs) {
  ASSERT_EQ(Sound.size(), 3u);
  for (std::size_t Index = 0; Index < 3; ++Index) ExpectSound(Sound[Index], Index);
  ASSERT_EQ(Sound[0].Rows.size(), 2u);
  for (std::size_t At = 0; At < Bytes.size() && !HasFailure(); ++At) {
    for (const int Change : {1, 2, 4, 8, 16, 32, 64, 128, 255}) {
      std::string Flipped = Bytes;
      Flipped[At] = static_cast<char>(Flipped[At] ^ Change);
      SCOPED_TRACE("byte " + std::to_string(At) + " xor " + std::to_string(Change));
      ReadAll(Flipped);
      ExpectDamageStays(At);
    }
  }
}

TEST_P(DamagedFile, EveryTruncationKeepsTheSectionsBeforeIt) {
  for (std::size_t Size = 0; Size < Bytes.size() && !HasFailure(); ++Size) {
    SCOPED_TRACE("cut at " + std::to_string(Size));
    ReadAll(std::string_view(Bytes).substr(0, Size));
    std::size_t Finished = 0;
    while (Finished < 3 && Size >= End(Finished)) ++Finished;
    EXPECT_EQ(OpenError != "no error", Finished < 3 && Size >= Start(Finished) + 9);
    ASSERT_EQ(Readings.size(), Finished);
    for (std::size_t Index = 0; Index < Finished; ++Index) ExpectSound(Readings[Index], Index);
  }
}

INSTANTIATE_TEST_SUITE_P(BothOrders, DamagedFile, testing::Bool());

}  // namespace
}  // namespace velkrund::tests

#include <gtest/gtest.h>

#include "tests/eif/TextSection.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/TestPlatform.h"

namespace velkrund::tests {
namespace {

class SourceWriting : public testing::Test {
 protected:
  TTextSectionRegistered Registered;
  TTestPlatform Platform;
};

TEST_F(SourceWriting, BytesOfBothEncodingsInOneSource) {
  TMemorySource Source;
  Source.Open();
  TTextSection Section;
  Section.Parameter = {{"TableName", "Заказ"}};
  Section.Lines = {"ж"};
  Source.SetDefaultEncoding(TKvEncoding::Utf8);
  Source.ExportObject(Section, "U");
  Source.SetDefaultEncoding(TKvEncoding::Ansi);
  Source.ExportObject(Section, "A");
  Platform.WorkSettings.WorkAs17Version = true;
  Source.ExportObject(Section, "A");
  const std::string Expected =
      "\xEF\xBB\xBF\r\n[SECTION]\r\nEncoding = UTF8\r\nName = U\r\nType = Text\r\nVersion = 100\r\nTableName = "
      "Заказ\r\n[DATA]"
      "\r\nж\r\n[END]\r\n"
      "[SECTION]\r\nEncoding = ANSI\r\nName = A\r\nType = Text\r\nVersion = 100\r\nTableName = "
      "\xC7\xE0\xEA\xE0\xE7\r\n[DATA]"
      "\r\n\xE6\r\n[END]\r\n"
      "[SECTION]\r\nName = A\r\nType = Text\r\nVersion = 100\r\nTableName = "
      "\xC7\xE0\xEA\xE0\xE7\r\n[DATA]\r\n\xE6\r\n[END]\r\n";
  EXPECT_EQ(Source.Bytes(), Expected);

  TMemorySource Again(Source.Bytes());
  Again.Open();
  ASSERT_EQ(Again.Sections().Count(), 3);
  for (int Index = 0; Index < 3; ++Index) {
    const TEISection &Read = Again.Sections()[Index], &Written = Source.Sections()[Index];
    EXPECT_EQ(Read.Position, Written.Position);
    EXPECT_EQ(Read.DataPosition, Written.DataPosition);
    EXPECT_EQ(Read.DataSize, Written.DataSize);
    EXPECT_EQ(Read.ParamValue("tablename"), "Заказ");
    TTextSection Body;
    Body.SectionNumber = Index;
    Again.ImportObject(Body);
    EXPECT_EQ(Body.Lines, Section.Lines);
  }
}

TEST_F(SourceWriting, FailedExportsLeaveNothing) {
  TMemorySource Source;
  Source.SetDefaultEncoding(TKvEncoding::Utf8);
  Source.Open();
  TTextSection Good;
  Good.Lines = {"x"};
  struct {
    const char* What;
    const char* Name;
    std::vector<std::pair<std::string, std::string>> Parameter;
    std::function<void(TEIStream&)> OnExport;
  } Cases[] = {
      {"error of the section", "n", {}, [](TEIStream&) { throw EEIError("no"); }},
      {"cancelled", "n", {}, [](TEIStream&) { throw EAbort("no"); }},
      {"no name", "", {}, {}},
      {"name with a line end", "a\r\nb", {}, {}},
      {"name with a blank at the end", "a ", {}, {}},
      {"parameter twice", "n", {{"P", "1"}, {"p", "2"}}, {}},
      {"parameter that would be trimmed", "n", {{"P", " 1"}}, {}},
  };
  for (const bool Empty : {true, false}) {
    if (!Empty) Source.ExportObject(Good, "good");
    const std::string Before = Source.Bytes();
    for (auto& Case : Cases) {
      TTextSection Section;
      Section.Parameter = Case.Parameter;
      Section.OnExport = Case.OnExport;
      Section.Lines = {"some", "lines"};
      EXPECT_ANY_THROW(Source.ExportObject(Section, Case.Name)) << Case.What;
      EXPECT_EQ(Source.Bytes(), Before) << Case.What;
      EXPECT_EQ(Source.Sections().Count(), Empty ? 0 : 1) << Case.What;
    }
  }
  Source.ExportObject(Good, "good");
  EXPECT_EQ(Source.Sections().Count(), 2);
}

// What a killed writer leaves, at whatever byte, hides nothing that was finished, and is gone with the next section.
TEST_F(SourceWriting, AnUnfinishedSectionIsReadByNobodyAndCutByTheNext) {
  TMemorySource Source;
  Source.SetDefaultEncoding(TKvEncoding::Utf8);
  Source.Open();
  TTextSection Good, Late;
  Good.Lines = {"x"};
  Source.ExportObject(Good, "good");
  const std::string Before = Source.Bytes();
  std::string Killed;
  Late.Lines = {"; a line", "[END", "y"};
  Late.OnExport = [&](TEIStream&) { Killed = Source.Bytes() + "[END]\r\n"; };
  Source.ExportObject(Late, "late");
  const std::string After = Source.Bytes();
  ASSERT_EQ(Killed.size(), After.size());
  const auto Start = Before.size();
  EXPECT_EQ(Killed.substr(0, Start), Before);
  EXPECT_EQ(Killed.substr(Start, 11), ";SECTION]\r\n");
  EXPECT_EQ(Killed.substr(Start + 1), After.substr(Start + 1));
  for (std::size_t Length = Start; Length <= Killed.size(); ++Length) {
    TMemorySource Left(Killed.substr(0, Length));
    Left.SetDefaultEncoding(TKvEncoding::Utf8);
    Left.Open();
    ASSERT_EQ(Left.Sections().Count(), 1) << Length;
    // The first character alone is a remark as any other.
    const bool IsKnown = Length >= Start + 2;
    ASSERT_EQ(Left.UnfinishedPosition(), IsKnown ? static_cast<std::int64_t>(Start) : -1) << Length;
    Late.OnExport = nullptr;
    Left.ExportObject(Late, "late");
    if (IsKnown) {
      ASSERT_EQ(Left.Bytes(), After) << Length;
    }
    ASSERT_EQ(Left.UnfinishedPosition(), -1);
    TMemorySource Again(Left.Bytes());
    Again.Open();
    ASSERT_EQ(Again.Sections().Count(), 2) << Length;
    ASSERT_EQ(Again.UnfinishedPosition(), -1) << Length;
  }
}

TEST_F(SourceWriting, TextThatOnlyLooksUnfinishedStays) {
  const std::string Section = "[SECTION]\r\nName=a\r\nType=Text\r\nVersion=100\r\n[DATA]\r\n[END]\r\n",
                    Tail = ";SECTION]\r\nName = b\r\n[DATA]\r\n[END]\r\n";
  const struct {
    std::string Bytes;
    std::int64_t Unfinished;  // bytes at the end
  } Cases[] = {
      {Section + Tail, 36},
      {Section + Tail + Tail, 72},
      {Section + Tail + ";SEC", 40},
      {Section + "; remark\r\n" + Tail + Tail.substr(0, 20), 56},
      {";SECTION]\r\nremark\r\n" + Tail, 36},
      {Tail, 36},
      {Section + ";SECTION]", 9},
      {Tail + Section, -1},
      {Section + Tail + "; remark\r\n", -1},
      {Section + Tail + "\r\n", -1},
      {Section + ";SECTION]\r\n\r\n", -1},
      {Section + ";SECTION]\r\nremark", -1},
      {Section + " ;SECTION]\r\nName = b\r\n", -1},
      {Section + ";SECTION] \r\nName = b\r\n", -1},
      {Section + ";SECTION]\nName = b\r\n", -1},
      {Section + ";[SECTION]\r\nName = b\r\n", -1},
      {Section + ";", -1},
      {Section + ";SECT", 5},
      {Section + ";SECT\r\n", -1},
  };
  TTextSection New;
  for (const auto& [Bytes, Unfinished] : Cases) {
    TMemorySource Source(Bytes);
    Source.Open();
    const auto Size = static_cast<std::int64_t>(Bytes.size());
    ASSERT_EQ(Source.UnfinishedPosition(), Unfinished < 0 ? -1 : Size - Unfinished) << Bytes;
    Source.ExportObject(New, "n");
    const std::string Kept = Bytes.substr(0, static_cast<std::size_t>(Unfinished < 0 ? Size : Size - Unfinished));
    EXPECT_TRUE(Source.Bytes().starts_with(Kept)) << Source.Bytes();
    EXPECT_EQ(Source.Bytes().find(Tail) != std::string::npos, Kept.find(Tail) != std::string::npos) << Source.Bytes();
  }
  // Deletion moves it, or takes it along with the last section.
  TMemorySource Moved(Section + Section + Tail), Taken(Section + Section + Tail);
  Moved.Open();
  Moved.DeleteSection(0);
  EXPECT_EQ(Moved.UnfinishedPosition(), static_cast<std::int64_t>(Section.size()));
  Moved.ExportObject(New, "n");
  EXPECT_TRUE(Moved.Bytes().starts_with(Section + "[SECTION]")) << Moved.Bytes();
  Taken.Open();
  Taken.DeleteSection(1);
  EXPECT_EQ(Taken.UnfinishedPosition(), -1);
  EXPECT_EQ(Taken.Bytes(), Section);
}

TEST_F(SourceWriting, SectionsThatAreHeldBackAreFinishedOrDroppedTogether) {
  TTextSection Section;
  Section.Lines = {"x"};
  for (const bool Finishes : {true, false}) {
    TMemorySource Source;
    Source.Open();
    Source.ExportObject(Section, "a");
    const std::string First = Source.Bytes();
    Source.SetHoldsBack(true);
    for (const char* Name : {"a", "b", "c"}) Source.ExportObject(Section, Name);
    EXPECT_EQ(Source.Sections().Count(), 4);
    TMemorySource Meanwhile(Source.Bytes());
    Meanwhile.Open();
    EXPECT_EQ(Meanwhile.Sections().Count(), 1);
    EXPECT_EQ(Meanwhile.UnfinishedPosition(), static_cast<std::int64_t>(First.size()));
    if (Finishes)
      Source.FinishHeld();
    else
      Source.DropHeld();
    TMemorySource Afterwards(Source.Bytes());
    Afterwards.Open();
    EXPECT_EQ(Afterwards.Sections().Count(), Finishes ? 4 : 1);
    EXPECT_EQ(Source.Sections().Count(), Finishes ? 4 : 1);
    EXPECT_EQ(Afterwards.UnfinishedPosition(), -1);
    EXPECT_EQ(Source.Bytes() == First, !Finishes);
  }
}

TEST_F(SourceWriting, AppendedSectionsBeginTheirOwnLine) {
  const std::string Whole = "[SECTION]\r\nName=a\r\nType=Text\r\nVersion=100\r\n[DATA]\r\n[END]";
  const struct {
    std::string End, Expected;
  } Cases[] = {
      {"", "\r\n"}, {"\r", "\r"}, {"\r\n", "\r\n"}, {"\r\n; note\n", "\r\n; note\n\r\n"}, {"\r\nx", "\r\nx\r\n"}};
  TTextSection Section;
  for (const auto& Case : Cases) {
    TMemorySource Source(Whole + Case.End);
    Source.Open();
    Source.ExportObject(Section, "b");
    EXPECT_TRUE(Source.Bytes().starts_with(Whole + Case.Expected + "[SECTION]\r\n")) << Source.Bytes();
    TMemorySource Again(Source.Bytes());
    Again.Open();
    EXPECT_EQ(Again.Sections().Count(), 2);
  }
}

TEST_F(SourceWriting, LostCharactersAreCountedOrRefused) {
  const std::string Lacking = "characters that code page 1251 lacks", Malformed = "is not valid UTF-8";
  constexpr auto Ansi = TKvEncoding::Ansi, Utf8 = TKvEncoding::Utf8;
  const struct {
    TKvEncoding Encoding;
    std::string Name, Line, Written;
    TTextLosses Losses;
    std::string Error;
  } Cases[] = {
      {Ansi, "n", "a日b", "\r\na?b\r\n", {1, 0}, "The text 'a日b' has " + Lacking},
      {Ansi, "日", "a", "Name = ?\r\n", {1, 0}, "The text 'Name = 日' has " + Lacking},
      {Ansi, "n", "a\xFF", "\r\na?\r\n", {1, 0}, "The text 'a\uFFFD' " + Malformed},
      {Utf8, "n", "a\xFF日", "\r\na\uFFFD日\r\n", {0, 1}, "The text 'a\uFFFD日' " + Malformed},
      {Utf8, "c\xFF", "a", "Name = c\uFFFD\r\n", {0, 1}, "The text 'Name = c\uFFFD' " + Malformed},
  };
  for (const auto& Case : Cases) {
    TTextSection Section;
    Section.Lines = {Case.Line};
    TMemorySource Source;
    Source.SetDefaultEncoding(Case.Encoding);
    Source.Open();
    Source.SetStrictText(false);
    Source.ExportObject(Section, Case.Name);
    EXPECT_NE(Source.Bytes().find(Case.Written), std::string::npos) << Source.Bytes();
    EXPECT_EQ(Source.Losses(), Case.Losses) << Case.Written;
    const std::string Before = Source.Bytes();
    Source.SetStrictText(true);
    try {
      Source.ExportObject(Section, Case.Name);
      ADD_FAILURE() << "no error for " << Case.Written;
    } catch (const EEIError& Error) {
      EXPECT_TRUE(std::string(Error.what()).starts_with(Case.Error)) << Error.what();
    }
    EXPECT_EQ(Source.Bytes(), Before);
  }

  const std::string Broken =
      "[SECTION]\r\nEncoding=UTF8\r\nName=a\r\nType=Text\r\nVersion=100\r\n[DATA]\r\n\xFF\r\n[END]\r\n";
  Platform.WorkSettings.StrictText = true;
  TMemorySource Reader(Broken);
  Platform.WorkSettings.StrictText = false;  // is asked when a source is made
  Reader.Open();
  EXPECT_THROW(Reader.ImportObject(*Reader.CreateEIObject(0)), EEIError);
  Reader.SetStrictText(false);
  TTextSection Read;
  Reader.ImportObject(Read);
  EXPECT_EQ(Read.Lines, std::vector<std::string>{"\xEF\xBF\xBD"});
  EXPECT_EQ(Reader.Losses().Malformed, 2) << "of the refused attempt and of this one";
}

// Every selection of four sections with text around them, against a naive cut of the whole text.
TEST_F(SourceWriting, DeletionsKeepTheRestByteForByte) {
  const std::string Lead[] = {"\xEF\xBB\xBF\r\n; first\r\n", "\r\n", "between [SECTION]\r\n [SECTION]\r\n", ""};
  std::vector<std::string> Sections;
  for (const char* Body : {"", "[SECTION]\r\nx\r\n", "long line\r\n", "y\r\n"})
    Sections.push_back("[SECTION]\r\nName=" + std::to_string(Sections.size()) +
                       "\r\nType=Text\r\nVersion=100\r\n[DATA]\r\n" + Body + "[END]  \r\n");
  Sections[2].insert(Sections[2].find("long"), std::string(600'000, 'z'));
  std::string All;
  for (std::size_t Index = 0; Index < Sections.size(); ++Index) All += Lead[Index] + Sections[Index];
  All += "after the last";

  for (unsigned Mask = 0; Mask < 16; ++Mask) {
    TMemorySource Source(All);
    Source.Open();
    TStringList List;
    std::string Expected;
    std::vector<int> Kept;
    for (int Index = 3; Index >= 0; --Index)
      if (Mask >> Index & 1) List.Add(std::to_string(Index));
    for (std::size_t Index = 0; Index < 4; ++Index) {
      Expected += Lead[Index];
      if (!(Mask >> Index & 1)) Expected += Sections[Index], Kept.push_back(static_cast<int>(Index));
    }
    if (!(Mask & 8)) Expected += "after the last";
    Source.DeleteSections(List);
    ASSERT_EQ(Source.Bytes(), Expected) << Mask;
    EXPECT_EQ(Source.ReadLnCnt(), -1);
    TMemorySource Again(Source.Bytes());
    Again.Open();
    ASSERT_EQ(Again.Sections().Count(), static_cast<int>(Kept.size()));
    for (int Index = 0; Index < Again.Sections().Count(); ++Index) {
      EXPECT_EQ(Source.Sections()[Index].Name(), std::to_string(Kept[static_cast<std::size_t>(Index)]));
      EXPECT_EQ(Source.Sections()[Index].Position, Again.Sections()[Index].Position);
      EXPECT_EQ(Source.Sections()[Index].DataPosition, Again.Sections()[Index].DataPosition);
    }
    if (List.Count() == 1) {
      TMemorySource Single(All);
      Single.Open();
      Single.DeleteSection(std::stoi(List[0]));
      EXPECT_EQ(Single.Bytes(), Expected) << Mask;
    }
  }
  TMemorySource Source(All);
  Source.Open();
  for (const char* Bad : {"x", "4", "-1", ""}) EXPECT_ANY_THROW(Source.DeleteSections({Bad})) << Bad;
  EXPECT_ANY_THROW(Source.DeleteSections({"1", "x"}));
  EXPECT_EQ(Source.Bytes(), All);
  // Cut off by another program since it was opened.
  const std::string Rest = All.substr(0, All.find("between"));
  Source.Memory.SetSize(static_cast<std::int64_t>(Rest.size()));
  EXPECT_THROW(Source.DeleteSection(2), EReadError);
  EXPECT_EQ(Source.Bytes(), Rest);
}

class TMemoryField : public TField {
 public:
  TMemoryField() : TField("F", TKvKind::Bytes) {}
  const TKvVariant& Value() override { return BufferedValue(); }
};

TEST_F(SourceWriting, BlobFieldsAreWrittenByExportsOnly) {
  TMemoryField Field;
  TTextSection Section;
  Section.Lines = {"x"};
  TEIBlobField Detached;
  Detached.Open();
  Detached.ExportObject(Section, "n");
  EXPECT_EQ(Detached.Sections().Count(), 0);
  {
    TEIBlobField Blob;
    Blob.SetBlobField(&Field);
    Blob.Open();
    Blob.ExportObject(Section, "a");
    Blob.ExportObject(Section, "b");
  }
  const std::string Stored(Field.Value().AsText());
  TEIBlobField Blob;
  Blob.SetBlobField(&Field);
  Blob.Open();
  ASSERT_EQ(Blob.Sections().Count(), 2);
  Blob.DeleteSection(0);
  EXPECT_EQ(Field.Value().AsText(), Stored);
  TTextSection Read;
  Blob.ImportObject(Read);
  EXPECT_EQ(Read.Lines, Section.Lines);
  Blob.ExportObject(Section, "c");
  EXPECT_NE(Field.Value().AsText(), Stored);
}

}  // namespace
}  // namespace velkrund::tests

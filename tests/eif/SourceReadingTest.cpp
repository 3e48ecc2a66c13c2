#include <gtest/gtest.h>

#include "tests/eif/TextSection.h"

namespace velkrund::tests {
namespace {

class SourceReading : public testing::Test {
 protected:
  TTextSectionRegistered Registered;
};

// "name/type:version/encoding[parameters]@line of data+body size" of every section.
std::string Dump(const TEISource& Source) {
  std::string Out;
  for (int Index = 0; Index < Source.Sections().Count(); ++Index) {
    const TEISection& Section = Source.Sections()[Index];
    if (Index) Out += ' ';
    Out += Section.Name() + "/" + std::string(Section.TypeName()) + ":" + std::to_string(Section.Version());
    Out += Section.Encoding() == TKvEncoding::Utf8 ? "/UTF8[" : "/ANSI[";
    for (int At = 0; At < Section.ParamCount(); ++At)
      Out += Section.ParamName(At) + "=" + Section.ParamValue(Section.ParamName(At)) + ";";
    Out += "]@" + std::to_string(Section.DataLinePosition) + "+" + std::to_string(Section.DataSize);
  }
  return Out;
}

TEST_F(SourceReading, AcceptsEveryFormOfLayout) {
  const struct {
    const char* Input;
    const char* Expected;
  } Cases[] = {
      {"", ""},
      {"just text\r\nno section", ""},
      {" [SECTION]\r\nName=a\r\n", ""},
      {"\xEF\xBB\xBF\r\n[SECTION]  \rEncoding = UTF8\rName = \xD0\x9F\rType = Text\rVersion = "
       "100\r[DATA]\r\nx\r[END]\r",
       "\xD0\x9F/Text:100/UTF8[]@7+2"},
      {"[SECTION]\r\nVersion=+100\r\n;Name = c\r\n\r\n \t;x\r\nType=TEXT\r\nName=a=b\r\nflag\r\nP = q = r \r\n[DATA]  "
       "\r\n[END]",
       "a=b/Text:100/ANSI[flag=;P=q = r;]@10+0"},
      {"[SECTION]\r\nName=x\r\nName = "
       "a\r\nType=z\r\nType=Text\r\nVersion=1\r\nVersion=100\r\nEncoding=UTF8\r\nEncoding=ANSI\r\n"
       "[DATA]\r\n [END]\r\nx\n[END]\r\n[END] "
       "\r\nbetween\r\n[SECTION]\r\nName=b\r\nType=Text\r\nVersion=100\r\n[DATA]\r\n[SECTION]\r\n[END]\r\n",
       "a/Text:100/ANSI[]@10+17 b/Text:100/ANSI[]@19+11"},
      // the name in the code page: the "Encoding" line comes too late for it
      {"[SECTION]\r\nName=\xCF\r\nEncoding=UTF8\r\nType=Text\r\nVersion=100\r\n[DATA]\r\n[END]\r\n",
       "П/Text:100/UTF8[]@6+0"},
  };
  for (const auto& Case : Cases) {
    TMemorySource Source(Case.Input);
    Source.Open();
    EXPECT_EQ(Dump(Source), Case.Expected) << Case.Input;
  }
}

TEST_F(SourceReading, NamesEveryFaultWithPositionAndLine) {
  const std::string Good =
      "[SECTION]\r\nName=g\r\nType=Text\r\nVersion=100\r\n[DATA]\r\n[END]\r\n";  // 58 bytes, 6 lines
  const struct {
    const char* Input;
    const char* Message;
    int Position;  // behind Good; -1: the message has none
    int Line;
  } Cases[] = {
      {"[SECTION]\r\nName=a\r\n", "Invalid Export/Import source structure. Data begin not found (Position:%).", 19, 8},
      {"[SECTION]", "Invalid Export/Import source structure. Data begin not found (Position:%).", 9, 7},
      {"[SECTION]\r\nType=Text\r\nVersion=100\r\n[DATA]\r\n[END]\r\n",
       "Invalid Export/Import source structure. Section name not found (Position:%).", 43, 10},
      {"[SECTION]\r\nName=a\r\nType=Text\r\nversion=100\r\n[DATA]\r\n[END]\r\n",
       "Invalid Export/Import source structure. Version number not found or incorrect (Position:%).", 51, 11},
      {"[SECTION]\r\nVersion=1a\r\n",
       "Invalid Export/Import source structure. Version is not numeric value (Position:%).", 23, 8},
      {"[SECTION]\r\nVersion=99999999999\r\n",
       "Invalid Export/Import source structure. Version is not numeric value (Position:%).", 32, 8},
      {"[SECTION]\r\nName=a\r\nVersion=100\r\n[DATA]\r\n",
       "Invalid Export/Import source structure. Section type not found (Position:%).", 40, 10},
      {"[SECTION]\r\nName=a\r\nType=Nope\r\nVersion=100\r\n[DATA]\r\n",
       "Invalid Export/Import source structure. Section type is not registered (Type:'Nope';Position:%).", 51, 11},
      {"[SECTION]\r\nName=a\r\nType=Text\r\nVersion=99\r\n[DATA]\r\n",
       "Invalid Export/Import source structure. Section type is not registered (Type:'Text';Position:%).", 50, 11},
      {"[SECTION]\r\nName=a\r\nType=Text\r\nVersion=100\r\n[DATA]\r\nbody\r\n[END",
       "Invalid Export/Import source structure. Section end not found (Position:%).", 61, 13},
      {"[SECTION]\r\nEncoding = utf8\r\n",
       "Invalid Export/Import source structure. Unknown encoding: utf8. (Position:%).", 28, 8},
      {"[SECTION]\r\nP=1\r\np=2\r\n", "Parameter 'p' is already exist", -1, 9},
  };
  for (const auto& Case : Cases) {
    TMemorySource Source(Good + Case.Input);
    std::string Expected = Case.Message;
    if (const auto At = Expected.find('%'); At != std::string::npos)
      Expected.replace(At, 1, std::to_string(static_cast<int>(Good.size()) + Case.Position));
    Expected += "; Line: " + std::to_string(Case.Line) + " OwnerException: \r\nEEIError: ";
    try {
      Source.Open();
      ADD_FAILURE() << "no error for " << Case.Input;
    } catch (const EEIError& Error) {
      EXPECT_TRUE(std::string(Error.what()).starts_with(Expected)) << Error.what() << "\nexpected " << Expected;
    }
    EXPECT_EQ(Dump(Source), "g/Text:100/ANSI[]@5+0") << "what came before the faulty section stays";
    EXPECT_EQ(Source.Bytes(), Good + Case.Input);
  }
}

// With a damaged "[DATA]" line the rows of a table are parameters, and must not all be kept.
TEST_F(SourceReading, HeadersAreBounded) {
  std::string Parameters, Comments;
  for (int Line = 0; Line < 500'000; ++Line) {
    Parameters += "<" + std::to_string(Line) + ">\r\n";
    Comments += "; note\r\n";
  }
  std::string Long;
  for (char Name = 'a'; Name <= 'z'; ++Name) Long += Name + ("=" + std::string(1'000'000, 'x') + "\r\n");
  constexpr std::size_t Limit = TEISource::MaxHeaderLine;
  const char *const Unbounded = "Data begin not found", *const TooLong = "A header line is longer than 1048576 bytes";
  const struct {
    std::string Lines;
    const char* Error;  // null: none
  } Cases[] = {{Parameters, Unbounded},
               {Parameters.substr(0, Parameters.find("<150000>")), nullptr},
               {Comments, nullptr},
               {Long.substr(0, Long.find("f=")), nullptr},
               {Long, Unbounded},
               {"P=" + std::string(Limit - 2, 'x') + "\r\n", nullptr},
               {"P=" + std::string(Limit - 1, 'x') + "\r\n", TooLong},
               {std::string(3 * Limit, ' ') + "\r\n", TooLong}};
  for (const auto& Case : Cases) {
    TMemorySource Source("[SECTION]\r\nName=a\r\nType=Text\r\nVersion=100\r\n" + Case.Lines + "[DATA]\r\n[END]\r\n");
    std::string Error;
    try {
      Source.Open();
    } catch (const EEIError& Raised) {
      Error = Raised.what();
    }
    EXPECT_EQ(Source.Sections().Count(), Case.Error ? 0 : 1) << Error;
    const std::string Expected =
        std::string("Invalid Export/Import source structure. ") + (Case.Error ? Case.Error : "");
    EXPECT_TRUE(Case.Error ? Error.starts_with(Expected) : Error.empty()) << Error;
  }
}

// However long they are, and wherever a block of the stream ends.
TEST_F(SourceReading, LinesThatAreNoMarkersArePassedOver) {
  const std::string Blanks(700'000, ' ');
  const struct {
    std::string Body, End;
    bool IsEnd;
  } Cases[] = {{"x", "[END]" + Blanks, true},
               {"[END" + Blanks + "]", "[END]", true},
               {"[END]" + Blanks + "x", "[END]", true},
               {"[" + std::string(700'000, '['), "[END]", true},
               {"x", "[END]\t", false}};
  for (const auto& Case : Cases) {
    TMemorySource Source("[SECTION]\r\nName=a\r\nType=Text\r\nVersion=100\r\n[DATA]\r\n" + Case.Body + "\r\n" +
                         Case.End + "\r\n[SECTION]" + Blanks +
                         "\r\nName=b\r\nType=Text\r\nVersion=100\r\n[DATA]\r\n[END]");
    Source.Open();
    ASSERT_EQ(Source.Sections().Count(), Case.IsEnd ? 2 : 1);
    if (!Case.IsEnd) continue;
    EXPECT_EQ(Dump(Source), "a/Text:100/ANSI[]@5+" + std::to_string(Case.Body.size() + 2) + " b/Text:100/ANSI[]@12+0");
    Source.DeleteSection(0);
    EXPECT_EQ(Source.Bytes().substr(0, 12), "[SECTION]   ");
    EXPECT_EQ(Source.Sections()[0].Name(), "b");
  }
}

// A cut anywhere gives either an error or a list of the sections that are whole.
TEST_F(SourceReading, EveryTruncationIsAnErrorOrAWholeList) {
  TMemorySource Whole;
  Whole.SetDefaultEncoding(TKvEncoding::Utf8);
  Whole.Open();
  TTextSection Section;
  Section.Lines = {"one", "two"};
  std::vector<std::size_t> Ends = {0};
  for (const char* Name : {"a", "b", "c"}) {
    Whole.ExportObject(Section, Name);
    Ends.push_back(Whole.Bytes().size());
  }
  for (std::size_t Length = 0; Length <= Whole.Bytes().size(); ++Length) {
    TMemorySource Cut(Whole.Bytes().substr(0, Length));
    bool Failed = false;
    try {
      Cut.Open();
    } catch (const EEIError&) {
      Failed = true;
    }
    std::size_t Complete = 0;  // an "[END]" without its line end is complete
    while (Complete + 1 < Ends.size() && Length + 2 >= Ends[Complete + 1]) ++Complete;
    EXPECT_EQ(static_cast<std::size_t>(Cut.Sections().Count()), Complete) << Length;
    if (Failed) {
      EXPECT_LT(Complete, 3u) << Length;
    }
  }
}

TEST_F(SourceReading, ImportErrorsNameTheBodyLine) {
  TMemorySource Source("[SECTION]\r\nName=a\r\nType=Text\r\nVersion=100\r\n[DATA]\r\nx\r\nbad\r\ny\r\n[END]\r\n");
  Source.Open();
  const auto Object = Source.CreateEIObject(0);
  try {
    Source.ImportObject(*Object);
    FAIL();
  } catch (const EEIError& Error) {
    EXPECT_STREQ(Error.what(), "bad line; Line: 7 OwnerException: \r\nEEIError: bad line");
  }
  TMemorySource Aborting("[SECTION]\r\nName=a\r\nType=Text\r\nVersion=100\r\n[DATA]\r\nabort\r\n[END]\r\n");
  Aborting.Open();
  EXPECT_THROW(Aborting.ImportObject(*Aborting.CreateEIObject(0)), EAbort);
}

TEST_F(SourceReading, ObjectsComeInitialised) {
  TMemorySource Source("[SECTION]\r\nName=a\r\nType=Text\r\nVersion=100\r\n[DATA]\r\n1\r\n2\n3\r\r\n[END]\r\n");
  Source.Open();
  const auto Object = Source.CreateEIObject(0);
  auto& Text = dynamic_cast<TTextSection&>(*Object);
  EXPECT_EQ(Text.Name, "a");
  Source.ImportObject(Text);
  EXPECT_EQ(Text.Lines, (std::vector<std::string>{"1", "2\n3", ""}));
  EXPECT_THROW(Source.CreateEIObject(1), EListError);
}

}  // namespace
}  // namespace velkrund::tests

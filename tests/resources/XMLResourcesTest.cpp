#include "tests/resources/OperationFixture.h"
#include "velkrund/platform/ormtools/XML.h"

namespace velkrund::tests {
namespace {

class XMLResources : public Operation {
 protected:
  /// Low byte first, without a mark.
  static std::string Utf16Bytes(std::string_view Text) {
    std::string Result;
    for (const char16_t Unit : ToUtf16(Text)) {
      Result += static_cast<char>(Unit & 0xFF);
      Result += static_cast<char>(Unit >> 8);
    }
    return Result;
  }

  TMemoryStream Stream;
};

TEST_F(XMLResources, DocumentsAreWrittenToTheByte) {
  const std::string Begin = "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\n<LRES Version=\"1\">\n\t<LANGUAGES>\n";
  const struct {
    std::vector<std::string> Sections, Languages;
    std::string Document;
  } Cases[] = {
      {{"A"},
       {"English"},
       "\t\t<LANGUAGE VALUE=\"English\" ALIAS=\"ENGLISH1\"/>\n\t</LANGUAGES>\n<SECTION SectionID=\"A\">\n\t<DATA>\n"
       "\t\t<ITEM ID=\"x\">\n\t\t\t<ENGLISH1>a &amp; b &lt;&gt;&quot;&apos; &#13;\n\tc</ENGLISH1>\n\t\t</ITEM>\n"
       "\t</DATA>\n</SECTION>\n</LRES>\n"},
      {{"B_&", "none"},
       {"Russian", "Romanian"},
       "\t\t<LANGUAGE VALUE=\"Russian\" ALIAS=\"R\"/>\n\t\t<LANGUAGE VALUE=\"Romanian\" ALIAS=\"ROMANIAN1\"/>\n"
       "\t</LANGUAGES>\n<SECTION SectionID=\"B_&amp;\">\n\t<DATA>\n\t\t<ITEM ID=\"y\">\n\t\t\t<R>да</R>\n"
       "\t\t\t<ROMANIAN1></ROMANIAN1>\n\t\t</ITEM>\n\t\t<ITEM ID=\"x\">\n\t\t\t<ROMANIAN1>😀</ROMANIAN1>\n"
       "\t\t</ITEM>\n\t</DATA>\n</SECTION>\n<SECTION SectionID=\"none\">\n\t<DATA>\n\t</DATA>\n</SECTION>\n</LRES>\n"},
      {{}, {}, "\t</LANGUAGES>\n</LRES>\n"},
  };
  Put({"A.x.English=a & b <>\"' \r\n\tc", "A.x.Russian=-", "B_&.x.Romanian=😀", "B_&.y.Russian=да", "B_&.y.Romanian="});
  for (const auto& Case : Cases) {
    TExportXMLLResourceUtilOperation Export;
    const TStringList Sections(Case.Sections), Languages(Case.Languages);
    Export.Sections = &Sections;
    Export.Languages = &Languages;
    Export.Stream = &Stream;
    Stream.Clear();
    EXPECT_EQ(Export.Execute(), 1);
    std::string Expected = WithLineEnds(Begin + Case.Document);
    // The line end inside a text is its own.
    if (const auto At = Expected.find("&#13;\r\n"); At != Expected.npos) Expected.erase(At + 5, 1);
    EXPECT_EQ(Stream.Memory(), Utf16Bytes(Expected)) << Expected;
    EXPECT_FALSE(Export.Losses().Any());
  }
}

TEST_F(XMLResources, Aliases) {
  const struct {
    std::vector<std::string> Languages, Aliases;
  } Cases[] = {
      {{"English"}, {"ENGLISH1"}},
      {{"Russian", "Romanian"}, {"R", "ROMANIAN1"}},
      {{"English", "Russian", "Estonian"}, {"E", "R", "ES"}},
      {{"en", "EN", "e", "x"}, {"E", "EN", "E1", "X"}},
      {{"русский", "рязань", "Ріка"}, {"Р", "РЯ", "РІ"}},
      {{"a", "a"}, {"A", "A1"}},
      {{"b1", "b", "b"}, {"B", "B1", "B2"}},
  };
  for (const auto& Case : Cases) EXPECT_EQ(LanguageAliases(TStringList(Case.Languages)).Items(), Case.Aliases);
}

TEST_F(XMLResources, ChecksAndCancel) {
  Put({"A.x.English=1", "B.x.English=2"});
  TExportXMLLResourceUtilOperationInterface Object;
  EXPECT_EQ(Object.Execute(), 0);
  EXPECT_EQ(Object.LastError(), "Exception:Stream is not assigned");
  Object.SetStream(&Stream);
  EXPECT_EQ(Object.Execute(), 0);
  EXPECT_EQ(Object.LastError(), "Exception:Sections are not determined");
  EXPECT_EQ(Stream.Size(), 0);
  SetPropertyText(Object, "Sections", "A,B");
  Object.Operation().FOnShowProgress = [&](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    EXPECT_EQ(std::to_string(Current) + "/" + std::to_string(Total) + std::string(Name), "0/2A");
    Object.Operation().SetCanceled(true);
  };
  EXPECT_EQ(Object.Execute(), 0);
  EXPECT_EQ(Object.End(), TRunEnd::Cancelled);
  EXPECT_TRUE(Stream.Memory().ends_with(Utf16Bytes("</SECTION>\r\n</LRES>\r\n")));
  EXPECT_EQ(Stream.Memory().find(Utf16Bytes("\"B\"")), std::string_view::npos);
  EXPECT_EQ(GetPropertyText(Object, "Aliases"), "ENGLISH1") << "without languages all of the database";
}

TEST_F(XMLResources, WhatXMLCannotCarry) {
  const struct {
    std::string_view Text;
    const char* Written;
    int Lost;
    const char* InAttribute = nullptr;  // where it differs
  } Cases[] = {
      {"\t\n", "\t\n", 0, "&#9;&#10;"},
      {std::string_view("a\0b\x1F", 4),
       "a\xEF\xBF\xBD"
       "b\xEF\xBF\xBD",
       2},
      {"\x7F\xC2\x85", "\x7F\xC2\x85", 0},
      {"\xED\xA0\x80|\xEF\xBF\xBE|\xEF\xBF\xBF", "\xEF\xBF\xBD|\xEF\xBF\xBD|\xEF\xBF\xBD", 3},
      {"\xEF\xBF\xBD|\xFF|\xC3", "\xEF\xBF\xBD|\xEF\xBF\xBD|\xEF\xBF\xBD", 2},
  };
  for (const auto& Case : Cases) {
    std::string Text = "<", Attribute;
    EXPECT_EQ(StrToXML(Text, Case.Text), Case.Lost);
    EXPECT_EQ(Text, std::string("<") + Case.Written);
    EXPECT_EQ(StrToXML(Attribute, Case.Text, TXMLPlace::Attribute), Case.Lost);
    EXPECT_EQ(Attribute, Case.InAttribute ? Case.InAttribute : Case.Written);
  }
  Put({"A.x.English=\x01\x02"});
  const TStringList Sections = {"A"};
  TExportXMLLResourceUtilOperation Export;
  Export.Stream = &Stream;
  Export.Sections = &Sections;
  EXPECT_EQ(Export.Execute(), 1);
  EXPECT_EQ(Export.Losses(), (TTextLosses{.Unrepresentable = 2}));
  Export.StrictText = true;
  EXPECT_EQ(ErrorOf([&] { Export.Execute(); }),
            "ELUtilError: Can not export resource 'A_x', language 'English', to XML. It contains characters that XML "
            "can not carry");
}

}  // namespace
}  // namespace velkrund::tests

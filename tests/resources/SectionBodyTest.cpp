#include "tests/resources/SectionFixture.h"

namespace velkrund::tests {
namespace {

using SectionBody = Section;

std::string Repeated(std::string_view Text, std::size_t Times) {
  std::string Result;
  while (Times-- > 0) Result += Text;
  return Result;
}

TEST_F(SectionBody, TextsAreWrittenByteForByteAndComeBack) {
  const std::string Begin = "   E = '";  // 8 of the units of a line
  const std::string Face = "\xF0\x9F\x98\x80";
  const std::size_t Units = 99990;
  const struct {
    std::string Text, Line, OldLine;
  } Cases[] = {
      {"", "", ""},
      {"Item #", "Item #0023", "Item #23"},
      {"a\r\n\tb\x1F", "a#000D#000A#0009b#001F", "a#0D#0A#09b#1F"},
      {"\x7F\xC2\x80\xC2\x85\xC2\x9F\xC2\xA0", "#007F#0080#0085#009F\xC2\xA0", "\x7F\xC2\x80\xC2\x85\xC2\x9F\xC2\xA0"},
      {"it's ' = '", "it's ' = '", "it's ' = '"},
      {" @ ", " @ ", " @ "},
      {"Мир \xE4\xB8\xAD" + Face, "Мир \xE4\xB8\xAD" + Face, "Мир \xE4\xB8\xAD" + Face},
      {std::string(Units - 9, 'x'), std::string(Units - 9, 'x'), std::string(Units - 9, 'x')},
      {std::string(Units - 8, 'x'), std::string(Units - 8, 'x') + "@\n@", std::string(Units - 8, 'x') + "@\n@"},
      {std::string(Units - 9, 'x') + "@y", std::string(Units - 9, 'x') + "@@\n@y",
       std::string(Units - 9, 'x') + "@@\n@y"},
      {std::string(Units - 9, 'x') + Face, std::string(Units - 9, 'x') + "@\n@" + Face,
       std::string(Units - 9, 'x') + "@\n@" + Face},
      {std::string(199'991, 'x'),
       std::string(Units - 8, 'x') + "@\n@" + std::string(Units, 'x') + "@\n@" + std::string(19, 'x'),
       std::string(Units - 8, 'x') + "@\n@" + std::string(Units, 'x') + "@\n@" + std::string(19, 'x')},
      {Repeated("\n", 20'000), Repeated("#000A", 19'996) + "#0@\n@00A#000A#000A#000A", Repeated("#0A", 20'000)},
  };
  for (const auto& [Text, Line, OldLine] : Cases)
    for (const bool Old : {false, true}) {
      Platform.Strings().Content = {};
      Platform.Strings().Put("S", "N", "E", Text);
      const std::string Body = Export(*Make(Old));
      EXPECT_EQ(Body, WithLineEnds(" [LANGUAGES]\n  E\n [STRINGS]\n  N:\n" + Begin + (Old ? OldLine : Line) + "'\n"));
      Platform.Strings().Content.Strings.clear();
      const auto In = Make(Old);
      Import(*In, Body);
      EXPECT_EQ(Texts(), "S_N.E=" + Text + " ");
      EXPECT_EQ(In->Report().Texts, 1);
    }
  EXPECT_FALSE(Losses.Any());
}

TEST_F(SectionBody, LanguagesAndNames) {
  TMemoryStrings& Store = Platform.Strings();
  Store.Put("S", "", "Russian", "r");
  Store.Put("S", "b b: = ", "English", "x");
  Store.Put("S", "a", "English", "y");
  Store.Put("S", "b b: = ", "Russian", "z");
  Store.Put("S", "c", "en us", "never written");
  Store.Put("S_X", "other", "English", "of a section whose ID begins alike");
  TStringList Both{"English", "Russian", "ENGLISH"}, One{"russian"}, Names{"A", "none"};
  const struct {
    TStringList* Languages;
    const TStringList* Resources;
    const char *ExportSectionID, *Body;
  } Cases[] = {
      {&Both, nullptr, "S",
       "  English\n  Russian\n [STRINGS]\n  b b: = :\n   English = 'x'\n   Russian = 'z'\n  a:\n   English = 'y'\n"
       "  :\n   Russian = 'r'\n"},
      {&One, nullptr, "s_", "  russian\n [STRINGS]\n  :\n   russian = 'r'\n  b b: = :\n   russian = 'z'\n"},
      {&Both, &Names, "S", "  English\n  Russian\n [STRINGS]\n  A:\n   English = 'y'\n  none:\n"},
      {nullptr, &Names, "S", "  Russian\n  English\n  en us\n [STRINGS]\n  A:\n   English = 'y'\n  none:\n"},
      {&Both, nullptr, "T", "  English\n  Russian\n [STRINGS]\n  b b: = :\n  a:\n   Russian = 't'\n  :\n"},
  };
  Store.Put("T", "a", "Russian", "t");
  for (const auto& Case : Cases) {
    const auto Made = Make();
    Made->ExportSectionID = Case.ExportSectionID;
    Made->Languages = Case.Languages;
    Made->Resources = Case.Resources;
    EXPECT_EQ(Export(*Made), WithLineEnds(" [LANGUAGES]\n" + std::string(Case.Body)));
  }
}

TEST_F(SectionBody, WhatAStringCannotBeWrittenWithIsAskedAbout) {
  TMemoryStrings& Store = Platform.Strings();
  Store.Put("S", "a", "E", "1");
  Store.Put("S", " b", "E", "2");
  Store.Put("S", "c\rd", "E", "3");
  Store.Put("S", "e", "E", "4");
  Store.Put("S", "e", "en us", "5");
  Store.Put("S", "f", "E", "6\xFF");
  Store.Put("S", "g", "#", "7");
  Platform.WorkSettings.StrictText = true;
  const std::string Refused =
      "ELUtilError: Can not export local resource. A line cannot hold the name ' b': it begins with a blank or a "
      "control "
      "character, or has a line end inside";
  std::vector<std::string> Asked;
  int Answer = 7;
  const TMessageBoxGuard Guard([&](TWindowHandle, std::u16string_view Text, std::u16string_view Caption, std::uint32_t,
                                   std::int32_t, std::int32_t) {
    EXPECT_TRUE(Caption.empty());
    Asked.push_back(FromUtf16(Text));
    return Answer;
  });
  EXPECT_EQ(ErrorOf([&] { Export(*Make()); }), Refused);
  Answer = 6;
  const auto Made = Make();
  EXPECT_EQ(Export(*Made),
            WithLineEnds(" [LANGUAGES]\n  E\n  en us\n  #\n [STRINGS]\n  a:\n   E = '1'\n  e:\n   E = '4'\n"
                         "  f:\n  g:\n"));
  EXPECT_EQ(Made->Report().Strings, 1);
  ASSERT_EQ(Asked.size(), 6U);
  EXPECT_EQ(Asked[0], "M_Velkrund_DSPUtils_ErrorOnExportLocalResource S_ b\r\n" + Refused.substr(13) +
                          "\r\nM_Velkrund_DSPUtils_ContinueExport");
  EXPECT_THAT(Asked[3],
              testing::HasSubstr("\r\nCan not export local resource. Language 'en us' contains incorrect symbols\r\n"));
  EXPECT_THAT(Asked[4], testing::HasSubstr("is not valid UTF-8"));
  EXPECT_THAT(Asked[5], testing::HasSubstr("the language '#'"));
  Platform.WorkSettings.StrictText = false;
  Losses = {};
  EXPECT_THAT(Export(*Make()), testing::HasSubstr("   E = '6\xEF\xBF\xBD'\r\n  g:\r\n   #0023 = '7'\r\n"));
  EXPECT_EQ(Losses, (TTextLosses{.Malformed = 1, .Altered = 1}));
  const TStringList Names{"x"};
  const auto Cut = Make();
  Cut->Resources = &Names;
  Cut->OnCancel = [] { return true; };
  EXPECT_EQ(ErrorOf([&] { Export(*Cut); }), "EAbort: Export of localized strings is cancelled");
  Platform.Calls.FailAt = 2;
  Answer = 7;
  const auto Failing = Make();
  Failing->Resources = &Names;
  EXPECT_EQ(ErrorOf([&] { Export(*Failing); }), "EDatabaseError: GetString fails");
}

TEST_F(SectionBody, SingleLanguageOfSeveralSections) {
  TMemoryStrings& Store = Platform.Strings();
  Store.Put("K_ж", "", "E", "1");
  Store.Put("K_Ж", "x", "E", "#");
  Store.Put("OTHER", "y", "E", std::string(99'990, 'z'));
  Store.Put("OTHER", "n", "R", "in another language");
  TEISingleLResource Made;
  TEIOldSingleLResource Old;
  for (TEICommonSingleLResource* const Each :
       {static_cast<TEICommonSingleLResource*>(&Made), static_cast<TEICommonSingleLResource*>(&Old)}) {
    Each->SetSectionID("k_Ж_");
    Each->Language = "E";
    Each->SectionIDs = {"K_Ж", "OTHER"};
  }
  const std::string Long = "   OTHER_y = '" + std::string(99'976, 'z') + "@\n@" + std::string(14, 'z') + "'\n";
  EXPECT_EQ(Export(Made), WithLineEnds("    = '1'\n   _x = '#0023'\n" + Long));
  EXPECT_EQ(Export(Old), WithLineEnds("    = '1'\n   _x = '#23'\n" + Long));
  EXPECT_EQ(ErrorOf([&] { Import(Made, ""); }), "Exception: Importing ActiveXLocalizedResource's not supporting");
  for (const char* const Language : {"a b", "a=b"}) {
    Made.Language = Language;
    EXPECT_EQ(ErrorOf([&] { Export(Made); }), "ELUtilError: Can not export ActiveX local resource. Language '" +
                                                  std::string(Language) + "' contains incorrect symbols");
  }
}

TEST_F(SectionBody, Header) {
  const auto IDs = [](TEIObject& Object) {
    TEISectionParameters Parameters;
    Object.FillParameters(Parameters);
    return Parameters.Values("SectionID");
  };
  const auto Made = Make();
  TEISingleLResource Single;
  Single.SetSectionID("S");
  Made->SetSectionID("T"), Single.SetSectionID("T");
  EXPECT_EQ(IDs(*Made), "S");
  EXPECT_EQ(IDs(Single), "T");
  TEISection Header;
  Header.FParameters.AddParam("SectionID", "U");
  Made->Initialize(Header);
  EXPECT_EQ(Made->SectionID() + Made->ExportSectionID, "US");
}

}  // namespace
}  // namespace velkrund::tests

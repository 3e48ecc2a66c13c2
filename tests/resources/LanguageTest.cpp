#include "tests/resources/SectionFixture.h"
#include "velkrund/eif/TypeList.h"
#include "velkrund/resources/Registration.h"

namespace velkrund::tests {
namespace {

using Language = Section;

TEST_F(Language, IsWrittenAsItIs) {
  TEILanguage Made;
  Made.LanguageID = "fr";
  Made.DatabaseName = "db";
  TMemoryStrings& Store = Platform.Strings("db");
  Store.SetLanguage("FR", {"", " Français #", "it's"});
  EXPECT_EQ(Export(Made), WithLineEnds("  RussianName=\n  EnglishName= Français #\n  NativeName=it's\n"));
  Store.SetLanguage("fr", {"a", "b ", "c"});
  EXPECT_THAT(Export(Made), testing::HasSubstr("  EnglishName=b \r\n"));
  EXPECT_EQ(Losses, (TTextLosses{.Altered = 1}));
  Platform.WorkSettings.StrictText = true;
  EXPECT_THAT(ErrorOf([&] { Export(Made); }),
              testing::StartsWith("Exception: Can not export language resource. EnglishName of language fr ends with"));
  Store.SetLanguage("fr", {"a", "b", "c\rd"});
  EXPECT_EQ(ErrorOf([&] { Export(Made); }),
            "Exception: Can not export language resource. NativeName of language fr has a line end inside");
  Made.LanguageID = "de";
  EXPECT_EQ(ErrorOf([&] { Export(Made); }),
            "Exception: Can not export language resource. Language de not found in database db");
}

TEST_F(Language, IsReadWithLenience) {
  const std::string Begin = "Exception: Can not import language resource fr.";
  const struct {
    std::string Body, Result;  // "Russian|English|native", or an error
  } Cases[] = {
      {"", "||"},
      {"  RussianName=r\n  EnglishName=e\n  NativeName=n\n  more\n", "r|e|n"},
      {"  \trussianname:  r \n    englishname=Français\n  NATIVENAME\n", "  r|Français|"},
      {"  RussianNameж=r\n  EnglishName\n  NativeName=", "=r||"},
      {" RussianName=r\n", Begin},
      {"  EnglishName=e\n", Begin + " Invalid file format. RussianName not found"},
      {"  RussianName=r\nEnglishName=e\n", Begin + " Invalid file format"},
      {"  RussianName=r\n  EnglishName=e\n", Begin + " NativeName not found"},
      {"  RussianName=r\n  English=e\n", Begin + " Invalid file format. EnglishName not found"},
  };
  for (const auto& [Body, Result] : Cases) {
    Platform.Strings().Content = {};
    TEILanguage Made;
    Made.LanguageID = "fr";
    const std::string Lines = WithLineEnds(Body);
    const std::string Error = ErrorOf([&] { Import(Made, Lines); });
    TOneLanguage Record;
    EXPECT_EQ(Platform.Strings().GetLanguage("FR", Record), Error.empty() && !Body.empty());
    EXPECT_EQ(Error.empty() ? Record.RussianName + "|" + Record.EnglishName + "|" + Record.NativeName : Error, Result);
  }
}

TEST_F(Language, SectionClassesAreFoundByTypeAndVersion) {
  if (!EITypeList().Find("Language", 100)) RegisterResourceClasses();
  const struct {
    const char* Type;
    int Version;
    std::string Class;
    TSectionRole Role;
  } Cases[] = {{"localizedresource", 200, "TEILResource", TSectionRole::Resource},
               {"LocalizedResource", 100, "TEIOldLResource", TSectionRole::Resource},
               {"ActiveXLocalizedResource", 200, "TEISingleLResource", TSectionRole::SingleResource},
               {"ActiveXLocalizedResource", 100, "TEIOldSingleLResource", TSectionRole::SingleResource},
               {"Language", 100, "TEILanguage", TSectionRole::Language}};
  for (const auto& [Type, Version, Class, Role] : Cases) {
    const TEIObjectClass Found = EITypeList().Find(Type, Version);
    EXPECT_EQ(Found.Create()->ClassType().Name(), Class);
    EXPECT_EQ(Found.Role(), Role);
  }
  TEILanguage Made;
  Answers.Codes = {14};
  EXPECT_EQ(Made.AskOverwrite("fr"), 14);
  EXPECT_EQ(Answers.Questions.back(), "M_Catalox_LUtils_OverwriteLanguageConfirm fr");
}

}  // namespace
}  // namespace velkrund::tests

#include "jobs/application/DefaultTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <set>

#include "jobs/application/Application.h"
#include "tests/jobs/OwnTexts.h"
#include "tests/support/TemporaryFolder.h"
#include "velkrund/dialogs/Ynconf.h"
#include "velkrund/platform/lctrls/MessageBox.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

std::string WithLineEnds(std::string Text) {
  for (std::size_t At = 0; (At = Text.find('\n', At)) != std::string::npos; At += 2) Text.replace(At, 1, "\r\n");
  return Text;
}

const std::string Head =
    "\xEF\xBB\xBF\n[SECTION]\nEncoding = UTF8\n; a remark\nName = x\nVersion = 200\nType = LocalizedResource\n"
    "SectionID = M_A\n[DATA]\n [LANGUAGES]\n  English\n  Russian\n [STRINGS]\n";
const std::string Strings =
    "  Both:\n   English = 'a ' = #0041#D83D#DE00'\n   Russian = ''\n  Only:\n   russian = 'b'\n  None:\n";
const std::string Good = Head + Strings + "[END] \n\nelsewhere\n" + "[SECTION]\n" + Head.substr(Head.find("Enc")) +
                         "  Last:\n   English='z'\n[END]";

TEST(DefaultTexts, FoundByKeyInAnyCaseInTheLanguageElseInEnglish) {
  const TDefaultTexts Texts(WithLineEnds(Good));
  const struct {
    const char *Key, *Language;
    std::optional<std::string> Text;
  } Rows[] = {
      {"M_A_Both", "English", "a ' = A\xF0\x9F\x98\x80"},
      {"m_a_BOTH", "RUSSIAN", ""},
      {"M_A_Both", "French", "a ' = A\xF0\x9F\x98\x80"},
      {"M_A_Only", "Russian", "b"},
      {"M_A_Only", "English", std::nullopt},
      {"M_A_Last", "Russian", "z"},
      {"Last", "English", std::nullopt},
  };
  for (const auto& [Key, Language, Text] : Rows) EXPECT_EQ(Texts.Find(Key, Language), Text) << Key << Language;
}

TEST(DefaultTexts, AFileThatIsNotAsItHasToBeIsRefusedByLine) {
  const struct {
    const char *From, *To, *Says;
  } Rows[] = {
      {"UTF8", "ANSI", "Line 9: the section's Encoding has to be UTF8"},
      {"Version = 200", "Version = 100", "Line 9: the section has to be of Type LocalizedResource and Version 200"},
      {"= ''", "= 'a@", "Line 17: Can not import localized resource. Invalid tree data structure. '@' is missing"},
      {"#0041", "#00G1", "Line 15: Error importing localized resource. Invalid encoded char: $00G1."},
      {"#0041", "#41", "Line 15: "},
      {"a ' =", "a \xFF", "Line 15: The text is not valid UTF-8"},
      {"   Russian = ''", "   French = ''",
       "Line 16: Can not import localized resource. Error in strings section. The languages section lacks the language "
       "'French'"},
      {"  None:", "  oNLY:\n   Russian = 'c'",
       "Line 20: Can not import localized resource. Error in strings section. There is a second text"},
      {"  Last:", "  Both:", "Line 30: a second text of M_A_Both in the language 'English'"},
      {"\n[END]", "\nEND", "Line 3"},
  };
  for (const auto& [From, To, Says] : Rows) {
    std::string File = Good;
    const std::size_t At = std::string_view(Says).starts_with("Line 3") ? File.rfind(From) : File.find(From);
    ASSERT_NE(At, std::string::npos) << From;
    File.replace(At, std::string_view(From).size(), To);
    try {
      TDefaultTexts Texts(WithLineEnds(File));
      ADD_FAILURE() << "accepted: " << To;
    } catch (const ETextsError& Error) {
      EXPECT_THAT(Error.what(), testing::StartsWith("The file of texts cannot be used. " + std::string(Says)));
    }
  }
  EXPECT_THROW(TDefaultTexts(""), ETextsError);
  EXPECT_THROW(TDefaultTexts{Good}, ETextsError) << "line ends without carriage returns";
}

/// The letter that a caption marks; empty when it marks none.
std::string Mnemonic(const std::string& Caption) {
  const std::size_t Mark = Caption.find('&');
  if (Mark == std::string::npos || Mark + 1 == Caption.size()) return {};
  std::size_t End = Mark + 1;
  NextCodePoint(Caption, End);
  return LowerCase(Caption.substr(Mark + 1, End - Mark - 1));
}

TEST(OwnTexts, EveryDialogMarksAnotherLetterForEachAnswerAndLeavesThatOfCancelFree) {
  for (const char* const Language : {"English", "Russian"}) {
    const TOwnTexts Platform(Language);
    std::vector<std::unique_ptr<TForm>> Forms;
    Forms.push_back(std::make_unique<TYesNoConfirmationForm>());
    Forms.push_back(std::make_unique<TDSPConfirmForm>());
    Forms.push_back(std::make_unique<TOverwriteEIObjectForm>());
    Forms.push_back(std::make_unique<TOverwriteAskExForm>());
    Forms.push_back(std::make_unique<TMessageBoxForm>("", "", MB_YESNO));
    Forms.push_back(std::make_unique<TMessageBoxForm>("", "", 0U));
    for (const auto& Form : Forms) {
      std::set<std::string> Taken = {Mnemonic(Platform.LString("ST_CANCEL"))};
      for (const TLCaptioned* Control : Form->VisibleControls<TLCaptioned>()) {
        if (Control->CaptionKey() == "ST_CANCEL") continue;
        const std::string Letter = Mnemonic(Control->Caption());
        EXPECT_TRUE(!Letter.empty() && Taken.insert(Letter).second)
            << Form->ClassName() << " " << Control->Name() << " " << Control->Caption();
      }
      EXPECT_GT(Taken.size(), 1U) << Form->ClassName();
    }
  }
}

TEST(TextLanguage, FollowsTheSettingElseTheFirstVariableThatIsNotEmpty) {
  const struct {
    const char *Setting, *All, *Messages, *Lang, *Language;
  } Rows[] = {
      {"", "", "", "", "English"},      {"", "", "", "ru_RU.UTF-8", "Russian"}, {"", "", "ru", "C", "Russian"},
      {"", "C", "ru", "ru", "English"}, {"en", "ru_RU", "", "", "English"},     {"RU", "C", "", "", "Russian"},
  };
  for (const auto& [Setting, All, Messages, Lang, Language] : Rows) {
    setenv("LC_ALL", All, 1);
    setenv("LC_MESSAGES", Messages, 1);
    setenv("LANG", Lang, 1);
    EXPECT_EQ(TextLanguage(Setting), Language) << Setting << "|" << All << "|" << Messages << "|" << Lang;
  }
}

TEST(TextLanguage, IsThatOfTheApplicationsTexts) {
  const TTemporaryFolder Folder;
  for (const auto& [Setting, Yes] : {std::pair("ru", "&Да"), std::pair("en", "&Yes")}) {
    TApplicationOptions Options;
    Options.ConfigFile = Folder.Write("velkrund.toml", "language = \"" + std::string(Setting) + "\"\n");
    const TApplication Application(Options);
    EXPECT_EQ(BaseMng().LString("ST_YES"), Yes);
    EXPECT_EQ(BaseMng().LString("ST_UNHEARD_OF"), "ST_UNHEARD_OF");
  }
}

}  // namespace
}  // namespace velkrund::tests

#include <cstring>
#include <fstream>
#include <map>

#include "tests/cli/CommandTest.h"
#include "tests/roundtrip/TestDatabase.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

using TTexts = std::map<std::string, std::string>;  // by msgctxt and msgid

/// The texts of a compiled catalogue, as gettext's manual lays it out; nothing when there is none. Entries with plural
/// forms and the header are left out.
TTexts ReadCatalogue(const std::string& Path) {
  std::ifstream File(Path, std::ios::binary);
  const std::string Bytes((std::istreambuf_iterator<char>(File)), {});
  const auto Number = [&](std::size_t At) {
    std::uint32_t Result = 0;
    if (At + sizeof Result <= Bytes.size()) std::memcpy(&Result, &Bytes[At], sizeof Result);
    return Result;
  };
  TTexts Result;
  if (Number(0) != 0x950412DE) return Result;
  const auto Text = [&](std::size_t Entry) { return Bytes.substr(Number(Entry + 4), Number(Entry)); };
  for (std::size_t Index = 0; Index < Number(8); ++Index) {
    const std::string ID = Text(Number(12) + Index * 8), Translation = Text(Number(16) + Index * 8);
    if (!ID.empty() && ID.find('\0') == std::string::npos && IsStrictUtf8(Translation)) Result[ID] = Translation;
  }
  return Result;
}

/// Catalogues that other packages have put on this machine, in scripts of all kinds.
class TTranslationsTest : public TCommandTest, public testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    for (const char* Language : {"ru", "ja", "zh_CN", "ko", "ar", "he", "fa", "el", "th", "de", "uk"})
      for (const char* Domain : {"git", "binutils", "bfd", "gettext-runtime", "dpkg", "coreutils"}) {
        const TTexts Texts = ReadCatalogue(Format("/usr/share/locale/%s/LC_MESSAGES/%s.mo", Language, Domain));
        if (Texts.empty()) continue;
        if (std::find(Languages.begin(), Languages.end(), Language) == Languages.end()) Languages.push_back(Language);
        for (const auto& [ID, Translation] : Texts) Sections[Domain][ID][Language] = Translation;
      }
    if (Languages.size() < 3) GTEST_SKIP() << "no catalogues in /usr/share/locale";
  }

  static std::string Escaped(const std::string& Text) {
    std::string Result;
    for (const char Unit : Text) {
      const auto Code = static_cast<unsigned char>(Unit);
      char Escape[8];
      snprintf(Escape, sizeof Escape, "#%04X", Code);
      Result += Code < 0x20 || Code == 0x7F || Code == '#' ? Escape : std::string(1, Unit);
    }
    return Result;
  }

  /// Every text, also that of the program itself, in the form that an export of the store has.
  std::string File() const {
    std::string Result = "\xEF\xBB\xBF\r\n";
    for (const auto& [Domain, Strings] : Sections) {
      Result += "[SECTION]\r\nEncoding = UTF8\r\nName = " + Domain +
                "\r\nType = LocalizedResource\r\nVersion = 200\r\nSectionID = " + Domain +
                "\r\n[DATA]\r\n [LANGUAGES]\r\n  source\r\n";
      for (const std::string& Language : Languages) Result += "  " + Language + "\r\n";
      Result += " [STRINGS]\r\n";
      int Number = 0;
      for (const auto& [ID, Texts] : Strings) {
        Result += Format("  text%d:\r\n   source = '%s'\r\n", ++Number, Escaped(ID));
        for (const std::string& Language : Languages)
          if (const auto Text = Texts.find(Language); Text != Texts.end())
            Result += Format("   %s = '%s'\r\n", Language, Escaped(Text->second));
      }
      Result += "[END]\r\n";
    }
    return Result;
  }

  bool IsServer() const { return GetParam() == std::string("postgresql"); }

  std::vector<std::string> Languages;
  std::map<std::string, std::map<std::string, TTexts>> Sections;  // by domain, ID and language
  TTestDatabase Database = IsServer() ? PostgreSQLDatabase() : SQLiteDatabase(Path("t.db"));
};

INSTANTIATE_TEST_SUITE_P(Engines, TTranslationsTest, testing::Values("sqlite", "postgresql"),
                         [](const auto& Info) { return Info.param; });

TEST_P(TTranslationsTest, ComeBackByteForByte) {
  Write("texts", File());
  const TOutcome Import = Run({"import", "resources", "-d", Database.Url, "-i", "texts", "--add-languages"});
  ASSERT_EQ(Import.ExitCode, 0) << Import.Errors;
  EXPECT_EQ(Run({"export", "resources", "-d", Database.Url, "--all", "-o", "again"}).ExitCode, 0);
  EXPECT_TRUE(Read("again") == Read("texts")) << Read("again").size() << " and " << Read("texts").size();
  Query("empty.db", "CREATE TABLE t (i)");
  EXPECT_EQ(Run({"import", "resources", "-d", "sqlite:empty.db", "-i", "again", "--add-languages"}).ExitCode, 0);
  EXPECT_EQ(Run({"export", "resources", "-d", "sqlite:empty.db", "--all", "-o", "third"}).ExitCode, 0);
  EXPECT_TRUE(Read("third") == Read("texts"));
}

// Its code page has no letters of most scripts.
TEST_P(TTranslationsTest, OldVersionLosesNothingInSilence) {
  Write("texts", File());
  ASSERT_EQ(Run({"import", "resources", "-d", Database.Url, "-i", "texts", "--add-languages"}).ExitCode, 0);
  const TArguments Old = {"export", "resources", "-d", Database.Url, "--all", "--release", "rv17", "-o", "old"};
  const TOutcome Refused = Run(Old);
  EXPECT_EQ(Refused.ExitCode, 1);
  EXPECT_NE(Refused.Errors.find("--allow-loss"), std::string::npos) << Refused.Errors;
  EXPECT_FALSE(Exists("old"));
  TArguments Allowed = Old;
  Allowed.insert(Allowed.end(), {"--allow-loss"});
  EXPECT_GT(RunJson(Allowed)["charactersLost"], 0);
  // What was replaced is replaced for good: from here on nothing changes any more.
  Query("old.db", "CREATE TABLE t (i)");
  EXPECT_EQ(Run({"import", "resources", "-d", "sqlite:old.db", "-i", "old", "--add-languages"}).ExitCode, 0);
  const TOutcome Again =
      Run({"export", "resources", "-d", "sqlite:old.db", "--all", "--release", "rv17", "-o", "again"});
  EXPECT_EQ(Again.ExitCode, 0) << Again.Errors;
  EXPECT_TRUE(Read("again") == Read("old"));
}

}  // namespace
}  // namespace velkrund::tests

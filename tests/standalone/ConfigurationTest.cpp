#include "standalone/databases/Configuration.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <sstream>

#include "standalone/databases/StandaloneManager.h"
#include "tests/standalone/Support.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// Sets a variable of the environment, and how it was before again.
class TVariable {
 public:
  TVariable(const char* Name, const std::string& Value) : FName(Name) {
    if (const char* Before = std::getenv(Name)) FBefore = Before;
    setenv(Name, Value.c_str(), 1);
  }
  TVariable(const TVariable&) = delete;
  TVariable& operator=(const TVariable&) = delete;
  ~TVariable() { FBefore ? setenv(FName, FBefore->c_str(), 1) : unsetenv(FName); }

 private:
  const char* FName;
  std::optional<std::string> FBefore;
};

TEST(ConfigurationTest, ReadsEveryKey) {
  TTemporaryFolder Folder;
  const TVariable Password("VELKRUND_TEST_PASSWORD", "a}b${c");
  const TConfiguration Read = LoadConfiguration(Folder.Write("velkrund.toml", R"(
default_database = "shop"
code_page = 1250
strict_values = false
strict_text = true
work_as_17_version = true
language = "ru"
busy_seconds = 0.5
trace = { level = "info", file = "t.log" }
[database.shop]
url = "sqlite:shop.db"
[database."имя"]
url = "postgresql://u:${VELKRUND_TEST_PASSWORD}@h?password=${VELKRUND_TEST_PASSWORD}"
[database.whole]
url = "sqlite:${VELKRUND_TEST_PASSWORD}/@"
)"));
  EXPECT_EQ(Read.DefaultDatabase, "shop");
  EXPECT_EQ(Read.CodePage, 1250);
  EXPECT_FALSE(Read.StrictValues);
  EXPECT_TRUE(Read.StrictText);
  EXPECT_TRUE(Read.WorkAs17Version);
  EXPECT_EQ(Read.Language, "ru");
  EXPECT_EQ(Read.BusyTime, std::chrono::milliseconds(500));
  EXPECT_EQ(Read.TraceLevel, TTraceLevelSetting::Info);
  EXPECT_EQ(Read.TraceFile, Folder / "t.log");
  EXPECT_EQ(Read.Databases.at("shop").Url, "sqlite:shop.db");
  EXPECT_EQ(Read.Databases.at("имя").Url, "postgresql://u:a%7Db%24%7Bc@h?password=a%7Db%24%7Bc");
  EXPECT_EQ(Read.Databases.at("whole").Url, "sqlite:a}b${c/@");
}

/// The lines of a text that set a key, by the key.
std::map<std::string, std::string> KeyLines(const std::string& Text) {
  std::map<std::string, std::string> Result;
  std::istringstream Lines(Text);
  for (std::string Line; std::getline(Lines, Line);)
    if (const std::size_t Equals = Line.find(" = "); Equals != std::string::npos) Result[Line.substr(0, Equals)] = Line;
  return Result;
}

TEST(ConfigurationTest, TheExampleThatIsShippedShowsEveryKeyWithItsDefault) {
  const std::string Path = VELKRUND_SOURCE_DIR "/examples/velkrund.toml";
  const TConfiguration Read = LoadConfiguration(Path), Defaults;
  EXPECT_EQ(Read.Databases.at(Read.DefaultDatabase).Url, "sqlite:shop.db");
  EXPECT_EQ(Read.CodePage, Defaults.CodePage);
  EXPECT_EQ(Read.StrictValues, Defaults.StrictValues);
  EXPECT_EQ(Read.StrictText, Defaults.StrictText);
  EXPECT_EQ(Read.WorkAs17Version, Defaults.WorkAs17Version);
  EXPECT_EQ(Read.Language, Defaults.Language);
  EXPECT_EQ(Read.BusyTime, Defaults.BusyTime);
  EXPECT_EQ(Read.TraceLevel, Defaults.TraceLevel);

  std::ifstream File(Path);
  const std::string Text{std::istreambuf_iterator<char>(File), {}};
  const std::map<std::string, std::string> Shown = KeyLines(Text);
  TTemporaryFolder Folder;
  const std::string KnownAre = "known are ";
  int Keys = 0;
  for (const char* const Place : {"", "[trace]\n", "[database.x]\n"}) {
    const std::string Error =
        ErrorOf([&] { LoadConfiguration(Folder.Write("velkrund.toml", std::string(Place) + "none = 1")); });
    ASSERT_THAT(Error, HasSubstr(KnownAre));
    std::istringstream Known(Error.substr(Error.find(KnownAre) + KnownAre.size()));
    for (std::string Key; std::getline(Known >> std::ws, Key, ',');) {
      if (Text.find("[" + Key) != std::string::npos) continue;  // the name of a section
      ASSERT_TRUE(Shown.contains(Key)) << Key;
      EXPECT_TRUE(Key == "url" || Shown.at(Key).find("# ") != std::string::npos) << "not explained: " << Key;
      ++Keys;
    }
  }
  EXPECT_EQ(Keys, 11);
}

TEST(ConfigurationTest, SaysFileLineAndKeyOfWhatIsWrong) {
  struct TCase {
    const char* Content;
    const char* Error;  // behind the file's name
  };
  const TCase Cases[] = {
      {"\ndefault_databse = 'x'",
       ":2: key 'default_databse': the key is unknown; known are default_database, code_page, strict_values, "
       "strict_text, work_as_17_version, language, busy_seconds, trace, database; did you mean 'default_database'?"},
      {"default_database = 5", ":1: key 'default_database': a text is needed"},
      {"strict_values = 'yes'", ":1: key 'strict_values': true or false is needed"},
      {"code_page = 1200", ":1: key 'code_page': a code page of 1250 .. 1258 is needed"},
      {"busy_seconds = -1", ":1: key 'busy_seconds': a number of seconds of 0 .. 86400 is needed"},
      {"busy_seconds = nan", ":1: key 'busy_seconds': a number of seconds of 0 .. 86400 is needed"},
      {"trace = 'info'", ":1: key 'trace': a table is needed"},
      {"[trace]\nlevel = 'loud'", ":2: key 'trace.level': off, error, info or detail is needed, not 'loud'"},
      {"[trace]\nlevel = 'debug'\nfiel = 't'",
       ":3: key 'trace.fiel': the key is unknown; known are level, file; did you mean 'file'?"},
      {"[trace]\nlevel = 'Detial'",
       ":2: key 'trace.level': off, error, info or detail is needed, not 'Detial'; did you mean 'detail'?"},
      {"[database]\nshop = 'sqlite:x'", ":2: key 'database.shop': a table is needed"},
      {"[database.shop]", ":1: key 'database.shop': the key 'url' is missing"},
      {"[database.shop]\nurl = 'shop.db'",
       ":2: key 'database.shop.url': 'shop.db' is not a database address (SCHEME:...)"},
      {"[database.shop]\nurl = 'sqlite:x'\npasword = 'x'",
       ":3: key 'database.shop.pasword': the key is unknown; known are url"},
      {"strict_values = true\nstrict_values = ", ":2: "},
  };
  TTemporaryFolder Folder;
  for (const TCase& Case : Cases) {
    const std::string Path = Folder.Write("velkrund.toml", Case.Content);
    EXPECT_THAT(ErrorOf([&] { LoadConfiguration(Path); }), HasSubstr("EConfigurationError: " + Path + Case.Error));
    const TErrorInfo Info = InfoOf([&] { LoadConfiguration(Path); });
    EXPECT_EQ(Info.Code, TErrorCode::Configuration);
    EXPECT_EQ(Info.File, Path);
    EXPECT_THAT(Case.Error, StartsWith(":" + std::to_string(Info.Line) + ": "));
  }
  EXPECT_THAT(ErrorOf([&] { LoadConfiguration(Folder / "none.toml"); }), HasSubstr("there is no such file"));
}

TEST(ConfigurationTest, AVariableThatIsNotSetConcernsItsDatabaseAlone) {
  TTemporaryFolder Folder;
  const std::string Path = Folder.Write("velkrund.toml",
                                        "[database.office]\nurl = 'postgresql://u:${VELKRUND_TEST_UNSET}@h/office'\n"
                                        "[database.shop]\nurl = 'sqlite::memory:'\n");
  TStandaloneManager Manager(LoadConfiguration(Path));
  EXPECT_TRUE(Manager.Tables("shop").empty());
  EXPECT_EQ(ErrorOf([&] { Manager.Tables("office"); }),
            "EConfigurationError: " + Path +
                ":2: key 'database.office.url': the environment variable VELKRUND_TEST_UNSET is not set");
}

TEST(ConfigurationTest, IsLookedForFromTheNearestPlaceOn) {
  TTemporaryFolder Folder;
  std::filesystem::create_directories(Folder / "user/velkrund");
  std::filesystem::create_directories(Folder / "work");
  const std::filesystem::path Before = std::filesystem::current_path();
  std::filesystem::current_path(Folder / "work");
  {
    const TVariable User("XDG_CONFIG_HOME", Folder / "user");
    const TVariable Unset("VELKRUND_CONFIG", "");
    EXPECT_EQ(FindConfiguration(), std::nullopt);
    Folder.Write("user/velkrund/velkrund.toml", "");
    EXPECT_EQ(FindConfiguration(), Folder / "user/velkrund/velkrund.toml");
    Folder.Write("work/velkrund.toml", "");
    EXPECT_EQ(FindConfiguration(), "velkrund.toml");
    const TVariable Named("VELKRUND_CONFIG", "named.toml");
    EXPECT_EQ(FindConfiguration(), "named.toml");
    EXPECT_EQ(FindConfiguration("given.toml"), "given.toml");
  }
  std::filesystem::current_path(Before);
}

}  // namespace
}  // namespace velkrund::tests

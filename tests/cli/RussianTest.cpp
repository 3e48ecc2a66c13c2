#include <gmock/gmock.h>
#include <unistd.h>

#include <regex>
#include <sstream>

#include "tests/cli/ShopTest.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;

/// Somebody who has chosen Russian.
class TRussianTest : public TShopTest {
 protected:
  TRussianTest() { Write("velkrund.toml", "language = \"ru\"\n"); }

  /// A line of words between blanks.
  static TArguments Words(const std::string& Line) {
    std::istringstream Stream(Line);
    TArguments Result;
    for (std::string Word; Stream >> Word;) Result.push_back(Word);
    return Result;
  }
  /// The shop as it was at first, and what Lines of the command and a statement make of it.
  void Prepare(const TArguments& Lines, const std::string& Sql) {
    Write("shop.db", FShop);
    unlink(Path("F").c_str());
    for (const std::string& Line : Lines) EXPECT_EQ(Run(Words(Line)).ExitCode, 0) << Line;
    if (!Sql.empty()) Query("shop.db", Sql);
  }

 private:
  const std::string FShop = Read("shop.db");
};

const std::string Export = "export table -d sqlite:shop.db --all -o F";
const std::string Adopt = "dictionary adopt -d sqlite:shop.db --all";

/// What is asked, from Prompt to the answers, without the names in it: they stand in quotes, in front of a type, or are
/// types.
std::string WordsAsked(const std::string& Output, const std::string& Prompt) {
  const std::size_t Begin = Output.find(Prompt);
  if (Begin == std::string::npos) return "not asked: " + Output;
  const std::size_t End = Output.find(" ? ", Begin);
  return std::regex_replace(Output.substr(Begin, End - Begin), std::regex(R"('[^']*'|\w+ \(\d+\)|\(\w+Data\))"), "");
}

TEST_F(TRussianTest, QuestionsAreAskedInIt) {
  const struct {
    TArguments Before;
    std::string Sql, Line, Prompt;
  } Cases[] = {
      {{Export}, "", Export, "Раздел 'A' уже есть в 'F'. Заменить его?"},
      {{Export}, "", "import table -d sqlite:shop.db -i F", "В таблице 'A' 3 строки. Удалить их и поместить на их"},
      {{},
       "DELETE FROM B WHERE ID = 2",
       "copy table --from sqlite:shop.db --to sqlite:shop.db -t A --to-table B "
       "--missing-fields skip",
       "В таблице 'B' 1 строка. Удалить её и поместить"},
      {{}, "UPDATE A SET NAME = '東京'", Export + " --encoding ansi", "Продолжить со следующим?"},
      {{Export, Export + " --add"}, "", "file remove F --name A", "В 'F' несколько разделов с этим именем: раздел 0"},
      {{Adopt}, "", "dictionary drop -d sqlite:shop.db --name A", "Удалить структуру 'A' (тип 10)?"},
      {{Adopt}, "ALTER TABLE B ADD COLUMN MORE TEXT", Adopt, "Структура B (10) описывает то, что изменилось."},
      {{Export + " --structures"},
       "DROP TABLE A; DROP TABLE B",
       "import file -d sqlite:shop.db -i F",
       "Этих таблиц нет, но есть описывающие их структуры: 'A', 'B'. Создать их?"},
      {{Adopt}, "", "recreate table -d sqlite:shop.db A", "Таблица 'A' уже есть в базе данных. Пересоздать её?"},
      {{Adopt, Export + " --structures"}, "", "import structure -d sqlite:shop.db -i F", "Структура 'A' (тип 10)"},
  };
  for (const auto& [Before, Sql, Line, Prompt] : Cases) {
    Prepare(Before, Sql);
    const TOutcome Outcome = RunOnTerminal(Words(Line), " ? ", "\x04");
    const std::string Asked = WordsAsked(Outcome.Output, Prompt);
    EXPECT_FALSE(std::regex_search(Asked, std::regex("[A-Za-z]{2}"))) << Line << "\n" << Asked;
    EXPECT_EQ(Outcome.ExitCode, 3) << Line;
    EXPECT_THAT(Outcome.Output, HasSubstr("тменено")) << Line;
  }
}

TEST_F(TRussianTest, ReportsAreWrittenInIt) {
  const struct {
    TArguments Before;
    std::string Sql, Line, Says;
  } Cases[] = {
      {{}, "", Export, "экспортировано: таблица A, раздел 'A' (3 строки, "},
      {{}, "", Export, "\nвсего 2 раздела: 5 строк, "},
      {{Export}, "", "import table -d sqlite:shop.db -i F --replace", "; удалены 3 прежние строки\n"},
      {{Export}, "", Export + " --overwrite no", "пропущено: таблица A, раздел 'A' - раздел уже есть\n"},
      {{Export}, "", "file remove F 0", "удалено: раздел 0 'A' (TableData)\nостался 1 раздел\n"},
      {{Export}, "", "file check F", "проверено 2 раздела: 5 строк, "},
      {{}, "", Adopt, "добавлено: A (10)\nдобавлено: B (10)\nвсего 2 добавлено, 0 заменено"},
      {{Adopt}, "", "recreate table -d sqlite:shop.db A --overwrite yes", "пересоздано: A (10) (3 строки)\n"},
      {{}, "", Export + " --dry-run", "ничего не изменено: это был пробный запуск\n"},
      {{},
       "UPDATE A SET NAME = '東京'",
       Export + " --encoding ansi --on-error stop",
       "из 2 разделов: 1 не начато, 1 не"},
      {{Export},
       "CREATE TRIGGER ON_A AFTER INSERT ON A BEGIN SELECT 1; END",
       "import table -d sqlite:shop.db -i F --replace",
       "триггеры, которые могли выполниться: 'ON_A' таблицы 'A'\n"},
      {{Export}, "", "import table -d sqlite:none.db -i F --replace", "; --create создаёт её\n"},
  };
  for (const auto& [Before, Sql, Line, Says] : Cases) {
    Prepare(Before, Sql);
    EXPECT_THAT(Run(Words(Line)).Errors, HasSubstr(Says)) << Line;
  }
}

TEST_F(TRussianTest, DocumentsStayEnglish) {
  const struct {
    TArguments Before;
    std::string Line, People, Program;
  } Cases[] = {
      {{Export},
       "import table -d sqlite:shop.db -i F",
       "В таблице 'A' 3 строки, в таблице 'B' 2 строки. Укажите --rep",
       "Table 'A' has 3 rows, table 'B' has 2 rows. Give --replace to delete them first, or --append"},
      {{Export},
       Export,
       "Уже есть в 'F': раздел 'A', раздел 'B'. Укажите --overwrite yes, чтобы заменить",
       "Already in 'F': the section 'A', the section 'B'. Give --overwrite yes"},
      {{Export}, Export + " --overwrite no", "раздел уже есть", "\"reason\": \"the section is already there\""},
      {{Export + " --structures"},
       "import table -d sqlite:shop.db -i F --append --on-error stop",
       "пропущены 2 раздела файла 'F', в них нет данных таблицы: раздел 0 'A (10)' (DSPStructure), раздел 2",
       "left out 2 sections of 'F' without table data: section 0 'A (10)' (DSPStructure), section 2"},
  };
  for (const auto& [Before, Line, People, Program] : Cases) {
    Prepare(Before, "");
    const TOutcome Outcome = Run(Words(Line + " --json"));
    EXPECT_THAT(Outcome.Errors, HasSubstr(People)) << Line;
    EXPECT_THAT(Outcome.Output, HasSubstr(Program)) << Line;
    EXPECT_FALSE(std::regex_search(Outcome.Output, std::regex("[\xD0\xD1]"))) << Line << "\n" << Outcome.Output;
  }
}

}  // namespace
}  // namespace velkrund::tests

// Lists of tables whose rows the module's own operations copy, on the real platform.

#include "tests/roundtrip/CopyFixture.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Of the lists: p, q and r of both databases, each with its number as the only row, 10 more in the source.
class CopyTables : public TCopyFixture {
 protected:
  void Renew(const std::string& More = {}) {
    for (TTestDatabase* Database : {&Target, &Other}) {
      std::string Rows;
      for (const char* Table : {"p", "q", "r"})
        Rows += Format(
            "DROP TABLE IF EXISTS %s; CREATE TABLE %s (i integer PRIMARY KEY, n text CHECK (n <> 'bad'));"
            "INSERT INTO %s VALUES (%d, 'x');",
            Table, Table, Table, (Database == &Target ? 0 : 10) + Table[0] - 'o');
      Database->Run(Rows);
    }
    Target.Run(More);
    List.DatabaseName = Other.Url;
    List.TableNames = TStringList{"P", "", "Q", "R"};
    Person.Asked.clear();
  }
  std::string Keys() {
    std::string Result;
    for (const char* Table : {"p", "q", "r"}) Result += RowsOf(Target, Table, "i") + "|";
    return Result;
  }
};

INSTANTIATE_TEST_SUITE_P(Engines, CopyTables, testing::Values("sqlite", "postgresql"),
                         [](const auto& Info) { return Info.param; });

TEST_P(CopyTables, AnswersDecideAboutRowsThatAreThere) {
  constexpr int Yes = 6, No = 7, Cancel = 2, YesToAll = 14, NoToAll = 13;
  struct TCase {
    bool Asks, Usually;
    std::vector<int> Answers;
    std::size_t Questions;
    const char *Outcome, *Keys;
  };
  const TCase Cases[] = {
      {false, true, {}, 0, "1", "11 |12 |13 |"},
      {false, false, {}, 0, "1", "1 |2 |3 |"},
      {true, false, {Yes, Yes, Yes}, 3, "1", "11 |12 |13 |"},
      {true, true, {No, Yes, No}, 3, "1", "1 |12 |3 |"},
      {true, false, {No, YesToAll}, 2, "1", "1 |12 |13 |"},
      {true, true, {Yes, NoToAll}, 2, "1", "11 |2 |3 |"},
      {true, true, {Yes, Cancel}, 2, "0", "11 |2 |3 |"},
      {true, true, {99}, 1, "1", "1 |2 |3 |"},
      {true, true, {}, 1, "EQuestionUnanswered: nobody", "1 |2 |3 |"},
  };
  for (const TCase& Case : Cases) {
    SCOPED_TRACE(Format("case %d", &Case - Cases));
    Renew();
    List.OverWrite.FAlwaysAsk = Case.Asks;
    List.OverWrite.FYes = Case.Usually;
    Person.Answers = Case.Answers;
    EXPECT_EQ(Outcome(List), Case.Outcome);
    EXPECT_EQ(Keys(), Case.Keys);
    ASSERT_EQ(Person.Asked.size(), Case.Questions);
    for (const std::string& Question : Person.Asked)
      EXPECT_THAT(Question, testing::MatchesRegex("M_Velkrund_DicUtils_CopyOverwriteConfirm [PQR]"));
    EXPECT_EQ(List.OverWrite.FAlwaysAsk, Case.Asks) << "answers hold for one run";
  }
  // Nothing is asked about what is empty, or where the rows stay.
  Renew("DELETE FROM p; DELETE FROM q");
  Person.Answers = {No};
  EXPECT_EQ(Outcome(List), "1");
  EXPECT_THAT(Person.Asked, ElementsAre("M_Velkrund_DicUtils_CopyOverwriteConfirm R"));
  EXPECT_EQ(Keys(), "11 |12 |3 |");
  EXPECT_TRUE(List.Results().at(2).LeftAlone);
  Renew();
  List.Append = true;
  EXPECT_EQ(Outcome(List), "1");
  EXPECT_THAT(Person.Asked, IsEmpty());
  EXPECT_EQ(Keys(), "1 11 |2 12 |3 13 |");
}

TEST_P(CopyTables, AfterAnErrorAPersonSaysWhetherToGoOn) {
  for (const int Answer : {IDYES, IDNO, 0}) {
    Renew();
    Other.Run("UPDATE q SET n = 'y'; ALTER TABLE q RENAME n TO m; ALTER TABLE q ADD n text; UPDATE q SET n = 'bad'");
    Person.Answers = Answer == 0 ? std::vector<int>() : std::vector<int>{Answer};
    const std::string Result = Outcome(List);
    EXPECT_EQ(Result == "1", Answer == IDYES) << Result;
    EXPECT_EQ(Result.starts_with("EDatabaseError: "), Answer != IDYES) << Result;
    EXPECT_EQ(Result.find("nobody") != Result.npos, Answer == 0) << Result;
    EXPECT_EQ(Keys(), Answer == IDYES ? "11 |2 |13 |" : "11 |2 |3 |") << "tables before it stay copied";
    ASSERT_EQ(Person.Asked.size(), 1U);
    EXPECT_THAT(Person.Asked[0], testing::StartsWith("box M_Velkrund_DicUtils_ErrorOnCopyTable"));
    EXPECT_THAT(Person.Asked[0], testing::ContainsRegex("q(.|\r|\n)*\r\nM_Velkrund_DSPUtils_ContinueCopy"));
    EXPECT_TRUE(List.Results().at(1).Error);
  }
}

TEST_P(CopyTables, NamesAreMappedAndMissingTablesPassedOver) {
  Renew();
  Other.Run("ALTER TABLE p RENAME n TO m; UPDATE p SET m = 'p'; ALTER TABLE q RENAME n TO m; UPDATE q SET m = 'q'");
  List.TableNames = TStringList{"gone", "p", "q"};
  List.TableMapping = {{"P", "r"}};
  List.FieldMapping = {{"p.M", "n"}};
  EXPECT_EQ(Outcome(List), "1");
  EXPECT_EQ(RowsOf(Target, "p", "i, n") + RowsOf(Target, "q", "i, n") + RowsOf(Target, "r", "i, n"),
            "1,x 12,\\N 11,p ");
  EXPECT_FALSE(List.Results().at(0).Report.Opened);
  EXPECT_TRUE(List.Results().at(2).Report.Opened);
  Renew();
  List.SetCanceled(true);
  EXPECT_EQ(Outcome(List), "0");
  EXPECT_EQ(Keys(), "1 |2 |3 |");
}

}  // namespace
}  // namespace velkrund::tests

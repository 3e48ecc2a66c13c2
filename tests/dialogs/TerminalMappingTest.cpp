#include "tests/dialogs/MappingFixture.h"
#include "tests/dialogs/TerminalFixture.h"

namespace velkrund::tests {
namespace {

class TTerminalMapping : public TTerminalDialogs {
 protected:
  TTerminalMapping() {
    Tables.Connection->Execute("CREATE TABLE BOOKS (ID INTEGER, Title TEXT, PRICE REAL)");
    Tables.Connection->Execute("CREATE TABLE \"=\" (\"A=B\" TEXT, A TEXT, \"2\" TEXT, O TEXT, \"a\x1B[2J\" TEXT)");
  }
  TMappingPlatform Tables;
};

TEST_F(TTerminalMapping, LinesChooseByNumberOrName) {
  const TQueryTableMapping Books{"BOOKS", {}, false}, Odd{"=", {}, false};
  const std::vector<std::string> Files = {"#", "ID", "NAME", "name"}, OddFiles = {"B", "B=C", "C", "x\x1By", "2"};
  const std::string Cancelled = "2 BOOKS:", OddCancelled = "2 =:";
  struct TCase {
    std::vector<std::string> FileFields;
    TQueryTableMapping Preset;
    std::string Keys, Result;
  };
  const TCase Cases[] = {
      {Files, {}, "1=books\nok", "1 BOOKS: ID<-ID"},
      {Files, {}, "target TABLE = BOOKS\n3=NAME\nprice=name\no", "1 BOOKS: ID<-ID Title<-NAME PRICE<-name"},
      {Files, Books, "id=\ntitle=#\ne\no", "1 BOOKS: Title<-# <-ID emptied"},
      {Files, Books, "2\nPRICE\n\n?\nok", "1 BOOKS: ID<-ID"},
      // Nothing is done that is not clear: no such entry, no such value, one of two, half of a line.
      {Files, Books, "5=ID\nID2=NAME\n3=NAMES\n3=Name\n=ID\nok 3=NAME\ne x", Cancelled},
      {Files, {}, "ok", "2 :"},
      // Odd names: numbers win, each "=" may be the one that is meant, and controls are typed as they are shown.
      {OddFiles, Odd, "2=C\n4=B\no", OddCancelled},
      {OddFiles, Odd, "2=C\n4=B\nk", "1 =: A=B<-C 2<-B <-2"},
      {OddFiles, Odd, "A=C\n4=\nA=B=B=C\nk", "1 =: A=B<-B=C A<-C <-2"},
      {OddFiles, Odd, "A=B=C\n4=\nk", OddCancelled},
      {OddFiles, Odd, "4=\nA\\x1b[2j=X\\x1BY\nk", "1 =: a\x1B[2J<-x\x1By <-2"},
      {{"x"}, {}, "1==\n3=x\nk", "1 =: A<-x"},
  };
  for (const TCase& Case : Cases) {
    const auto Ask = [&Case] { return AskMapping(Case.FileFields, Case.Preset); };
    const std::string Cancel = Case.Result.starts_with("2 ") ? "\ncancel\n" : "\n";  // it has to be open still
    EXPECT_EQ(Answer(Ask, Case.Keys + Cancel), Case.Result) << Case.Keys;
    tcflush(FPerson, TCIFLUSH);  // nobody looks
  }
}

TEST_F(TTerminalMapping, TheFormLooksLikeThis) {
  const std::string Line = "  [o]k [c]ancel ( ) [e]mpty it first ? ";
  struct TCase {
    std::string Keys, Shown;
  };
  const std::string Without = "Rows of SELECT 1\r\n  1  Target table  <- BOOKS\r\nFields:\r\n";
  const std::string Form = Without + "  2  ID            <- ID\r\n";
  const std::string Rest = "  3  Title\r\n  4  PRICE\r\nNowhere: N\r\n", Hint = "(N=V)\r\n";
  const TCase Cases[] = {
      {"", Form + Rest + Hint + Line},
      {"3=n\n", Form + "  3  Title         <- N\r\n  4  PRICE\r\n" + Line},
      {"2=\nok\n", Without + "  2  ID\r\n  3  Title\r\n  4  PRICE\r\nNowhere: ID, N\r\nNo field\r\n" + Line},
      {"3=MN\n", "Title without MN. N?\r\n" + Line},
      {"TITEL=N\n", "No TITEL. Title?\r\n" + Line},
      {"prices\n", "No prices. PRICE?\r\n" + Line},
      {"3\n", "Title:\r\n  #   ID  N\r\n" + Line},
      {"\n", Form + Rest + Hint + Line + Form + Rest + Hint + Line},
  };
  const auto Ask = [] { return AskMapping({"#", "ID", "N"}, {"BOOKS", {}, false}); };
  for (const TCase& Case : Cases) {
    EXPECT_EQ(Answer(Ask, Case.Keys + "c\n"), "2 BOOKS:");
    const std::string Shown = Seen(Case.Shown);
    EXPECT_TRUE(Shown.ends_with(Case.Shown)) << Case.Keys << Shown;
  }
}

TEST_F(TTerminalMapping, OfALongFormOnlyWhatChangedIsShownAgain) {
  std::string Columns = "C1 TEXT";
  for (int I = 2; I <= 100; ++I) Columns += ", C" + std::to_string(I) + " TEXT";
  Tables.Connection->Execute("CREATE TABLE WIDE (" + Columns + ")");
  Answer([] { return AskMapping({"N", "M", "C7"}, {"WIDE", {}, false}); }, "C100=N\nc\n");
  const std::string Last = "  [o]k [c]ancel ( ) [e]mpty it first ? ";
  const std::string Changed = Last + "  101  C100          <- N\r\nNowhere: M\r\n" + Last;
  const std::string Shown = Seen(Changed);
  EXPECT_TRUE(Shown.ends_with(Changed)) << Shown;
  EXPECT_NE(Shown.find("    8  C7            <- C7\r\n"), std::string::npos) << Shown;
}

}  // namespace
}  // namespace velkrund::tests

#include <gtest/gtest.h>

#include <functional>

#include "velkrund/platform/installation/Platform.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/InstalledService.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund::tests {
namespace {

TEST(Format, FillsPlaceholdersInOrder) {
  const std::string Name = "N%s";
  const std::pair<std::string, const char*> Rows[] = {
      {Format("OT:%d;ON:'%s'", 12, Name), "OT:12;ON:'N%s'"},
      {Format("%s and %s", "text", std::string_view("view")), "text and view"},
      {Format("%d %s", std::int64_t{-9'000'000'000}, 7u), "-9000000000 7"},
      {Format("100%% of %d", 5), "100% of 5"},
      {Format("%s %s %d", 1), "1 %s %d"},
      {Format("surplus", 1, "x"), "surplus"},
      {Format("%x %", "a"), "%x %"},
      {Format("%%s%s", "a"), "%sa"},
      {Format(""), ""},
  };
  for (const auto& [Result, Expected] : Rows) EXPECT_EQ(Result, Expected);
}

// What is in a name must not rule the terminal, nor look like another name.
TEST(Printable, ShowsWhatNobodySees) {
  const struct {
    std::string_view Text, Shown, OnOneLine;
  } Cases[] = {
      {"a\tb\r\nc\nd\re", "a\tb\nc\nd\\x0De", "a\tb\\x0Ac\\x0Ad\\x0De"},
      {"\x1B[31m\x7F", "\\x1B[31m\\x7F", "\\x1B[31m\\x7F"},
      {"\xFF\xE2\x80z", "\\xFF\\xE2\\x80z", "\\xFF\\xE2\\x80z"},
      {"\xC2\x85\xC2\x9B|", "\\u0085\\u009B|", "\\u0085\\u009B|"},
      {"fi\u202Eeli\u202C", "fi\\u202Eeli\\u202C", "fi\\u202Eeli\\u202C"},
      {"\u200E\u200F\u2066\u2069\u061C\uFEFF", "\\u200E\\u200F\\u2066\\u2069\\u061C\\uFEFF",
       "\\u200E\\u200F\\u2066\\u2069\\u061C\\uFEFF"},
      {"\u200D\u202F\u2065\u206A\uFFFDЖ😀", "\u200D\u202F\u2065\u206A\uFFFDЖ😀", "\u200D\u202F\u2065\u206A\uFFFDЖ😀"},
      {"\xED\xA0\x80\xED\xBF\xBF", "\\uD800\\uDFFF", "\\uD800\\uDFFF"},
  };
  for (const auto& Case : Cases) {
    EXPECT_EQ(Printable(Case.Text), Case.Shown);
    EXPECT_EQ(OnOneLine(Case.Text), Case.OnOneLine);
    EXPECT_EQ(Printable(Printable(Case.Text)), Case.Shown) << "what is shown already stays";
  }
}

TEST(Wording, TakesTheFormThatTheNumberNeeds) {
  constexpr const char* Two = "row|rows";
  constexpr const char* Three = "строка|строки|строк";
  const struct {
    const char* Forms;
    const char* Form;
    std::vector<std::int64_t> Counts;
  } Rows[] = {
      {Two, "row", {1}},
      {Two, "rows", {0, 2, 11, 21, 101, -1, INT64_MIN}},
      {Three, "строка", {1, 21, 101, 1'000'001, -1}},
      {Three, "строки", {2, 3, 4, 22, 34, 102, -2}},
      {Three, "строк", {0, 5, 9, 10, 11, 12, 14, 19, 20, 25, 111, 112, 114, 211, 1'000'000, -11, INT64_MIN}},
      {"file", "file", {0, 1, 2, 5}},
      {"", "", {0, 1, 5}},
  };
  for (const auto& [Forms, Form, Counts] : Rows)
    for (const std::int64_t Count : Counts) EXPECT_EQ(FormFor(Count, Forms), Form) << Count;
}

TEST(Nearest, NamesWhatWasMeantAndGuessesNothingElse) {
  const std::vector<std::string> Names = {"LINES",   "ORDERS", "ORDERS_OLD", "A",
                                          "Клиенты", "shop",   "yes",        "CUSTOMER_ADDRESSES"};
  const std::pair<const char*, const char*> Rows[] = {
      {"ORDRES", "ORDERS"},
      {"orders_odl", "ORDERS_OLD"},
      {"ORDER", "ORDERS"},
      {"LNIES", "LINES"},
      {"клиенти", "Клиенты"},
      {"КЛЕНТЫ", "Клиенты"},
      {"shpo", "shop"},
      {"SHOP", "shop"},
      {"a", "A"},
      {"yse", "yes"},
      {"CUSTMER_ADRESES", "CUSTOMER_ADDRESSES"},
      {"cust", "CUSTOMER_ADDRESSES"},
      {"B", ""},
      {"", ""},
      {"no", ""},
      {"maybe", ""},
      {"кл", ""},
      {"STAFF", ""},
      {"ship\xFF", "shop"},
  };
  for (const auto& [Text, Meant] : Rows) EXPECT_EQ(Nearest(Text, Names), Meant) << Text;
  EXPECT_EQ(ContentHint("lins", {"LINES", "B"}, ": it has "), ": it has LINES, B; did you mean 'LINES'?");
  EXPECT_EQ(ContentHint("lins", std::vector<std::string>(100, "LINES"), ": it has "), "; did you mean 'LINES'?");
  EXPECT_EQ(ContentHint("lins", {}, ": it has "), "");
  EXPECT_EQ(ContentHint("zzz", std::vector<std::string>(100, "L"), ": it has ").substr(0, 14), ": it has L, L,");
}

TEST(Nearest, IsQuickAmongManyAndLongNames) {
  std::vector<std::string> Names(5'000, std::string(900, 'x'));
  Names.push_back(std::string(899, 'x') + "y");
  EXPECT_EQ(Nearest(std::string(898, 'x') + "y", Names), Names.back());
  EXPECT_EQ(Nearest(std::string(10'000'000, 'x'), Names), "");
}

/// Throws errors innermost first, each around the one before, and describes what comes out.
std::string Describe(const std::vector<std::function<void()>>& Throwers) {
  std::exception_ptr Current;
  for (const auto& Thrower : Throwers) {
    try {
      if (!Current) Thrower();
      try {
        std::rethrow_exception(Current);
      } catch (...) {
        Thrower();
      }
    } catch (...) {
      Current = std::current_exception();
    }
  }
  try {
    std::rethrow_exception(Current);
  } catch (const std::exception& Error) {
    return Kv_FullExceptionInfo(Error);
  }
}

TEST(Exceptions, DescribesTheWholeChainOfCauses) {
  const auto Disk = [] { throw EWriteError("disk full"); };
  const auto Foreign = [] { throw std::out_of_range("index"); };
  const auto Number = [] { throw 5; };
  const auto ForeignAround = [] { std::throw_with_nested(std::logic_error("around")); };
  const auto Around = [] { std::throw_with_nested(EDatabaseError("row 3")); };
  const auto Plain = [] { throw EAbort("stop"); };
  EXPECT_EQ(Describe({Disk}), "EWriteError: disk full");
  EXPECT_EQ(Describe({Foreign}), "std::out_of_range: index");
  EXPECT_EQ(Describe({Disk, ForeignAround, Around}),
            "EDatabaseError: row 3\r\nstd::logic_error: around\r\nEWriteError: disk full");
  EXPECT_EQ(Describe({Number, Around}), "EDatabaseError: row 3\r\nunknown: an error that is not a std::exception");
  EXPECT_EQ(Describe({Disk, Plain}), "EAbort: stop");
  EXPECT_EQ(Describe({Around}), "EDatabaseError: row 3");
}

TEST(Platform, NamesWhatIsNotInstalledAndRestoresWhatWas) {
  class TNone final : public TWindowSystem {
   public:
    int ShowModal(TForm&) override { return mrNone; }
  };
  TNone Outer;
  TNone Inner;
  EXPECT_EQ(&Windows(), &NobodyAtTheScreen());
  {
    const TPlatformGuard OuterGuard({nullptr, nullptr, &Outer});
    {
      const TServiceGuard<TWindowSystem> InnerGuard(&Inner);
      EXPECT_EQ(&Windows(), &Inner);
    }
    EXPECT_EQ(&Windows(), &Outer);
    EXPECT_THROW(ExtCalls(), EAccessViolation);
    try {
      BaseMng();
      FAIL();
    } catch (const EAccessViolation& Error) {
      EXPECT_STREQ(Error.what(), "No application manager is installed");
    }
  }
  EXPECT_EQ(&Windows(), &NobodyAtTheScreen());
  EXPECT_EQ(WorkSettings().AnsiCodePage->Number(), 1251);
}

}  // namespace
}  // namespace velkrund::tests

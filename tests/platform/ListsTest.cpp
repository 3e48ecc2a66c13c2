#include <gtest/gtest.h>

#include <thread>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/ParamsList.h"
#include "velkrund/platform/ormtools/StringLists.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

std::vector<std::string> Items(const TStringList& List) { return {List.begin(), List.end()}; }

TEST(StringList, SortsByLowerCasedCodePointsThenByCodePoints) {
  TStringList List{"b", "Я", "_x", "A", "a", "B", "ё", "a", "я", "Z", "ab"};
  List.Sort();
  EXPECT_EQ(Items(List), (std::vector<std::string>{"_x", "A", "a", "a", "ab", "B", "b", "Z", "Я", "я", "ё"}));
  EXPECT_EQ(List.IndexOf("AB"), 4);
  EXPECT_EQ(List.IndexOf("Ё"), 10);
  EXPECT_EQ(List.IndexOf("absent"), -1);
  EXPECT_THROW(List[11], EListError);
  EXPECT_THROW(List[-1], EListError);
}

TEST(StringList, FindsTheFirstOfANameHoweverLongItIs) {
  TStringList List;
  for (int Number = 0; Number < 2000; ++Number) {
    List.Add("Имя" + std::to_string(Number / 2));
    EXPECT_EQ(List.IndexOf("иМЯ" + std::to_string(Number / 2)), Number / 2 * 2);
    EXPECT_EQ(List.IndexOf("Имя" + std::to_string(Number / 2 + 1)), -1);
  }
  List.Sort();
  const TStringList Copy = List;
  List.Clear();
  EXPECT_EQ(List.IndexOf("Имя0"), -1);
  for (int Index = 0; Index < Copy.Count(); ++Index) EXPECT_EQ(Copy.IndexOf(Copy[Index]), Index / 2 * 2);
}

TEST(StringList, SortsStablyAndStaysAsItWasWhenTheComparerFails) {
  const auto ByNumber = [](const TStringList& List, int A, int B) {
    const auto Number = [&](int Index) {
      const auto Value = StrToInt32(std::string_view(List[Index]).substr(0, 2));
      return Value ? *Value : throw EConvertError(List[Index]);
    };
    return Number(A) - Number(B);
  };
  TStringList List{"30a", "04b", "30c", "04d", "11e"};
  List.CustomSort(ByNumber);
  const std::vector<std::string> Sorted{"04b", "04d", "11e", "30a", "30c"};
  EXPECT_EQ(Items(List), Sorted);
  List.Add("bad");
  List.Add("00");
  EXPECT_THROW(List.CustomSort(ByNumber), EConvertError);
  EXPECT_EQ(List.Count(), 7);
  EXPECT_EQ(List[5] + List[6], "bad00");
  EXPECT_EQ(std::vector<std::string>(List.begin(), List.begin() + 5), Sorted);
}

std::string Joined(const TKvParamsList& List) {
  std::string Text;
  for (const auto& [Name, Value] : List.Pairs()) Text += Name + "=" + Value + ";";
  return Text;
}

TEST(ParamsList, KeepsNamesSortedAndUnique) {
  TKvParamsList List;
  for (const char* Name : {"b", "C", "a", "b"}) List.Add(Name, std::string(Name) + std::to_string(List.Count()));
  EXPECT_EQ(Joined(List), "C=C1;a=a2;b=b3;");
  EXPECT_EQ(List.Find("a"), "a2");
  EXPECT_EQ(List.Find("c"), std::nullopt);
  EXPECT_EQ(List.Value("c", "default"), "default");
  List.SetReversed(true);
  EXPECT_EQ(Joined(List), "b=b3;a=a2;C=C1;");
  List.Add("aa", "");
  EXPECT_EQ(Joined(List), "b=b3;aa=;a=a2;C=C1;");
  EXPECT_TRUE(List.Remove("a"));
  EXPECT_FALSE(List.Remove("a"));
  List.SetReversed(false);
  EXPECT_EQ(Joined(List), "C=C1;aa=;b=b3;");
  List.Clear();
  EXPECT_EQ(List.Count(), 0);
}

TEST(ParamsList, AComparerDecidesWhatOneNameIs) {
  TKvParamsList List(CompareText, true);
  List.Add("Б", "1");
  List.Add("а", "2");
  List.Add("б", "3");
  EXPECT_EQ(Joined(List), "Б=3;а=2;");
}

TEST(ParamsList, AnnouncesReplacementsAndLetsTheEventUseTheList) {
  TKvParamsList List;
  std::string Seen;
  List.SetOnChange([&](std::string_view Name, std::string_view Old, std::string_view New) {
    Seen += std::string(Name) + ":" + std::string(Old) + ">" + std::string(New) + "@" + List.Value(Name) + ";";
    List.Remove(Name);
    List.Add("0", "made by the event");
  });
  List.Add("n", "1");
  EXPECT_EQ(Seen, "");
  List.Add("n", "2");
  EXPECT_EQ(Seen, "n:1>2@1;");
  EXPECT_EQ(Joined(List), "0=made by the event;n=2;");
}

TEST(ParamsList, ServesSeveralThreads) {
  TKvParamsList List;
  std::vector<std::thread> Threads;
  for (int Thread = 0; Thread < 4; ++Thread)
    Threads.emplace_back([&, Thread] {
      for (int Index = 0; Index < 500; ++Index) {
        List.Add(std::to_string(Index), std::to_string(Thread));
        List.Add("own" + std::to_string(Thread), std::to_string(Index));
        if (Index % 50 == 0) List.SetReversed(Thread % 2 == 0);
      }
    });
  for (std::thread& Thread : Threads) Thread.join();
  List.SetReversed(false);
  EXPECT_EQ(List.Count(), 504);
  for (int Thread = 0; Thread < 4; ++Thread) EXPECT_EQ(List.Value("own" + std::to_string(Thread)), "499");
}

}  // namespace
}  // namespace velkrund::tests

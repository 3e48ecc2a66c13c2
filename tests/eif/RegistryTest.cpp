#include <gtest/gtest.h>

#include <limits>

#include "tests/eif/TextSection.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

template <typename TError>
std::string MessageOf(const std::function<void()>& Action) {
  try {
    Action();
  } catch (const TError& Error) {
    return Error.what();
  }
  return "no error";
}

TEST(Parameters, NamesAreUniqueWithoutCase) {
  TEISectionParameters Parameters;
  Parameters.AddParam("Имя", "1");
  EXPECT_EQ(MessageOf<EEIError>([&] { Parameters.AddParam("ИМЯ", "2"); }), "Parameter 'ИМЯ' is already exist");
  EXPECT_EQ(MessageOf<EEIError>([&] { Parameters.Values("x"); }), "Parameter '%s' not found");
  EXPECT_EQ(MessageOf<EEIError>([&] { Parameters.SetValues("x", "1"); }), "Parameter 'x' not found");
  Parameters.SetValues("имя", "3");
  EXPECT_EQ(Parameters.ParamValues(0), "3");
  Parameters.DeleteParam(0);
  EXPECT_EQ(Parameters.Count(), 0);
  EXPECT_THROW(Parameters.DeleteParam(0), EListError);
}

TEST(Parameters, ManyBehaveAsFew) {
  constexpr int Many = 1000;
  TEISectionParameters Parameters;
  std::vector<std::pair<std::string, std::string>> Expected;
  for (int Number = 0; Number < Many; ++Number) {
    Expected.emplace_back("Имя" + std::to_string(Number), std::string(static_cast<std::size_t>(Number % 40), 'v'));
    Parameters.AddParam(Expected.back().first, Expected.back().second);
    EXPECT_THROW(Parameters.AddParam("ИМЯ" + std::to_string(Number), ""), EEIError);
  }
  for (int Number = Many - 1; Number >= 0; Number -= 7) {
    Parameters.SetValues("имЯ" + std::to_string(Number), Expected[static_cast<std::size_t>(Number)].second = "set");
    if (Number % 3 != 0) continue;
    Parameters.DeleteParam(Number);
    Expected.erase(Expected.begin() + Number);
  }
  Parameters.Pack();
  ASSERT_EQ(Parameters.Count(), static_cast<int>(Expected.size()));
  for (int Index = 0; Index < Parameters.Count(); ++Index) {
    const auto& [Name, Value] = Expected[static_cast<std::size_t>(Index)];
    EXPECT_EQ(Parameters.ParamNames(Index), Name);
    EXPECT_EQ(Parameters.ParamValues(Index), Value);
    EXPECT_EQ(Parameters.IndexOf(UpperCase(Name)), Index);
  }
}

TEST(TypeList, FindsByNameAndVersionInOrder) {
  static const TEIObjectDescriptor Old{"Old", nullptr, "Table", 100, TSectionRole::TableData, nullptr, nullptr};
  static const TEIObjectDescriptor Range{
      "Range", &Old, "TABLE", 200, TSectionRole::TableData, [](int Version) { return Version >= 100; }, nullptr};
  TEITypeList List;
  for (const TEIObjectDescriptor* Each : {&Old, &Range, &Old}) List.RegisterEIObject(TEIObjectClass(*Each));
  EXPECT_EQ(List.Find("table", 100), TEIObjectClass(Old));
  EXPECT_EQ(List.Find("table", 150), TEIObjectClass(Range));
  EXPECT_FALSE(List.Find("table", 99));
  EXPECT_FALSE(List.Find("tables", 100));
  List.UnregisterEIObject(TEIObjectClass(Old));
  EXPECT_EQ(List.Count(), 2);
  EXPECT_EQ(List.IndexOf(TEIObjectClass(Old)), 1);
  EXPECT_EQ(List.Find("table", 100), TEIObjectClass(Range));
  EXPECT_TRUE(TEIObjectClass(Range).InheritsFrom(TEIObjectClass(Old)));
  EXPECT_FALSE(TEIObjectClass(Old).InheritsFrom(TEIObjectClass(Range)));
  EXPECT_THROW(TEIObjectClass(Old).Create(), EAccessViolation);
}

TEST(Progress, LargeTotalsAreMillionths) {
  const struct {
    std::int64_t Current, Total;
    std::int32_t ExpectedCurrent, ExpectedTotal;
  } Cases[] = {
      {5, 10, 5, 10},
      {0, std::numeric_limits<std::int32_t>::max(), 0, std::numeric_limits<std::int32_t>::max()},
      {3'000'000'000, 6'000'000'000, 500'000, 1'000'000},
      {1, 2'147'483'648, 0, 1'000'000},
  };
  for (const auto& Case : Cases) {
    TTextSection Section;
    std::pair<std::int32_t, std::int32_t> Seen;
    Section.OnProgress = [&](std::int32_t Current, std::int32_t Total, std::string_view) { Seen = {Current, Total}; };
    Section.ShowProgress(Case.Current, Case.Total, "x");
    EXPECT_EQ(Seen, std::make_pair(Case.ExpectedCurrent, Case.ExpectedTotal));
  }
}

TEST(SectionList, FindsTheFirstOfAName) {
  TEISectionList List;
  TEISection& First = List.AddSection();
  First.FName = "Same";
  List.AddSection().FName = "SAME";
  EXPECT_EQ(List.FindByName("same"), &First);
  EXPECT_EQ(First.Position, -1);
  TEISection& Inserted = List.InsertSection(0);
  EXPECT_EQ(List.IndexOf(First), 1);
  EXPECT_EQ(List.IndexOf(Inserted), 0);
  const TEISection Foreign;
  EXPECT_EQ(List.IndexOf(Foreign), -1);
}

TEST(IntegerListOrder, IsNumericAndRefusesTexts) {
  TStringList List{"10", "9", "-1"};
  List.CustomSort(CompareIntStringList);
  EXPECT_EQ(std::vector<std::string>(List.begin(), List.end()), (std::vector<std::string>{"-1", "9", "10"}));
  EXPECT_EQ(CompareIntStringList(List, 0, 0), 0);
  List.Add("x");
  EXPECT_THROW(List.CustomSort(CompareIntStringList), EConvertError);
}

}  // namespace
}  // namespace velkrund::tests

#include "jobs/policies/LongNames.h"

#include <gtest/gtest.h>

#include "tests/jobs/OwnTexts.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund::tests {
namespace {

TEST(LongNames, AreKeptOrNotAsThePolicySays) {
  constexpr int Nobody = 0;
  const struct {
    TLongNamePolicy Policy;
    int Answer;  // to "cancel?"
    bool Makes;
    int Asked;
  } Cases[] = {
      {TLongNamePolicy::Keep, IDYES, true, 0},  {TLongNamePolicy::Cancel, IDNO, false, 0},
      {TLongNamePolicy::Ask, IDYES, false, 2},  {TLongNamePolicy::Ask, IDNO, true, 2},
      {TLongNamePolicy::Keep, Nobody, true, 0}, {TLongNamePolicy::Ask, Nobody, false, 0},
  };
  const TOwnTexts Platform("English");
  const std::string Long(31, 'N'), Short(30, 'N');
  const auto Named = [](const std::string& Name) {
    TDicTableDescription Result;
    Result.Name = Name;
    return Result;
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(static_cast<int>(Case.Policy) * 10 + Case.Answer);
    int Asked = 0;
    TUtilOperationsMessageBox Answering;
    if (Case.Answer != Nobody)
      Answering = [&](TWindowHandle, std::u16string_view, std::u16string_view, std::uint32_t, std::int32_t,
                      std::int32_t) { return ++Asked, Case.Answer; };
    const TMessageBoxGuard Hook(Answering);
    TLongNames Names(Case.Policy);
    EXPECT_TRUE(Names.MayMakeTable(Named(Short)));
    EXPECT_TRUE(Names.MayMakeView(Short));
    if (Case.Policy == TLongNamePolicy::Ask && Case.Answer == Nobody) {
      EXPECT_THROW(Names.MayMakeTable(Named(Long)), EPolicyUnanswered);
      EXPECT_THROW(Names.MayMakeView(Long), EPolicyUnanswered);
    } else {
      EXPECT_EQ(Names.MayMakeTable(Named(Long)), Case.Makes);
      EXPECT_EQ(Names.MayMakeView(Long), Case.Makes);
    }
    EXPECT_EQ(Asked, Case.Asked);
    std::vector<TLText> Notes;
    Names.AddNote(Notes);
    EXPECT_EQ(EnglishOf(Notes), Case.Makes
                                    ? std::vector{"2 names are longer than some databases take: " + Long + ", " + Long}
                                    : std::vector<std::string>());
  }
}

}  // namespace
}  // namespace velkrund::tests

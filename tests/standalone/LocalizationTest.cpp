// Languages and localized strings, as every engine keeps them.

#include "tests/standalone/LocalizationFixture.h"

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class LocalizationTest : public LocalizationFixture {};

INSTANTIATE_TEST_SUITE_P(Engines, LocalizationTest, testing::ValuesIn(Engines()),
                         [](const auto& Info) { return Info.param.Name; });

TEST_P(LocalizationTest, LanguagesAreFoundIgnoringCaseAndKeepTheirOrder) {
  TLanguagesTable& Languages = User.Languages();
  Languages.SetLanguage("Ёлка", {"а", "b", "c"});
  Languages.SetLanguage("ENGLISH", {"английский", "English", ""});
  TStringList Names;
  Languages.FillLanguageNames(Names);
  EXPECT_THAT(Names.Items(), ElementsAre("English", "Russian", "Ёлка"));
  TOneLanguage Record;
  ASSERT_TRUE(Languages.GetLanguage("ёЛКА", Record));
  EXPECT_EQ(Record, (TOneLanguage{"а", "b", "c"}));
  ASSERT_TRUE(Languages.GetLanguage("english", Record));
  EXPECT_EQ(Record, (TOneLanguage{"английский", "English", ""}));
  EXPECT_FALSE(Languages.GetLanguage("French", Record));
  EXPECT_EQ(Record.EnglishName, "English") << "it stays as it was";
  EXPECT_FALSE(Languages.DeleteLanguage("French"));
}

TEST_P(LocalizationTest, StringsComeInTheOrderInWhichTheyWereFirstWritten) {
  User.Write("S", "English", {{"S_b", "B"}, {"S_a", "A"}});
  User.Write("S", "Russian", {{"S_only", "Только"}, {"s_B", "Б"}, {"S_Ж", "Ж"}, {"S", "нет имени"}});
  User.Write("S", "English", {{"S_c", "C"}, {"S_B", "B2"}, {"S_C", "C2"}});
  EXPECT_THAT(User.Section("s", {"english", "Nowhere", "Russian"}),
              ElementsAre("b: B2 - Б", "a: A - -", "c: C2 - -", "only: - - Только", "Ж: - - Ж", ": - - нет имени"));
  EXPECT_THAT(User.Section("S_", {"Nowhere", "Russian", "RUSSIAN"}),
              ElementsAre("b: - Б Б", "only: - Только Только", "Ж: - Ж Ж", ": - нет имени нет имени"));
  EXPECT_THAT(User.Section("S", {}), IsEmpty());
  TStringList Names;
  User.Strings().FillResNames("S", "RUSSIAN", Names);
  EXPECT_THAT(Names.Items(), ElementsAre("b", "only", "Ж", ""));
  EXPECT_EQ(User.Strings().GetString("s_ж", "Russian"), "Ж");
  EXPECT_EQ(User.Strings().GetString("S", "Russian"), "нет имени");
}

TEST_P(LocalizationTest, SectionsDoNotHoldStringsOfOthers) {
  User.Write("K_A", "English", {{"K_A_X", "1"}, {"K_A_B", "2"}});
  User.Write("K_A_B", "English", {{"K_A_B_Y", "3"}, {"K_A_B_Z", "4"}});
  EXPECT_THAT(User.SectionList(), ElementsAre("K_A 2 2", "K_A_B 2 2"));
  EXPECT_THAT(User.Section("K_A", {"English"}), ElementsAre("X: 1", "B: 2"));
  // A string goes to the section that it is written in.
  User.Write("K_A_b", "Russian", {{"K_A_B", "два"}});
  EXPECT_THAT(User.Section("K_A", {"English"}), ElementsAre("X: 1"));
  EXPECT_THAT(User.Section("K_A_B", {"English", "Russian"}), ElementsAre(": 2 два", "Y: 3 -", "Z: 4 -"));
  User.Write("K_A", "English", {{"K_A_B_Y", "5"}});
  EXPECT_THAT(User.Section("K_A", {"English"}), ElementsAre("X: 1", "B_Y: 5"));
  EXPECT_THAT(User.SectionList(), ElementsAre("K_A 2 2", "K_A_B 2 3"));
  EXPECT_EQ(User.Strings().SectionOf("k_a_b_y"), "K_A");
  EXPECT_EQ(User.Strings().SectionOf("K_A_B_"), std::nullopt);
}

TEST_P(LocalizationTest, WithoutALockAStringGoesToTheLongestSectionThereIs) {
  User.Write("K_A", "English", {{"K_A_X", "1"}});
  User.Write("K_A_B", "English", {{"K_A_B_X", "1"}});
  const struct {
    const char *ID, *Section, *Name;
  } Cases[] = {{"K_A_B_C", "K_A_B", "C"}, {"k_a_b", "K_A_B", ""}, {"K_A_BC", "K_A", "BC"},
               {"K_A_B_x", "K_A_B", "X"}, {"M_N_O", "M_N", "O"},  {"K_A_C_D_E", "K_A", "C_D_E"},
               {"OK", "OK", ""},          {"_OK", "_OK", ""}};
  for (const auto& Case : Cases) {
    User.Strings().WriteString(Case.ID, "Russian", Case.ID);
    EXPECT_EQ(User.Strings().SectionOf(Case.ID), Case.Section) << Case.ID;
    EXPECT_THAT(User.Section(Case.Section, {"Russian"}), testing::Contains(Case.Name + std::string(": ") + Case.ID));
  }
}

TEST_P(LocalizationTest, AnEmptyTextIsNoAbsentOne) {
  TLocalizatorTable& Strings = User.Strings();
  EXPECT_EQ(Strings.GetString("S_a", "English"), AbsentText);
  User.Write("S", "English", {{"S_a", ""}});
  EXPECT_EQ(Strings.GetString("S_a", "English"), "");
  EXPECT_TRUE(Strings.StringExist("S_a", "English"));
  EXPECT_EQ(Strings.GetString("S_a", "Russian"), AbsentText);
  EXPECT_EQ(Strings.GetString("S_a", "Nowhere"), AbsentText);
  EXPECT_THAT(User.Section("S", {"Russian", "English"}), ElementsAre("a: - "));
}

TEST_P(LocalizationTest, UnderALockWhatIsWrittenIsSeenAtOnce) {
  User.Write("S", "English", {{"S_a", "1"}});
  TLocalizatorTable& Strings = User.Strings();
  Strings.Lock("S", "English");
  EXPECT_TRUE(Strings.StringExist("S_A", "English"));
  EXPECT_FALSE(Strings.StringExist("S_B", "English"));
  Strings.WriteString("S_b", "English", "2");
  Strings.WriteString("S_b", "English", "3");
  Strings.WriteString("S_a", "English", "4");
  Strings.WriteString("S_a", "English", "5");
  EXPECT_TRUE(Strings.StringExist("S_B", "English"));
  EXPECT_EQ(Strings.GetString("S_B", "English"), "3");
  EXPECT_EQ(Strings.GetString("S_A", "English"), "5");
  Strings.WriteString("S_a", "Russian", "не под замком");
  Strings.WriteString("S_c", "Russian", "то же");
  Strings.WriteString("S_c", "English", "6");
  EXPECT_THAT(ErrorOf([&] { Strings.Lock("S", "Russian"); }), HasSubstr("section 'S' is locked in language 'English'"));
  EXPECT_THAT(ErrorOf([&] { Strings.UnLock("S", "Russian"); }), HasSubstr("section 'S' is locked in language"));
  EXPECT_TRUE(Strings.DeleteString("S_B"));
  EXPECT_FALSE(Strings.StringExist("S_b", "English"));
  Strings.WriteString("S_b", "English", "again");
  Strings.UnLock("S", "English");
  EXPECT_THAT(User.Section("S", {"English", "Russian"}), ElementsAre("a: 5 не под замком", "c: 6 то же", "b: again -"));
}

TEST_P(LocalizationTest, WhatCannotBeWrittenIsNamed) {
  TLocalizatorTable& Strings = User.Strings();
  const bool HasNul = User.Connection().Capabilities().NulInText;
  const auto Write = [&](std::string_view Text, const char* Language = "English") {
    return ErrorOf([&] { Strings.WriteString("S_a", Language, Text); });
  };
  for (const bool Locked : {false, true}) {
    if (Locked) Strings.Lock("S", "English");
    EXPECT_THAT(Write(AbsentText), HasSubstr("The text of the string 'S_a' in language 'English'"));
    EXPECT_THAT(Write("a\xFF"), HasSubstr("'S_a' in language 'English' has bytes that are no UTF-8"));
    EXPECT_EQ(Write(std::string_view("a\0b", 3)) == "no error", HasNul);
    EXPECT_EQ(Write("\xED\xA0\x80") == "no error", HasNul);
    EXPECT_THAT(Write("a", "Dutch"), HasSubstr("no language 'Dutch': add it first"));
    if (Locked) Strings.UnLock("S", "English");
  }
  EXPECT_THAT(ErrorOf([&] { Strings.Lock("S", "Dutch"); }), HasSubstr("no language 'Dutch': add it first"));
  EXPECT_FALSE(User.Manager.Databases().IsInTransaction(Url));
  EXPECT_THAT(ErrorOf([&] { User.Languages().SetLanguage("a\xFF", {}); }), HasSubstr("The name of the language"));
}

TEST_P(LocalizationTest, ARollBackTakesEverythingBack) {
  TDatabases& Databases = User.Manager.Databases();
  User.Write("S", "English", {{"S_a", "1"}});
  for (const bool IsPart : {false, true}) {
    SCOPED_TRACE(IsPart);
    if (IsPart) {
      Databases.StartTransaction(Url, TIsolationLevel::RepeatableRead);
      User.Write("S", "English", {{"S_kept", "3"}});
    }
    Databases.StartTransaction(Url, TIsolationLevel::ReadCommitted);
    User.Languages().SetLanguage("Dutch", {});
    User.Write("S", "English", {{"S_a", "2"}, {"S_b", "2"}});
    User.Write("S", "Dutch", {{"S_b", "2"}});
    User.Strings().DeleteString("S_a");
    User.Strings().Lock("S", "Russian");
    User.Strings().WriteString("S_b", "Russian", "2");
    Databases.RollbackTransaction(Url);
    User.Strings().UnLock("S", "Russian");
    if (IsPart) {
      // What was known of the part is forgotten.
      User.Write("S", "English", {{"S_b", "4"}});
      Databases.CommitTransaction(Url);
    }
    EXPECT_FALSE(User.Languages().LanguageExist("Dutch"));
  }
  EXPECT_THAT(User.Section("S", {"English", "Russian"}), ElementsAre("a: 1 -", "kept: 3 -", "b: 4 -"));
}

TEST_P(LocalizationTest, ALanguageGoesWithItsTextsAndTheStringsThatHaveNoOthers) {
  User.Write("S", "English", {{"S_a", "1"}, {"S_b", "2"}});
  User.Write("S", "Russian", {{"S_b", "3"}, {"S_c", "4"}});
  EXPECT_EQ(User.Languages().TextCount("english"), 2);
  EXPECT_TRUE(User.Languages().DeleteLanguage("ENGLISH"));
  EXPECT_FALSE(User.Languages().LanguageExist("English"));
  EXPECT_EQ(User.Languages().TextCount("English"), 0);
  EXPECT_THAT(User.SectionList(), ElementsAre("S 2 2"));
  EXPECT_EQ(User.Strings().SectionOf("S_a"), std::nullopt);
  User.Languages().SetLanguage("English", {});
  EXPECT_THAT(User.Section("S", {"English", "Russian"}), ElementsAre("b: - 3", "c: - 4"));
}

TEST_P(LocalizationTest, ManyStringsAreDeletedAsOne) {
  constexpr int Count = 1'200;
  std::vector<std::pair<std::string, std::string>> Texts;
  for (int I = 0; I < Count; ++I) Texts.emplace_back("S_" + std::to_string(I), std::to_string(I));
  User.Write("S", "English", Texts);
  User.Write("S", "Russian", Texts);
  TStoreUser Other(Url);
  User.Strings().BeginUpdate();
  User.Strings().BeginUpdate();
  for (int I = 0; I < Count - 1; ++I)
    EXPECT_TRUE(User.Strings().DeleteString(Texts[static_cast<std::size_t>(I)].first));
  EXPECT_FALSE(User.Strings().DeleteString("S_1"));
  EXPECT_FALSE(User.Strings().DeleteString("S_1198"));
  User.Strings().EndUpdate();
  EXPECT_EQ(User.Strings().GetString("S_1198", "English"), AbsentText);
  User.Strings().WriteString("S_1198", "English", "new");
  EXPECT_TRUE(Other.Strings().StringExist("S_1", "English"));
  User.Strings().EndUpdate();
  EXPECT_THAT(Other.Section("S", {"English", "Russian"}), ElementsAre("1199: 1199 1199", "1198: new -"));
  EXPECT_EQ(User.Rows("velkrund_texts"), 3);
  EXPECT_EQ(User.Rows("velkrund_strings"), 2);
  EXPECT_TRUE(User.Store.CreateLocalizator(Url)->DeleteString("s_1199"));
  EXPECT_FALSE(User.Store.CreateLocalizator(Url)->DeleteString("S_1199"));
}

TEST_P(LocalizationTest, NothingIsMadeInADatabaseThatIsOnlyRead) {
  const TTemporaryFolder Elsewhere;
  const TAddressed Empty = GetParam().Address(Elsewhere);
  TStoreUser Reader(Empty.Url);
  TOneLanguage Record;
  EXPECT_FALSE(Reader.Languages().LanguageExist("English"));
  EXPECT_FALSE(Reader.Languages().GetLanguage("English", Record));
  EXPECT_FALSE(Reader.Languages().DeleteLanguage("English"));
  EXPECT_EQ(Reader.Languages().TextCount("English"), 0);
  EXPECT_EQ(Reader.Strings().GetString("S_a", "English"), AbsentText);
  EXPECT_THAT(Reader.Section("S", {"English"}), IsEmpty());
  EXPECT_THAT(Reader.SectionList(), IsEmpty());
  EXPECT_FALSE(Reader.Strings().DeleteString("S_a"));
  EXPECT_EQ(Reader.Strings().SectionOf("S_a"), std::nullopt);
  EXPECT_THAT(ErrorOf([&] { Reader.Strings().Lock("S", "English"); }), HasSubstr("no language 'English'"));
  EXPECT_FALSE(Reader.Connection().Schema().HasCatalogueTable("velkrund_catalogue"));
}

// Pages, strings of other sections between them, and texts of very different sizes.
TEST_P(LocalizationTest, LongSectionsAreReadWhole) {
  constexpr int Count = 1'500;
  const std::string Long(100'000, 'x');
  User.Manager.Databases().StartTransaction(Url, TIsolationLevel::ReadCommitted);
  for (const char* Language : {"English", "Russian"})
    for (const int Half : {0, 1})
      for (const std::string Section : {"S", "T"}) {
        User.Strings().Lock(Section, Language);
        for (int I = Half * Count / 2; I < (Half + 1) * Count / 2; ++I)
          if (I % 3 != (Language[0] == 'E' ? 0 : 1))
            User.Strings().WriteString(Section + "_" + std::to_string(I), Language,
                                       I % 50 == 0 ? Long : std::to_string(I) + Language[0]);
        User.Strings().UnLock(Section, Language);
      }
  User.Manager.Databases().CommitTransaction(Url);
  const auto Expect = [&](int First, int Second, const TStringList& Languages) {
    const std::unique_ptr<TSectionTexts> Texts = User.Strings().ReadSection("T", Languages);
    EXPECT_EQ(Texts->Count(), Count);
    std::vector<int> Order;
    // Those that have the first language come first, and of them those that English has.
    for (const int Of : {1, 0})
      for (const bool HasEnglish : {true, false})
        for (int I = 0; I < Count; ++I)
          if ((I % 3 != First) == (Of == 1) && (I % 3 != 0) == HasEnglish) Order.push_back(I);
    int Wrong = 0;
    for (const int I : Order) {
      if (!Texts->Next() || Texts->Name() != std::to_string(I)) {
        ++Wrong;
        continue;
      }
      for (const int L : {0, 1}) {
        const auto Text = Texts->Text(L);
        Wrong += Text.has_value() != (I % 3 != (L == 0 ? First : Second));
        if (Text && *Text != (I % 50 == 0 ? Long : std::to_string(I) + Languages[L][0])) ++Wrong;
      }
    }
    EXPECT_EQ(Wrong, 0);
    EXPECT_FALSE(Texts->Next());
  };
  Expect(0, 1, {"English", "Russian"});
  Expect(1, 0, {"Russian", "English"});
}

}  // namespace
}  // namespace velkrund::tests

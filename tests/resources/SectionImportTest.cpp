#include <algorithm>

#include "tests/resources/SectionFixture.h"

namespace velkrund::tests {
namespace {

using SectionImport = Section;

const std::string Head = " [LANGUAGES]\n  E\n  R\n [STRINGS]\n";

TEST_F(SectionImport, EveryErrorSaysWhereItStands) {
  const std::string Begin = "ELUtilError: Can not import localized resource. ";
  const std::string InStrings = Begin + "Error in strings section. ";
  const std::string InTree = Begin + "Invalid tree data structure. ";
  const struct {
    std::string Body;     // up to the line with the error; more lines follow
    std::string Message;  // "%" stands for what tells where
  } Cases[] = {
      {"x\n", "Languages section not found"},
      {" [LANGUAGES]\n  E\n", "Strings section not found"},
      {" [LANGUAGES]\n E\n", Begin + "Error in languages section. Leading spaces not found%"},
      {Head + " N:\n", InStrings + "Leading spaces not found%"},
      {Head + "  N\n", InStrings + "':' not found%"},
      {Head + "   \n", InStrings + "':' not found%"},
      {Head + "  N:\n E = ''\n", InStrings + "Leading spaces not found%"},
      {Head + "  N:\n   E = ''\n  M\n", InStrings + "':' not found%"},
      {Head + "  N:\n  \n", InStrings + "':' not found%"},
      {Head + "  N:\n   E = ''\n  M@\n", InStrings + "':' not found%"},
      {Head + "  N:\n   E = 'a@\n b'\n", InTree + "'@' is missing%"},
      {Head + "  N:\n   E = '\n", InStrings + "Invalid text value%"},
      {Head + "  N:\n   E = 'a\n", InStrings + "Invalid text value%"},
      {Head + "  N:\n   E = a'\n", InStrings + "Invalid text value%"},
      {Head + "  N:\n   E\n", InStrings + "Invalid text value%"},
      {Head + "  N:\n   E = '#00G1'\n",
       "ELUtilError: Error importing localized resource. Invalid encoded char: $00G1."},
      {Head + "  N:\n   F = ''\n",
       InStrings + "The languages section lacks the language 'F'%. Allow losses to pass over its texts"},
      {Head + "  N:\n   E = 'a'\n   e = 'b'\n",
       InStrings + "There is a second text of 'N' in the language 'E'%. Allow losses to take the last one"},
      {Head + "  N:\n   E = '#001'\n",
       InStrings + "The end of a text cuts an escape off%. Allow losses to read it without"},
      {Head + "  N:\n   E = '#0000'\n",
       InStrings + "A text is the character 0 alone, which stands for none%. Allow losses to leave it out"},
  };
  Platform.WorkSettings.StrictText = true;
  Platform.Strings().Put("S", "x", "E", "y");
  for (const auto& [Body, Message] : Cases) {
    const std::string Failing = WithLineEnds(Body);
    const bool NeedsEnd = Message.find(": ") == std::string::npos;
    std::string Expected = NeedsEnd ? Begin + Message + ". SectionID:'S'" : Message;
    if (const std::size_t At = Expected.find('%'); At != std::string::npos)
      Expected.replace(At, 1, " (Position:" + std::to_string(Before.size() + Failing.size()) + "). SectionID:'S'");
    const std::string More = Body.ends_with("M@\n") ? "@:\r\n" : "  Z:\r\n   E = 'z'\r\n";
    EXPECT_EQ(ErrorOf([&] { Import(*Make(), NeedsEnd ? Failing : Failing + More); }), Expected) << Body;
  }
  const std::string Cut = WithLineEnds(Head + "  N:\n   E = 'a@\n@b@\n");
  EXPECT_EQ(ErrorOf([&] { Import(*Make(), Cut); }),
            InTree + "Unexpected end of strings section (Position:" + std::to_string(Before.size() + Cut.size()) +
                "). SectionID:'S'");
  const auto Lines = Make();
  Lines->StrictLines = true;
  EXPECT_THAT(ErrorOf([&] { Import(*Lines, WithLineEnds(Head) + "  a\nb:\r\n"); }), testing::HasSubstr("A line feed"));
  EXPECT_EQ(Texts(), "S_x.E=y ") << "nothing is written before all is read";
}

TEST_F(SectionImport, OldTextsAreBytesOfTheCodePage) {
  const struct {
    const char *Text, *Read;  // an error where it has a colon
  } Cases[] = {{"#C6#d6A#23", "ЖЦA#"},
               {"Ж\x7F\xE4\xB8\xAD", "Ж\x7F\xE4\xB8\xAD"},
               {"a#", "a"},
               {"a#0", "a"},
               {"a\tb", "Invalid character (#9) in string constant."},
               {"#4Gx", "Invalid character (#$4G) in string constant."}};
  for (const auto& [Text, Read] : Cases) {
    Platform.Strings().Content = {};
    Platform.Strings().SetLanguage("E", {});
    const std::string Error = ErrorOf([&, Written = Text] {
      Import(*Make(true), WithLineEnds(Head.substr(0, 17) + " [STRINGS]\n  N:\n   E = '") + Written + "'\r\n");
    });
    if (std::string_view(Read).starts_with("Inv"))
      EXPECT_EQ(Error, "ELUtilError: Error importing localized resource. " + std::string(Read));
    else
      EXPECT_EQ(Error + Texts(), "S_N.E=" + std::string(Read) + " ");
  }
  EXPECT_EQ(Losses.Altered, 2) << "the escapes that are cut off";
}

TEST_F(SectionImport, WhatIsNotAsWrittenIsReadWhereLossesAreAllowed) {
  const std::string Body =
      "skipped\n [LANGUAGES] too\n  E \n  R\n  e\n [STRINGS] too\n   N:\n    e='a#1'\n   F = no value\n   = 'x'\n   R "
      "='='\n"
      "  n:\n\n";
  Platform.Strings().Put("S", "", "R", "r");
  Platform.Strings().Put("S", "", "E", "e");
  const auto Made = Make();
  Import(*Made, WithLineEnds(Body.substr(0, Body.size() - 1) +
                             "   E = '#D83D#DE00\t#0041'\n  :\n   R = '#00'\n   E = '#0000'\n"));
  EXPECT_EQ(Texts(), "S.R= S.E=e S_N.R== S_N.E=\xF0\x9F\x98\x80\tA ");
  EXPECT_EQ(Losses.Altered, 6);
}

TEST_F(SectionImport, LanguagesAndNamesThatAreWanted) {
  const std::string Body = WithLineEnds(Head + "  a:\n   E = '1'\n   R = '2'\n  b:\n   E = '3'\n   R = '4'\n");
  TStringList Russian{"r", "x"}, Listed;
  const TStringList Names{"B"};
  for (const char* const Language : {"E", "R"}) Platform.Strings().SetLanguage(Language, {});
  const auto Made = Make();
  Made->Languages = &Russian;
  Made->Resources = &Names;
  Import(*Made, Body);
  EXPECT_EQ(Texts(), "S_b.R=4 ");
  const TLResourceReport& Report = Made->Report();
  EXPECT_TRUE(Report.Strings == 1 && Report.Texts == 1 && Report.OtherLanguages == 2 && Report.OtherNames == 1);
  EXPECT_EQ(Platform.Calls.Log, (std::vector<std::string>{"lock S R", "unlock S R"}));
  EXPECT_EQ(Platform.Log, (std::vector<std::string>{"start", "commit"}));

  TLSection Memory;
  Memory.AddLanguage("gone");
  Made->LSection = &Memory;
  Import(*Made, Body);
  ASSERT_EQ(Memory.GetCount(), 1);
  EXPECT_EQ(Memory.GetLanguages(0), "R");
  EXPECT_EQ(Memory.GetResByIndex(0).Entries().size(), 2U) << "the names are those of the database's strings";
  EXPECT_EQ(Texts(), "S_b.R=4 ");

  Made->ReadLanguagesOnly = true;
  Made->Languages = &Listed;
  Import(*Made, Body);
  EXPECT_EQ(Listed.Items(), (std::vector<std::string>{"E", "R"}));
  Made->Languages = nullptr;
  EXPECT_EQ(ErrorOf([&] { Import(*Made, Body); }),
            "ELUtilError: Can not import localized resource. Languages not assigned for storing language list. "
            "SectionID:'S'");
}

TEST_F(SectionImport, AnswersToTheQuestion) {
  const std::string Body = WithLineEnds(Head + "  a:\n   E = '1'\n   R = '1'\n  b:\n   E = '1'\n  c:\n   E = '1'\n");
  const struct {
    std::vector<int> Codes;
    bool Yes;  // before
    const char* Result;
    std::size_t Questions;
    bool AsksAgain;
  } Cases[] = {
      {{6}, false, "1 1 1 1 ", 3, true},       {{7}, true, "0 0 0 1 ", 3, true},
      {{6, 7, 6}, false, "1 1 0 1 ", 3, true}, {{14}, false, "1 1 1 1 ", 1, false},
      {{13}, true, "0 0 0 1 ", 1, false},      {{7, 14}, false, "0 1 1 1 ", 2, false},
      {{6, 2}, true, "1 0 0 1 ", 2, false},    {{7, 99}, true, "0 0 0 1 ", 2, false},
  };
  for (const auto& Case : Cases) {
    Platform.Strings().Content = {};
    for (const char* const Place : {"aE", "aR", "bE"}) Platform.Strings().Put("S", {Place, 1}, Place + 1, "0");
    Answers.Codes = Case.Codes;
    Answers.Questions.clear();
    TYesNoCancelAsk Shared;
    Shared.FYes = Case.Yes;
    Shared.FAlwaysAsk = true;
    const auto Made = Make();
    Made->SetOverwriteAsk(Shared);
    Import(*Made, Body);
    std::string Values;
    for (const TMemoryStrings::TString& String : Platform.Strings().Content.Strings)
      for (const auto& [Language, Text] : String.Texts) Values += Text + " ";
    EXPECT_EQ(Values, Case.Result);
    EXPECT_EQ(Answers.Questions.size(), Case.Questions);
    EXPECT_EQ(Shared.FAlwaysAsk, Case.AsksAgain);
    EXPECT_EQ(Made->Report().Texts, std::count(Values.begin(), Values.end(), '1'));
    EXPECT_EQ(Made->Report().LeftAlone, std::count(Values.begin(), Values.end(), '0'));
  }
  EXPECT_EQ(Answers.Questions.front(), "M_Catalox_LUtils_OverwriteCopyLSectionsConfirm S_a");
}

TEST_F(SectionImport, AnAnswerThatIsThereAlreadyHolds) {
  const std::string Body = WithLineEnds(Head + "  a:\n   E = '1'\n");
  const struct {
    bool Yes, Cancel;
    const char* Result;
  } Cases[] = {{true, false, "S_a.E=1 "}, {false, false, "S_a.E=0 "}, {true, true, "S_a.E=0 "}};
  for (const auto& [Yes, Cancel, Result] : Cases) {
    Platform.Strings().Put("S", "a", "E", "0");
    const auto Made = Make();
    Made->OverwriteAsk().FYes = Yes;
    Made->OverwriteAsk().FCancel = Cancel;
    Import(*Made, Body);
    EXPECT_EQ(Texts(), Result);
    EXPECT_EQ(Made->Stopped(), Cancel);
    EXPECT_EQ(Made->LeftAlone(), !Yes);
  }
  EXPECT_TRUE(Make()->OverwriteAsk().FYes && !Make()->OverwriteAsk().FAlwaysAsk);
}

TEST_F(SectionImport, CancelledOrFailedAnywhereNothingStays) {
  const std::string Body = WithLineEnds(Head + "  a:\n   E = '1'\n   R = '1'\n  b:\n   R = '1'\n  c:\n   E = '1'\n");
  Platform.Strings().Put("S", "a", "R", "0");
  Platform.Strings().Put("S", "b", "E", "0");
  const TMemoryStrings::TContent Content = Platform.Strings().Content;
  const std::string Untouched = Texts();
  int Ended = 0;
  for (const bool Fails : {false, true})
    for (int Moment = 1; Moment < 100; ++Moment) {
      Platform.Strings().Content = Content;
      Platform.Calls.Log.clear();
      Platform.Calls.FailAt = Fails ? Moment : 0;
      Answers.Codes = {6};
      const auto Made = Make();
      Made->OverwriteAsk().FAlwaysAsk = true;
      int Polled = 0;
      Made->OnCancel = [&] { return !Fails && ++Polled == Moment; };
      const std::string Error = ErrorOf([&] { Import(*Made, Body); });
      EXPECT_EQ(std::count_if(Platform.Calls.Log.begin(), Platform.Calls.Log.end(),
                              [](const std::string& Line) { return Line.starts_with("un"); }) *
                    2,
                static_cast<std::ptrdiff_t>(Platform.Calls.Log.size()));
      if (!Made->Stopped() && Error.empty()) {
        Ended += Moment;
        break;
      }
      EXPECT_EQ(Error.empty(), !Fails);
      EXPECT_EQ(Texts(), Untouched) << Moment;
    }
  EXPECT_EQ(Ended, 9 + 11) << "3 names, 4 texts, and the end; 2 locks, 4 looks, 4 writes";
  Answers.Codes.clear();
  Platform.Calls.FailAt = 0;
  Platform.Strings().Content = Content;
  const auto Made = Make();
  Made->OverwriteAsk().FAlwaysAsk = true;
  EXPECT_THAT(ErrorOf([&] { Import(*Made, Body); }), testing::StartsWith("EAbort"));
  EXPECT_EQ(Texts(), Untouched) << "a person has cancelled at a question";
}

}  // namespace
}  // namespace velkrund::tests

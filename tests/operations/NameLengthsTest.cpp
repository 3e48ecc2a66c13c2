#include <gtest/gtest.h>

#include "tests/support/TestPlatform.h"
#include "velkrund/operations/Comutils.h"
#include "velkrund/platform/dictionary/DicDatabase.h"
#include "velkrund/platform/dictionary/Dictionary.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund::tests {
namespace {

enum class TStructure { None, Unreadable, Plain, AutoKey };

class TTexts : public TTestPlatform {
 public:
  std::string LString(std::string_view Key) const override { return Text.empty() ? std::string(Key) : Text; }
  std::string Text;
};

/// One table of the database "db" may have a structure, whose name is in upper case.
class NameLengths : public testing::Test, public TDSPContainer, public TDSPTable, public TDictionary, public TDicTable {
 protected:
  TDSPTable& Table(const std::string& DatabaseName) override {
    EXPECT_EQ(DatabaseName, "db");
    return *this;
  }
  std::unique_ptr<TDSPFormManager> CreateFormManager(const std::string&) override { return nullptr; }
  bool DSPStructureExist(const std::string& Name, int Type) override {
    EXPECT_EQ(Name, UpperCase(Name)) << Name;
    return Structure != TStructure::None && Type == 10;
  }
  std::optional<TDSPListItem> GetStructureProperties(const std::string&, int) override { return std::nullopt; }
  void ChangeStructureProperties(const TDSPListItem&) override {}
  TDSPList List() override { return {}; }
  bool DeleteStructure(const std::string&, int) override { return false; }

  TDicTable& GetDicTable(const std::string& DatabaseName) override {
    EXPECT_EQ(DatabaseName, "db");
    return *this;
  }
  std::string GetPatternName(const std::string&, const std::string&) override { return {}; }
  std::string GetCreateTablePatternString(const std::string&, const std::string&) override { return {}; }
  void CreateTableByDef(const std::string&, const TDicTableDescription&, const std::string&, TTableScriptPart,
                        bool) override {}
  void StoreWords(const std::string&, const std::vector<std::string>&) override {}
  void CreateIndexesByDef(const std::string&, const TDicTableDescription&) override {}
  void DropTable(const std::string&, const TDicTableDescription&) override {}
  TTableStage StageOf(const std::string&, const std::string&) override { return TTableStage::Complete; }
  void SetStage(const std::string&, const std::string&, TTableStage) override {}
  bool GetTableInfo(const std::string&, TDicTableDescription& Description) override {
    Description.Fields = {{.Name = "A"}, {.Name = "B", .Type = TDicFieldType::Int64}};
    if (Structure == TStructure::AutoKey) Description.Fields[1].Auto = TDicAutoKey::RowNumber;
    return Structure != TStructure::Unreadable;
  }

  TTexts Platform;
  TStructure Structure = TStructure::None;

 private:
  const TServiceGuard<TDSPContainer> FContainer{this};
  const TServiceGuard<TDictionary> FDictionary{this};
};

std::string Repeated(const char* Letter, int Count) {
  std::string Result;
  for (int I = 0; I < Count; ++I) Result += Letter;
  return Result;
}

TEST_F(NameLengths, AreCountedInUnits) {
  constexpr const char *Latin = "a", *Russian = "ж", *Pair = "\U0001F600";
  const struct {
    TStructure Structure;
    const char* Letter;
    int Count;
    int Limit;
    bool IsLong, IsLongView;
  } Cases[] = {
      {TStructure::None, Latin, 30, 30, false, false},       {TStructure::None, Latin, 31, 30, true, true},
      {TStructure::None, Russian, 30, 30, false, false},     {TStructure::None, Russian, 31, 30, true, true},
      {TStructure::None, Pair, 15, 30, false, false},        {TStructure::None, Pair, 16, 30, true, true},
      {TStructure::Unreadable, Latin, 23, 30, false, false}, {TStructure::Plain, Latin, 23, 30, false, false},
      {TStructure::Plain, Latin, 31, 30, true, true},        {TStructure::AutoKey, Latin, 22, 22, false, false},
      {TStructure::AutoKey, Latin, 23, 22, true, false},     {TStructure::AutoKey, Pair, 11, 22, false, false},
      {TStructure::AutoKey, Pair, 12, 22, true, false},      {TStructure::AutoKey, Latin, 0, 22, false, false},
  };
  for (const auto& Case : Cases) {
    Structure = Case.Structure;
    const std::string Name = Repeated(Case.Letter, Case.Count);
    SCOPED_TRACE(Name + " " + std::to_string(Case.Count));
    int Limit = 0;
    EXPECT_EQ(IsLongNameTable(Name, "db", Limit), Case.IsLong);
    EXPECT_EQ(Limit, Case.Limit);
    EXPECT_EQ(IsLongNameTable(Name, "db"), Case.IsLong);
    TDicTableDescription Described;
    if (GetTableInfo(Name, Described) || Structure == TStructure::None) {
      Described.Name = Name;
      EXPECT_EQ(IsLongNameTable(Described, Limit), Case.IsLong);
      EXPECT_EQ(Limit, Case.Limit);
    }
    EXPECT_EQ(IsLongNameView(Name), Case.IsLongView);
  }
}

TEST_F(NameLengths, LongOnesAreAskedAbout) {
  const std::string Name30 = Repeated("V", 30), Name31 = Repeated("V", 31), Name23 = Repeated("V", 23);
  const std::string TableText =
      "Имя таблицы '" + Name23 +
      "' слишком длинное (> 22 символов) и не поддерживается некоторыми базами данных. Создание таблицы с таким именем "
      "приведёт к блокирующей ошибке в случае Оракл! Отменить операцию?";
  const std::string ViewText =
      "Имя отображения '" + Name31 +
      "' слишком длинное (> 30 символов) и не поддерживается некоторыми базами данных. Создание вьюхи с таким именем "
      "приведёт к блокирующей ошибке в случае Оракл! Отменить операцию?";
  const struct {
    bool IsView;
    std::string Name;
    int Answer;
    const char* Localized;  // empty: there is no text
    std::string Asked;      // empty: nothing is
    bool Cancels;
  } Cases[] = {
      {false, Name23, IDYES, "", TableText, true},
      {false, Name23, IDNO, "", TableText, false},
      {true, Name31, IDYES, "", ViewText, true},
      {true, Name31, IDNO, "", ViewText, false},
      {true, Name30, IDYES, "", "", false},
      {false, "short", IDYES, "", "", false},
      {false, Name23, IDYES, "%s: %d", Name23 + ": 22", true},
  };
  Structure = TStructure::AutoKey;
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Name + Case.Localized);
    Platform.Text = Case.Localized;
    std::string Asked, Caption;
    std::uint32_t Flags = 0;
    const TMessageBoxGuard Hook([&](TWindowHandle, std::u16string_view Text, std::u16string_view Title,
                                    std::uint32_t Given, std::int32_t, std::int32_t) {
      Asked = FromUtf16(Text), Caption = FromUtf16(Title), Flags = Given;
      return Case.Answer;
    });
    EXPECT_EQ(Case.IsView ? AskCancelCreateLongNameView(Case.Name) : AskCancelCreateLongNameTable(Case.Name, "db"),
              Case.Cancels);
    EXPECT_EQ(Asked, Case.Asked);
    if (Case.Asked.empty()) continue;
    EXPECT_EQ(Caption, Platform.Text.empty() ? "ST_CONFIRMATION" : Platform.Text);
    EXPECT_EQ(Flags & 0xFU, MB_YESNO);
    EXPECT_TRUE(Flags & MB_DEFBUTTON2) << "whoever answers Yes to everything must not cancel by it";
  }
}

TEST_F(NameLengths, NobodyDecidesForAPerson) {
  const std::string Name(31, 'T');
  EXPECT_THROW(AskCancelCreateLongNameTable(Name, "db"), EQuestionUnanswered);
  EXPECT_THROW(AskCancelCreateLongNameView(Name), EQuestionUnanswered);
  EXPECT_FALSE(AskCancelCreateLongNameTable("T", "db"));
}

}  // namespace
}  // namespace velkrund::tests

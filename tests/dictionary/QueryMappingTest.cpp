#include <gtest/gtest.h>

#include "tests/dictionary/QueryFixture.h"
#include "velkrund/dialogs/QueryTableMappingSelectForm.h"
#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund::tests {
namespace {

/// A table T of two fields, and a person who chooses it, fills B from A, and empties it.
class QueryMapping : public testing::Test, private TWindowSystem {
 protected:
  class TPlatform final : public TTestPlatform {
   public:
    std::unique_ptr<TTable> GetUserTable(const std::string& Name, const std::string& Database, bool) override {
      if (Name != "T" || Database != "@db") return nullptr;
      return std::make_unique<TMemoryTable>("T", TMemoryTable::TColumns{{"A", TKvKind::Int64}, {"B", TKvKind::Int64}});
    }
    std::vector<std::string> UserTableNames(const std::string&) override { return {"T"}; }
  };

  static void Import(TEICommonQueryData& Section) {
    const std::string_view Body = "[FIELDS]\r#\rA\r[RECORDS]\r<1|10>\r<2|20>\r";
    TMemoryStream Memory;
    Memory.Write(Body);
    Memory.SetPosition(0);
    TEIStream Stream(Memory, Memory.Size());
    Section.DatabaseName = "@db";
    Section.ImportData(Stream);
  }

  TPlatform Platform;
  bool Confirms = true;
  int Asked = 0;

 private:
  int ShowModal(TForm& Form) override {
    auto& Question = dynamic_cast<TQueryTableMappingSelectForm&>(Form);
    ++Asked;
    EXPECT_FALSE(Question.ClearTargetCheckBox.Checked);
    if (!Confirms) return mrCancel;
    Question.TargetTableComboBox.Choose(0);
    for (TLControl* const Control : Question.Controls())
      if (auto* const Box = dynamic_cast<TLComboBox*>(Control); Box && Box != &Question.TargetTableComboBox)
        Box->Choose(Box->Caption() == "B" ? 1 : -1);
    Question.ClearTargetCheckBox.Checked = true;
    Question.Click(Question.OkButton);
    return Question.ModalResult();
  }

  const TServiceGuard<TWindowSystem> FGuard{this};
};

TEST_F(QueryMapping, WhatAPersonChoosesIsDone) {
  TEIQueryData Section;
  Section.Append = true;
  Import(Section);
  EXPECT_EQ(Section.TableName, "T");
  EXPECT_EQ(Section.FieldMapping, (TStringPairs{{"A", "B"}}));
  EXPECT_FALSE(Section.Append);
  EXPECT_EQ(Section.Report->RowCount, 2);
  EXPECT_FALSE(Section.LeftAlone());
  EXPECT_EQ(Platform.Log, (std::vector<std::string>{"start", "commit"}));
}

TEST_F(QueryMapping, NotConfirmedTheSectionIsPassedOver) {
  Confirms = false;
  TEIQueryData Section;
  Import(Section);
  EXPECT_TRUE(Section.LeftAlone());
  EXPECT_FALSE(Section.Stopped());
  EXPECT_EQ(Section.Report->RowCount, 0);
  EXPECT_TRUE(Platform.Log.empty());
  Section.TableName = "T";
  Import(Section);
  EXPECT_EQ(Section.Report->RowCount, 2);
  EXPECT_FALSE(Section.LeftAlone());
  EXPECT_EQ(Asked, 1) << "nobody is asked about a table that is known";
}

}  // namespace
}  // namespace velkrund::tests

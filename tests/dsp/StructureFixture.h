#pragma once

#include <gtest/gtest.h>

#include "tests/dsp/DSPFixture.h"
#include "velkrund/dialogs/DSPConfirmForm.h"
#include "velkrund/dsp/Registration.h"
#include "velkrund/eif/Eifiles.h"
#include "velkrund/platform/dictionary/DicDatabase.h"
#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund::tests {

/// Answers the question about a structure that exists.
class TAnswer final : public TWindowSystem {
 public:
  int ShowModal(TForm& Form) override {
    auto& Asked = dynamic_cast<TDSPConfirmForm&>(Form);
    Questions.push_back(Asked.AskLabel.Caption);
    Asked.ForAllLCheckBox.Checked = ForAll;
    if (Button)
      Form.Click(Asked.*Button);
    else
      Form.RequestClose();
    return Form.ModalResult();
  }

  TLButton TDSPConfirmForm::*Button = nullptr;
  bool ForAll = false;
  std::vector<std::string> Questions;
};

class TGenerators final : public TDicDBContainer, public TDicDatabase {
 public:
  TDicDatabase& Database(const std::string&) override { return *this; }
  bool GeneratorExist(const std::string& Name) override { return Name == "GEN"; }
  std::int64_t GeneratorValue(const std::string&) override { return -42; }
  void SetGenerator(const std::string&, std::int64_t, std::int64_t) override {}
  void AdvanceGenerator(const std::string&, std::int64_t) override {}
  void CreateGenerator(const std::string&, std::optional<std::int64_t>, bool) override {}
  void DropGenerator(const std::string&) override {}
  bool ViewExist(const std::string&) override { return false; }
  void CreateView(const std::string&, bool, bool) override {}
  void DropView(const std::string&) override {}
  bool ExecStoredProcExist(const std::string&) override { return false; }
  bool SelectStoredProcExist(const std::string&) override { return false; }
  void CreateExecStoredProc(const std::string&, bool) override {}
  void CreateSelectStoredProc(const std::string&, bool) override {}
  void DropStoredProc(const std::string&) override {}
};

/// Structures in a store in memory, files in memory, and answers that a test gives.
class Structure : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!EITypeList().Find("DSPStructure", 200)) RegisterDSPClasses();
  }
  /// The tree lines stored, line ends as "\n".
  std::string Lines() {
    const auto Made = Section<TEIDSPStructure>();
    std::string Text = Export(*Made);
    std::erase(Text, '\r');
    return Text.substr(Text.find(" [TREE]\n") + 8);
  }
  void Store(std::string_view Lines) {
    Platform.Structures.Stored.clear();
    Import(*Section<TEIDSPStructure>(), Body(Lines));
  }
  /// Makes the file, with the structure F of type 12 as its only section.
  static void ExportF(TEIFile& File) {
    File.SetFileName("f.eif");
    File.CreateFile();
    File.Open();
    TUOExportDSPStructureInterface Out;
    Out.SetTarget(&File);
    Out.SetSectionName("s");
    Out.SetObjectName("F");
    Out.SetObjectType(12);
    ASSERT_EQ(Out.Execute(), 1) << Out.LastError();
  }

  TDSPPlatform Platform;
  TAnswer Answer;
  TGenerators Generators;

 private:
  TServiceGuard<TWindowSystem> FAnswerGuard{&Answer};
  TServiceGuard<TDicDBContainer> FGeneratorsGuard{&Generators};
};

}  // namespace velkrund::tests

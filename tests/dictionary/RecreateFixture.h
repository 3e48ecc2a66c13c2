#pragma once

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "tests/support/TestPlatform.h"
#include "velkrund/dialogs/YesNoConfirmationForm.h"
#include "velkrund/dictionary/Dicutils.h"
#include "velkrund/dictionary/Registration.h"
#include "velkrund/eif/Eifiles.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund::tests {

/// Structures that are there or not; their trees are of no interest.
class TNamedStructures final : public TDSPContainer, public TDSPTable {
 public:
  TDSPTable& Table(const std::string&) override { return *this; }
  std::unique_ptr<TDSPFormManager> CreateFormManager(const std::string&) override { return nullptr; }
  bool DSPStructureExist(const std::string& Name, int Type) override { return Names.contains({Type, Name}); }
  std::optional<TDSPListItem> GetStructureProperties(const std::string&, int) override { return std::nullopt; }
  void ChangeStructureProperties(const TDSPListItem&) override {}
  TDSPList List() override { return {}; }
  bool DeleteStructure(const std::string&, int) override { return false; }

  std::set<std::pair<int, std::string>> Names;  // in upper case
};

/// A database of names. Creations are noted in the journal; one of a name that begins with "bad" fails.
class TNamedObjects final : public TDicDBContainer, public TDicDatabase {
 public:
  explicit TNamedObjects(std::vector<std::string>& Journal) : FJournal(Journal) {}

  TDicDatabase& Database(const std::string&) override { return *this; }
  bool GeneratorExist(const std::string& Name) override { return There.contains({71, Name}); }
  bool ViewExist(const std::string& Name) override { return There.contains({72, Name}); }
  bool ExecStoredProcExist(const std::string& Name) override { return There.contains({73, Name}); }
  bool SelectStoredProcExist(const std::string& Name) override { return There.contains({74, Name}); }
  std::int64_t GeneratorValue(const std::string&) override { return 9'000'000'000; }
  void SetGenerator(const std::string& Name, std::int64_t Step, std::int64_t Value) override {
    FJournal.push_back(Format("set %s %d %d", Name, Step, Value));
  }
  void AdvanceGenerator(const std::string& Name, std::int64_t Value) override {
    FJournal.push_back(Format("advance %s %d", Name, Value));
  }
  void CreateGenerator(const std::string& Name, std::optional<std::int64_t> Start, bool Replace) override {
    Make(71, Name, Format("%s%s", Replace ? "replace" : "", Start ? " " + std::to_string(*Start) : ""));
  }
  void DropGenerator(const std::string&) override {}
  void CreateView(const std::string& Name, bool Replace, bool Verify) override {
    Make(72, Name, std::string(Replace ? "replace" : "") + (Verify ? " verify" : ""));
  }
  void DropView(const std::string&) override {}
  void CreateExecStoredProc(const std::string& Name, bool Replace) override {
    Make(73, Name, Replace ? "replace" : "");
  }
  void CreateSelectStoredProc(const std::string& Name, bool Replace) override {
    Make(74, Name, Replace ? "replace" : "");
  }
  void DropStoredProc(const std::string&) override {}

  std::set<std::pair<int, std::string>> There;

 private:
  void Make(int Type, const std::string& Name, const std::string& How) {
    if (Name == "abort") throw EAbort("stop");
    if (Name == "unanswered") throw EQuestionUnanswered("who?");
    if (Name.starts_with("bad")) throw EDatabaseError("no " + Name);
    FJournal.push_back(Format("%d %s %s", Type, Name, How));
    There.emplace(Type, Name);
  }

  std::vector<std::string>& FJournal;
};

/// Generators, views and procedures that are described, there, or both, and answers that a test gives. The journal
/// holds the trace, transactions, creations and questions in their order.
class Recreate : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!EITypeList().Find("TableData", 200)) RegisterDictionaryClasses();
  }

  class TPlatform final : public TTestPlatform {
   public:
    std::string LString(std::string_view Key) const override {
      const bool HasName = Key.ends_with("Confirm") || Key.ends_with("NotFound");
      return std::string(Key) + (HasName ? " %s" : Key.ends_with("_Cancel") ? " %s %d" : "");
    }
    void WriteTrace(std::string_view Subsystem, TTraceLevel Level, std::string_view Text) noexcept override {
      Log.push_back(std::string(Subsystem) + std::to_string(static_cast<int>(Level)) + ":" + std::string(Text));
    }
  };

  /// Answers the dialog of lists.
  class TDialog final : public TWindowSystem {
   public:
    explicit TDialog(Recreate& Test) : FTest(Test) {}
    int ShowModal(TForm& Form) override {
      auto& Asked = dynamic_cast<TYesNoConfirmationForm&>(Form);
      EXPECT_TRUE(Asked.CancelButton.Visible);
      return FTest.Answered("dialog " + Asked.MainLabel.Caption);
    }

   private:
    Recreate& FTest;
  };

  int Answered(const std::string& Question) {
    Platform.Log.push_back(Question);
    if (Answers.empty()) throw EQuestionUnanswered("nobody");
    const int Answer = Answers.front();
    Answers.erase(Answers.begin());
    return Answer;
  }
  int ShowBox(std::u16string_view Text, std::u16string_view Caption, std::uint32_t Flags) {
    const std::string Shown = std::string("box ") + std::to_string(Flags) + FromUtf16(Caption) + " " + FromUtf16(Text);
    if ((Flags & 0xFU) != MB_OK) return Answered(Shown);
    Platform.Log.push_back(Shown);
    return IDOK;
  }
  std::unique_ptr<TUtilOperationInterface> Interface(const std::string& Class) {
    auto Result = InterfaceClasses().Find(Class).Create(nullptr);
    Result->SetDatabaseName("db");
    return Result;
  }
  /// What has been noted since the last time.
  std::vector<std::string> Noted() { return std::exchange(Platform.Log, {}); }
  void Describe(int Type, const std::string& Name) { Structures.Names.emplace(Type, UpperCase(Name)); }

  TPlatform Platform;
  TNamedStructures Structures;
  TNamedObjects Objects{Platform.Log};
  TDialog Dialog{*this};
  std::vector<int> Answers;

 private:
  const TServiceGuard<TDSPContainer> FStructures{&Structures};
  const TServiceGuard<TDicDBContainer> FObjects{&Objects};
  const TServiceGuard<TWindowSystem> FDialog{&Dialog};
  const TMessageBoxGuard FMessageBox{[this](TWindowHandle, std::u16string_view Text, std::u16string_view Caption,
                                            std::uint32_t Flags, std::int32_t,
                                            std::int32_t) { return ShowBox(Text, Caption, Flags); }};
};

}  // namespace velkrund::tests

#include <gtest/gtest.h>

#include "tests/support/TestPlatform.h"
#include "velkrund/operations/Comutils.h"
#include "velkrund/platform/extcalls/ExtCall.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

/// An operation that does what the test says.
class TScripted : public TDatabaseUtilOperation {
 public:
  int Execute() override { return Action ? Action(*this) : 1; }
  std::function<int(TScripted&)> Action;
  static inline const TUtilOperationDescriptor Descriptor{
      "TScripted", nullptr, []() -> std::unique_ptr<TUtilOperation> { return std::make_unique<TScripted>(); }};
};

class TScriptedInterface : public TUtilOperationInterface {
 public:
  explicit TScriptedInterface(TRBaseManager* Manager = nullptr)
      : TUtilOperationInterface(TUtilOperationClass(TScripted::Descriptor), Manager) {}
  TInterfaceClass ClassType() const override { return TInterfaceClass(TUtilOperationInterface::Descriptor); }
  TScripted& Scripted() { return static_cast<TScripted&>(Operation()); }
};

TEST(Interface, ErrorsBecomeLastError) {
  TScriptedInterface Object;
  Object.Scripted().Action = [](TScripted&) -> int { throw EConvertError("text"); };
  EXPECT_EQ(Object.Execute(), 0);
  EXPECT_EQ(Object.LastError(), "EConvertError:text");
  Object.Scripted().Action = [](TScripted&) -> int { throw std::out_of_range("foreign"); };
  EXPECT_EQ(Object.Execute(), 0);
  EXPECT_EQ(Object.LastError(), "std::out_of_range:foreign");
  Object.Scripted().Action = [](TScripted&) -> int { throw 5; };
  EXPECT_EQ(Object.Execute(), 0);
  EXPECT_EQ(Object.LastError(), "unknown:A callback raised something that is no error");
  Object.Scripted().Action = [](TScripted& Self) { return Self.DatabaseName == "db" ? 1 : 2; };
  Object.SetDatabaseName("db");
  EXPECT_EQ(Object.Execute(), 1);
  EXPECT_EQ(Object.LastError(), "");
}

TEST(Interface, CancelReachesChildrenThroughOwners) {
  TScripted Parent, Child;
  Child.Owner = &Parent;
  EXPECT_FALSE(Child.IsCanceled());
  bool Asked = false;
  Parent.FOnGetCancel = [&] { return Asked; };
  EXPECT_FALSE(Child.IsCanceled());
  Asked = true;
  EXPECT_TRUE(Child.IsCanceled());
  EXPECT_FALSE(Child.GetCanceled());
}

struct TReport {
  std::int32_t Current, Total, OpCurrent, OpTotal;
  std::string Operation, Object;
  friend bool operator==(const TReport&, const TReport&) = default;
};
std::vector<TReport> Reports;
std::vector<std::string> LogLines;
bool HostCancels = false;

void OnProgress(std::int32_t Current, std::int32_t Total, std::int32_t OpCurrent, std::int32_t OpTotal,
                const char16_t* Operation, const char16_t* Object) {
  Reports.push_back({Current, Total, OpCurrent, OpTotal, FromUtf16(Operation), FromUtf16(Object)});
}
bool OnCancel() { return HostCancels; }
void OnLog(const char16_t* Text) { LogLines.push_back(FromUtf16(Text)); }
void OnLog1(const char16_t* Text, std::int32_t Level) { LogLines.push_back(FromUtf16(Text) + std::to_string(Level)); }

TEST(Interface, HostManagerGetsWeightedProgress) {
  Reports.clear();
  TRBaseManager Manager(&OnProgress, &OnCancel, static_cast<TWriteLogProc>(nullptr), 10, 60);
  TScriptedInterface Object(&Manager);
  Object.SetShowProgress(true);
  Object.Scripted().Action = [](TScripted& Self) {
    Self.ShowProgress(1, 2, "объект");
    Self.ShowProgress(1, 0, "none");
    return Self.IsCanceled() ? 2 : 1;
  };
  Manager.StartOperationProgress("op", 40);
  EXPECT_EQ(Object.Execute(), 1);
  Manager.StartOperationProgress("next", 60);
  EXPECT_EQ(Reports, (std::vector<TReport>{{10, 100, 0, 100, "op", ""},
                                           {20, 100, 0, 0, "op", "объект"},
                                           {10, 100, 0, 0, "op", "none"},
                                           {30, 100, 0, 100, "next", ""}}));
  Reports.clear();
  TRBaseManager Wide(&OnProgress, &OnCancel, static_cast<TWriteLogProc>(nullptr), -2'000'000'000, 2'000'000'000);
  Wide.StartOperationProgress("op", 100);
  Wide.UpdateOperationProgress("half", 0.75);
  EXPECT_EQ(Reports.back().Current, 1'000'000'000);
  Reports.clear();
  Object.SetShowProgress(false);
  EXPECT_EQ(Object.Execute(), 1);
  EXPECT_TRUE(Reports.empty()) << "a run without progress, after one with it";
  HostCancels = true;
  EXPECT_EQ(Object.Execute(), 2);
  HostCancels = false;

  LogLines.clear();
  Manager.WriteLog("dropped");
  TRBaseManager(&OnProgress, &OnCancel, &OnLog, 0, 100).WriteLog1("a", 1);
  TRBaseManager(&OnProgress, &OnCancel, &OnLog1, 0, 100).WriteLog("b");
  EXPECT_EQ(LogLines, (std::vector<std::string>{"a", "b2"}));
}

/// Script functions as a test describes them.
struct TFunction {
  std::string_view Params;  // their types, a digit each
  int Result = 0;
  bool Found = true, Runs = true, Answer = false;
};

class TFakeCall : public TExtCall, public TExtCallFactory {
 public:
  std::unique_ptr<TExtCall> CreateExtCall() override { return std::make_unique<TFakeCall>(*this); }
  void SetModule(std::string_view Name) override { Called = Name; }
  void SetFunction(std::string_view Name) override {
    At = Name == "Show" ? Show : Cancel;
    Called += "." + std::string(Name);
  }
  void SetCallKind(TExtCallKind Kind) override { EXPECT_EQ(static_cast<int>(Kind), 3); }
  bool ReadBLLFunction() override { return At->Found; }
  int ParamCount() const override { return static_cast<int>(At->Params.size()); }
  int ParamType(int Index) const override { return At->Params.at(static_cast<std::size_t>(Index)) - '0'; }
  int ResultType() const override { return At->Result; }
  void SetIntegerParam(int, std::int64_t Value) override { Called += " " + std::to_string(Value); }
  void SetStringParam(int, std::string_view Value) override { Called += " " + std::string(Value); }
  bool Execute() override {
    if (Trace) Trace->push_back(Called);
    return At->Runs;
  }
  bool BooleanResult() const override { return At->Answer; }

  TFunction *Show = nullptr, *Cancel = nullptr, *At = nullptr;
  std::vector<std::string>* Trace = nullptr;
  std::string Called;
};

TEST(Interface, ScriptCallbacksAreCheckedAndCalled) {
  const TFunction GoodShow{"221", 0}, GoodCancel{"", 6};
  const struct {
    TFunction Show, Cancel;
    std::string Error;
  } Cases[] = {
      {GoodShow, GoodCancel, ""},
      {GoodShow, {"", 6, false}, "Exception:Error preparing Cancel BLL function to execute"},
      {GoodShow, {"2", 6}, "Exception:Incorrent number of parameters of Cancel bll function"},
      {GoodShow, {"", 2}, "Exception:Incorrent type of result of Cancel bll function"},
      {GoodShow, {"", 6, true, false}, "Exception:Error executing Cancel BLL function"},
      {{"221", 0, false}, GoodCancel, "Exception:Error preparing ShowProgress BLL function to execute"},
      {{"22", 0}, GoodCancel, "Exception:Incorrent number of parameters of ShowProgress bll function"},
      {{"212", 0}, GoodCancel, "Exception:Incorrent type of parameters of ShowProgress bll function"},
      {{"221", 0, true, false}, GoodCancel, "Exception:Error executing ShowProgress BLL function"},
  };
  for (auto Case : Cases) {
    std::vector<std::string> Trace;
    TFakeCall Calls;
    Calls.Show = &Case.Show, Calls.Cancel = &Case.Cancel, Calls.Trace = &Trace;
    const TServiceGuard<TExtCallFactory> Guard(&Calls);
    TScriptedInterface Object;
    Object.SetProgressCallBack("M", "Show", "Stop");
    Object.SetShowProgress(true);
    Object.Scripted().Action = [](TScripted& Self) {
      Self.ShowProgress(3, 9, "x");
      return Self.IsCanceled() ? 2 : 1;
    };
    EXPECT_EQ(Object.Execute(), Case.Error.empty() ? 1 : 0);
    EXPECT_EQ(Object.LastError(), Case.Error);
    if (!Case.Error.empty()) continue;
    EXPECT_EQ(Trace, (std::vector<std::string>{"M.Show 3 9 x", "M.Stop"}));
    Case.Cancel.Answer = true;
    EXPECT_EQ(Object.Execute(), 2);
    Object.SetProgressCallBack("", "", "");
    EXPECT_EQ(Object.Execute(), 1) << "no function is asked any more";
    EXPECT_EQ(Trace.size(), 4u);
  }
}

TEST(Interface, ProgressWindowRunsTheOperationWhenThereIsOne) {
  TScriptedInterface Object;
  Object.SetShowProgress(true);
  int Runs = 0;
  Object.Scripted().Action = [&](TScripted&) { return ++Runs, 7; };
  EXPECT_EQ(Object.Execute(), 7);
  {
    const TProgressRunnerGuard Runner(
        [&](TUtilOperation& Operation, const std::string&) { return Runs += 10, 10 * Operation.Execute(); });
    EXPECT_EQ(Object.Execute(), 70);
  }
  EXPECT_EQ(Runs, 12);
  Object.Scripted().Action = [&](TScripted&) { return ++Runs, 0; };
  EXPECT_EQ(Object.Execute(), 0) << "a cancelled operation";
  EXPECT_EQ(Runs, 13) << "the runner is gone";
}

TEST(MessageBox, HookGetsAllSixArguments) {
  {
    const TMessageBoxGuard Hook([](TWindowHandle Window, std::u16string_view Text, std::u16string_view,
                                   std::uint32_t Flags, std::int32_t Yes, std::int32_t No) {
      return static_cast<int>(Window) + static_cast<int>(Text.size()) + static_cast<int>(Flags) + Yes + No;
    });
    {
      const TMessageBoxGuard Inner([](auto...) { return 1; });
      EXPECT_EQ(uoMessageBox(1000, u"ab", u"", 4, 60, 700), 1);
    }
    EXPECT_EQ(uoMessageBox(1000, u"ab", u"", 4, 60, 700), 1766) << "the one before is back";
  }
  EXPECT_THROW(uoMessageBox(0, u"?", u"c", MB_YESNO, 0, 0), EQuestionUnanswered);
}

TEST(AskObjects, AssignCopiesWhatBothHave) {
  TYesNoCancelAsk Full;
  Full.FYes = Full.FCancel = Full.FAlwaysAsk = true;
  Full.fAskCallbackString = "text";
  TYesNoCancelAsk Copy;
  Copy.Assign(Full);
  EXPECT_TRUE(Copy.FYes && Copy.FCancel && Copy.FAlwaysAsk);
  EXPECT_EQ(Copy.fAskCallbackString, "");
  TYesNoAsk Other;
  Other.Assign(Full);
  EXPECT_TRUE(Other.FAlwaysAsk);
  EXPECT_FALSE(Other.FYes);
}

}  // namespace
}  // namespace velkrund::tests

#include "tests/dialogs/DialogFixture.h"

namespace velkrund::tests {

namespace {

const std::string Name = "Объект 東京";

std::string YesNo() { return std::to_string(YesNoConfirmation(Name + "?")); }
std::string YesNoCancel() { return std::to_string(YesNoCancelConfirmation(Name + "?")); }

std::string Structure() {
  bool ForAll = true;
  const TDSPImportOverwriteOptions Option = DSPConfirmation(Name + "?", ForAll);
  return std::to_string(static_cast<int>(Option)) + (ForAll ? " for all" : "");
}

std::string Overwrite() { return std::to_string(ShowOverwriteEIObjectWindow(Name + "?", "Export")); }

std::string OverwriteEx() {
  TApplyForAll Answer{77, true};
  ShowOverwriteAskExForm(Name + "?", "Copy", Answer);
  return std::to_string(Answer.YesCancel) + (Answer.Apply ? " for all" : "");
}

std::string Box(std::uint32_t Flags) { return std::to_string(ShowMessageBox(Name + "?", "Import", Flags)); }
std::string BoxYesNo() { return Box(MB_YESNO | MB_ICONQUESTION); }
std::string BoxYesNoCancel() { return Box(MB_YESNOCANCEL | MB_ICONWARNING); }

}  // namespace

const std::vector<TDialogCase>& DialogCases() {
  static const std::vector<TDialogCase> Cases = {
      {"yes/no", &YesNo, "YesButton", "", "y\n", "6"},
      {"yes/no", &YesNo, "NoButton", "", "N\n", "7"},
      {"yes/no", &YesNo, "YesForAllButton", "", "all\n", "14"},
      {"yes/no", &YesNo, "NoForAllButton", "", "o\n", "13"},
      {"yes/no/cancel", &YesNoCancel, "YesButton", "", "yes\n", "6"},
      {"yes/no/cancel", &YesNoCancel, "NoForAllButton", "", "NONE\n", "13"},
      {"yes/no/cancel", &YesNoCancel, "CancelButton", "", "c\n", "2"},
      {"structure", &Structure, "SkipButton", "", "s\n", "0"},
      {"structure", &Structure, "RewriteButton", "", "r\n", "1"},
      {"structure", &Structure, "UpdateButton", "", "update\n", "2"},
      {"structure", &Structure, "UpdateButton", "ForAllLCheckBox", "f\nu\n", "2 for all"},
      {"structure", &Structure, "RewriteButton", "ForAllLCheckBox", "f f f r\n", "1 for all"},
      {"structure", &Structure, "RewriteButton", "ForAllLCheckBox", "r f\n", "1 for all"},
      {"structure", &Structure, "SkipButton", "", "r nonsense, do not\ns\n", "0"},
      {"structure", &Structure, "SkipButton", "", "f what\nr u\n\ns\n", "0"},
      {"object", &Overwrite, "OverwriteButton", "", "o\n", "6"},
      {"object", &Overwrite, "AppendButton", "", "A\n", "4"},
      {"object", &Overwrite, "SkipButton", "", "skip\n", "2"},
      {"series", &OverwriteEx, "YesButton", "", "y\n", "6"},
      {"series", &OverwriteEx, "NoButton", "", "n\n", "7"},
      {"series", &OverwriteEx, "YesToAllButton", "", "a\n", "10"},
      {"series", &OverwriteEx, "NoToAllButton", "", "o\n", "9"},
      {"series", &OverwriteEx, "CancelButton", "", "cancel\n", "2"},
      {"series", &OverwriteEx, "YesToAllButton", "ForAllOperationsCheckBox", "f a\n", "10 for all"},
      {"box", &BoxYesNo, "YesButton", "", "y\n", "6"},
      {"box", &BoxYesNo, "NoButton", "", "n\n", "7"},
      {"box/cancel", &BoxYesNoCancel, "NoButton", "", "no\n", "7"},
      {"box/cancel", &BoxYesNoCancel, "CancelButton", "", "c\n", "2"},
  };
  return Cases;
}

}  // namespace velkrund::tests

#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/MemoryLocalization.h"
#include "velkrund/dialogs/YesNoConfirmationForm.h"
#include "velkrund/eif/EIStream.h"
#include "velkrund/eif/Section.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/resources/Lutils.h"

namespace velkrund::tests {

/// Answers the questions whether a text is overwritten, in order; the last answer again and again.
class TAnswers final : public TWindowSystem {
 public:
  int ShowModal(TForm& Form) override {
    Questions.push_back(dynamic_cast<TYesNoConfirmationForm&>(Form).MainLabel.Caption);
    if (Codes.empty()) throw EAbort("The person wants the whole job to end");
    const int Code = Codes.front();
    if (Codes.size() > 1) Codes.erase(Codes.begin());
    return Code;
  }

  std::vector<int> Codes;
  std::vector<std::string> Questions;
};

/// Texts whose line ends are "\n" here and "\r\n" in files.
inline std::string WithLineEnds(std::string_view Text) {
  std::string Result;
  for (const char Byte : Text) Result += Byte == '\n' ? std::string("\r\n") : std::string(1, Byte);
  return Result;
}

/// What stands before a body in its source, so that positions in both differ.
inline constexpr std::string_view Before = "12345678\r\n";

class Section : public testing::Test {
 protected:
  /// The body that a section writes, as it is.
  std::string Export(TEIObject& Object, TKvEncoding Encoding = TKvEncoding::Utf8) {
    TMemoryStream Memory;
    TEIStream Stream(Memory, -1, &Losses);
    Stream.SetEncoding(Encoding);
    Object.ExportData(Stream);
    return std::string(Memory.Memory());
  }

  /// Body: as it is in a file.
  void Import(TEIObject& Object, std::string_view Body, TKvEncoding Encoding = TKvEncoding::Utf8) {
    TMemoryStream Memory;
    Memory.Write(Before);
    Memory.Write(Body);
    Memory.SetPosition(static_cast<std::int64_t>(Before.size()));
    TEIStream Stream(Memory, static_cast<std::int64_t>(Body.size()), &Losses);
    Stream.SetEncoding(Encoding);
    Object.ImportData(Stream);
  }

  /// What an action raises: "class: message"; empty when it succeeds.
  static std::string ErrorOf(const std::function<void()>& Action) {
    try {
      Action();
    } catch (const std::exception& Error) {
      return ExceptionClassName(Error) + ": " + Error.what();
    }
    return {};
  }

  std::string Texts() { return Platform.Strings().Texts(); }

  /// A section about the strings of S.
  template <typename T = TEILResource>
  static std::unique_ptr<T> Make() {
    auto Made = std::make_unique<T>();
    Made->SetSectionID("S");
    return Made;
  }
  static std::unique_ptr<TEICommonLResource> Make(bool Old) {
    if (Old) return Make<TEIOldLResource>();
    return Make<TEILResource>();
  }

  class TPlatform final : public TLocalizationPlatform {
   public:
    /// Questions name what they are about.
    std::string LString(std::string_view Key) const override {
      for (const char* const Word : {"Confirm", "ErrorOnExport", "Exists", "CanNot"})
        if (Key.find(Word) != Key.npos) return std::string(Key) + " %s";
      return std::string(Key);
    }
  };

  TPlatform Platform;
  TAnswers Answers;
  TTextLosses Losses;

 private:
  TServiceGuard<TWindowSystem> FGuard{&Answers};
};

}  // namespace velkrund::tests

#pragma once

#include "tests/resources/SectionFixture.h"
#include "velkrund/eif/Eifiles.h"
#include "velkrund/resources/Registration.h"

namespace velkrund::tests {

/// Sections of strings in the databases "" and "target", files, and a person who answers.
class Operation : public Section {
 protected:
  static void SetUpTestSuite() {
    if (!EITypeList().Find("Language", 100)) RegisterResourceClasses();
  }

  /// Texts as "SECTION.NAME.LANGUAGE=TEXT", into a database.
  void Put(std::initializer_list<const char*> Texts, const std::string& Database = {}) {
    for (const std::string Text : Texts) {
      const std::size_t First = Text.find('.'), Second = Text.find('.', First + 1), Equals = Text.find('=');
      Platform.Strings(Database).Put(Text.substr(0, First), Text.substr(First + 1, Second - First - 1),
                                     Text.substr(Second + 1, Equals - Second - 1), Text.substr(Equals + 1));
    }
  }

  std::unique_ptr<TEIFile> Open(const std::string& Name) {
    auto File = std::make_unique<TEIFile>();
    File->SetFileName(Name);
    if (!Platform.MemoryFiles.Exists(Name)) File->CreateFile();
    File->Open();
    return File;
  }

  /// The sections of a file, each as "NAME=TEXT" of its first text or value.
  std::string SectionsOf(const std::string& Name) {
    if (!Platform.MemoryFiles.Exists(Name)) return "no file";
    TEIFile File;
    File.SetFileName(Name);
    File.SetReadonly(true);
    File.Open();
    const std::string Bytes = Platform.MemoryFiles.Get(Name);
    std::string Result;
    for (int Index = 0; Index < File.Sections().Count(); ++Index) {
      const TEISection& One = File.Sections()[Index];
      const std::string Body =
          Bytes.substr(static_cast<std::size_t>(One.DataPosition), static_cast<std::size_t>(One.DataSize));
      const std::size_t Value = Body.find('=') + 1;
      Result += One.Name() + "=" + std::string(Trim(Body.substr(Value, Body.find('\r', Value) - Value))) + " ";
    }
    return Result;
  }

  /// Answers the message box after errors.
  int GoOn = IDYES;
  std::vector<std::string> Errors;  // what it has asked

 private:
  const TMessageBoxGuard FMessageBox{[this](TWindowHandle, std::u16string_view Text, auto...) {
    Errors.push_back(FromUtf16(Text));
    return GoOn;
  }};
};

}  // namespace velkrund::tests

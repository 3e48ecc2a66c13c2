// Any bytes as the body of a section of localized strings, in both versions and both encodings: an error, or strings
// that go out and come back as the same strings and the same bytes.

#include <map>

#include "fuzz/FuzzPlatform.h"
#include "velkrund/platform/localization/LContainer.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/resources/Lutils.h"

namespace velkrund {
namespace {

/// Shows what was read as the strings of a database.
class TReadStrings final : public TLContainer, public TLanguagesTable, public TLocalizatorTable {
 public:
  TReadStrings() : FGuard(this) {}

  TLanguagesTable& GetLanguagesTable(const std::string&) override { return *this; }
  TLocalizatorTable& GetLocalizatorTable(const std::string&) override { return *this; }
  std::unique_ptr<TLocalizator> CreateLocalizator(const std::string&) override { return nullptr; }

  void FillLanguageNames(TStringList& Names) override {
    for (int Index = 0; Index < Read.GetCount(); ++Index) Names.Add(Read.GetLanguages(Index));
  }
  void FillResNames(const std::string&, const std::string& Language, TStringList& Names) override {
    for (const TStringHash::TEntry& Entry : Read.GetResources(Language)->Entries()) Names.Add(std::string(Entry.Name));
  }
  std::string GetString(const std::string& StringID, const std::string& Language) override {
    const auto Text = Read.GetResources(Language)->Find(StringID == "S" ? "" : StringID.substr(2));
    return std::string(Text.value_or(AbsentText));
  }

  bool LanguageExist(const std::string&) override { return true; }
  bool GetLanguage(const std::string&, TOneLanguage&) override { return false; }
  void SetLanguage(const std::string&, const TOneLanguage&) override {}
  bool DeleteLanguage(const std::string&) override { return false; }
  std::int64_t TextCount(const std::string&) override { return 0; }
  void WriteString(const std::string&, const std::string&, std::string_view) override {}
  void Lock(const std::string&, const std::string&) override {}
  void UnLock(const std::string&, const std::string&) override {}
  void BeginUpdate() override {}
  void EndUpdate() override {}
  bool DeleteString(const std::string&) override { return false; }
  std::vector<TLSectionInfo> Sections() override { return {}; }
  std::optional<std::string> SectionOf(const std::string&) override { return std::nullopt; }

  TLSection Read;

 private:
  TServiceGuard<TLContainer> FGuard;
};

std::unique_ptr<TEICommonLResource> Make(bool IsOld) {
  std::unique_ptr<TEICommonLResource> Section;
  if (IsOld)
    Section = std::make_unique<TEIOldLResource>();
  else
    Section = std::make_unique<TEILResource>();
  Section->SetSectionID("S");
  return Section;
}

/// Whether nothing was lost.
bool Import(bool IsOld, std::string_view Body, TKvEncoding Encoding, TLSection& Read) {
  TMemoryStream Memory;
  Memory.Write(Body);
  Memory.SetPosition(0);
  TEIStream Stream(Memory, static_cast<std::int64_t>(Body.size()));
  Stream.SetEncoding(Encoding);
  const auto Section = Make(IsOld);
  Section->LSection = &Read;
  Section->ImportData(Stream);
  return !Stream.Losses().Any();
}

/// Lost: set where characters were replaced, or a language would not be found.
std::string Export(bool IsOld, TKvEncoding Encoding, bool& Lost) {
  TMemoryStream Memory;
  TEIStream Stream(Memory);
  Stream.SetEncoding(Encoding);
  Make(IsOld)->ExportData(Stream);
  Lost |= Stream.Losses().Any();
  return std::string(Memory.Memory());
}

}  // namespace
}  // namespace velkrund

// The first byte chooses: bit 0 the version, bit 1 the encoding, bit 2 whether text is strict.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace velkrund;
  static TFuzzPlatform Platform;
  static TReadStrings Strings;
  if (Size == 0) return 0;
  const bool IsOld = (Data[0] & 1) != 0;
  const TKvEncoding Encoding = Data[0] & 2 ? TKvEncoding::Ansi : TKvEncoding::Utf8;
  Platform.ChangeSettings().StrictText = (Data[0] & 4) != 0;
  std::string Written;
  bool Lost = false;
  try {
    Import(IsOld, {reinterpret_cast<const char*>(Data) + 1, Size - 1}, Encoding, Strings.Read);
    Written = Export(IsOld, Encoding, Lost);
  } catch (const std::exception& Error) {
    RequireOwn(Error);
    return 0;
  }
  if (Lost) return 0;
  Require(Import(IsOld, Written, Encoding, Strings.Read));
  Require(Export(IsOld, Encoding, Lost) == Written);
  return 0;
}

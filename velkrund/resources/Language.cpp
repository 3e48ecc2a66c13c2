#include "velkrund/resources/Language.h"

#include "velkrund/dialogs/YesNoConfirmationForm.h"
#include "velkrund/eif/RecordPieces.h"
#include "velkrund/eif/Section.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr struct {
  const char* Name;
  std::string TOneLanguage::*Value;
} Values[] = {{"RussianName", &TOneLanguage::RussianName},
              {"EnglishName", &TOneLanguage::EnglishName},
              {"NativeName", &TOneLanguage::NativeName}};

}  // namespace

constinit const TEIObjectDescriptor TEILanguage::Descriptor{
    "TEILanguage", nullptr, LanguageType, 100, TSectionRole::Language, nullptr, []() -> std::unique_ptr<TEIObject> {
      return std::make_unique<TEILanguage>();
    }};

void TEILanguage::FillParameters(TEISectionParameters& Parameters) {
  Parameters.AddParam(LanguageParameter, LanguageID);
}

void TEILanguage::Initialize(const TEISection& Section) { LanguageID = Section.ParamValue(LanguageParameter); }

int TEILanguage::AskOverwrite(const std::string& Name) const {
  return YesNoConfirmation(Format(BaseMng().LString("M_Catalox_LUtils_OverwriteLanguageConfirm"), Name));
}

// Values stand as they are: a line end would begin another line, and a reader takes off what looks blank at the end.
void TEILanguage::WriteValue(TEIStream& Stream, const char* Name, const std::string& Value) const {
  if (Value.find('\r') != std::string::npos)
    throw Exception(
        Format("Can not export language resource. %s of language %s has a line end inside", Name, LanguageID));
  if (TrimRight(Value) != Value) {
    ++Stream.Losses().Altered;
    if (Stream.StrictText())
      throw Exception(Format("Can not export language resource. %s of language %s ends with a blank or a control "
                             "character, which readers take off. Allow losses to write it all the same",
                             Name, LanguageID),
                      {.Code = TErrorCode::Loss});
  }
  Stream.Writeln(Format("%s%s=%s", Indentation, Name, Value));
}

void TEILanguage::ExportData(TEIStream& Stream) {
  TOneLanguage Stored;
  if (!LContainer().GetLanguagesTable(DatabaseName).GetLanguage(LanguageID, Stored))
    throw Exception(
        Format("Can not export language resource. Language %s not found in database %s", LanguageID, DatabaseName));
  for (const auto& [Name, Value] : Values) WriteValue(Stream, Name, Stored.*Value);
}

std::string TEILanguage::ReadValue(TEIStream& Stream, const char* Name) const {
  if (Stream.Peek().empty())
    throw Exception(Format("Can not import language resource %s. %s not found", LanguageID, Name),
                    {.Code = TErrorCode::Record});
  std::string_view Line = Stream.Readln();
  if (StrictLines && Line.find('\n') != std::string_view::npos)
    throw Exception(Format("Can not import language resource %s. A line feed alone stands within a line, where it ends "
                           "none",
                           LanguageID),
                    {.Code = TErrorCode::LineFeeds});
  if (!Line.starts_with(Indentation))
    throw Exception(Format("Can not import language resource %s. Invalid file format", LanguageID),
                    {.Code = TErrorCode::Record});
  Line = Trim(Line);
  const std::string_view Wanted(Name);
  if (!SameText(Line.substr(0, Wanted.size()), Wanted))
    throw Exception(Format("Can not import language resource %s. Invalid file format. %s not found", LanguageID, Name),
                    {.Code = TErrorCode::Record});
  // The character behind the name is meant to be "=", but any other has to do.
  Line.remove_prefix(Wanted.size());
  std::size_t Behind = 0;
  if (!Line.empty()) NextCodePoint(Line, Behind);
  return std::string(Line.substr(Behind));
}

void TEILanguage::ImportData(TEIStream& Stream) {
  FStopped = IsCanceled();
  FIsEmpty = Stream.Peek().empty();
  if (FStopped || FIsEmpty) return;
  const std::int64_t Start = Stream.Position(), LinesRead = Stream.ReadLnCnt();
  if (!Stream.Readln().starts_with(Indentation))
    throw Exception(Format("Can not import language resource %s.", LanguageID), {.Code = TErrorCode::Record});
  Stream.SetPosition(Start);
  Stream.SetReadLnCnt(LinesRead);
  TOneLanguage Read;
  for (const auto& [Name, Value] : Values) Read.*Value = ReadValue(Stream, Name);
  if (Record)
    *Record = std::move(Read);
  else
    LContainer().GetLanguagesTable(DatabaseName).SetLanguage(LanguageID, Read);
}

}  // namespace velkrund

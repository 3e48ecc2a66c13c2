#include "velkrund/resources/XMLResources.h"

#include <algorithm>
#include <cstddef>
#include <memory>

#include "velkrund/operations/PropertyAccess.h"
#include "velkrund/platform/localization/LContainer.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/resources/LUtilErrors.h"

namespace velkrund {

namespace {

using TThis = TExportXMLLResourceUtilOperation;
using TFace = TExportXMLLResourceUtilOperationInterface;

constexpr std::size_t BlockSize = 64 * 1024;

constexpr TProperty Properties[] = {
    PropertyOf<&TThis::Stream>("Stream", "TStream to write into"),
    PropertyOf<&TFace::Sections, &TFace::SetSections>("Sections", "sections of strings to save, in this order"),
    PropertyOf<&TFace::Languages, &TFace::SetLanguages>("Languages",
                                                        "languages to save, in this order; empty: all of the database"),
    ReadOnlyOf<&TThis::Aliases>("Aliases", "names of the languages' elements in the document"),
    ReadOnlyOf<&TThis::Texts>("Texts", "texts of the last run"),
};

/// Appends UTF-8 as UTF-16, low bytes first.
void AppendUtf16Bytes(std::string& Out, std::string_view Text) {
  constexpr char32_t FirstOfTwo = 0x10000, HighSurrogate = 0xD800, LowSurrogate = 0xDC00;
  constexpr unsigned HalfBits = 10, ByteBits = 8;
  const auto Unit = [&Out](char32_t Value) {
    Out += static_cast<char>(Value & 0xFFU);
    Out += static_cast<char>(Value >> ByteBits);
  };
  std::size_t Position = 0;
  while (Position < Text.size()) {
    const char32_t Code = NextCodePoint(Text, Position);
    if (Code < FirstOfTwo) {
      Unit(Code);
      continue;
    }
    Unit(HighSurrogate + ((Code - FirstOfTwo) >> HalfBits));
    Unit(LowSurrogate + ((Code - FirstOfTwo) & 0x3FFU));
  }
}

TStringList AllLanguages(const std::string& DatabaseName) {
  TStringList Names;
  LContainer().GetLanguagesTable(DatabaseName).FillLanguageNames(Names);
  return Names;
}

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor =
    OperationDescriptor<TThis>("TExportXMLLResourceUtilOperation");
constinit const TInterfaceDescriptor TFace::Descriptor =
    Describe("TExportXMLLResourceUtilOperationInterface", Properties);

TStringList LanguageAliases(const TStringList& Languages) {
  TStringList Aliases;
  for (const std::string& Language : Languages) {
    std::string Alias;
    const auto IsFree = [&] { return Aliases.IndexOf(Alias) < 0; };
    bool Found = false;
    for (std::size_t Units = 1; Units < static_cast<std::size_t>(Languages.Count()) && !Found; ++Units) {
      Alias = UpperCase(std::string_view(Language).substr(0, Utf16Prefix(Language, Units)));
      Found = !Alias.empty() && IsFree();
    }
    for (int Number = 1; !Found; ++Number) {
      Alias = UpperCase(Language + std::to_string(Number));
      Found = IsFree();
    }
    Aliases.Add(Alias);
  }
  return Aliases;
}

int TExportXMLLResourceUtilOperation::Execute() {
  FOut.clear();
  FStrings = FTexts = 0;
  FLosses = {};
  if (!Stream) throw Exception("Stream is not assigned");
  if (!Sections) throw Exception("Sections are not determined");
  const TStringList Written = Languages ? *Languages : AllLanguages(DatabaseName);
  FAliases = LanguageAliases(Written);
  Append("<?xml version=\"1.0\" encoding=\"windows-1251\"?>\r\n<LRES Version=\"1\">\r\n");
  WriteLanguages(Written);
  bool Stopped = false;
  for (int Index = 0; Index < Sections->Count() && !Stopped; ++Index) {
    Stopped = IsCanceled();
    if (Stopped) continue;
    ShowProgress(Index, Sections->Count(), (*Sections)[Index]);
    WriteSection((*Sections)[Index], Written);
  }
  Append("</LRES>\r\n");
  Flush();
  return Stopped ? 0 : 1;
}

void TExportXMLLResourceUtilOperation::WriteLanguages(const TStringList& Written) {
  Append("\t<LANGUAGES>\r\n");
  for (int Index = 0; Index < Written.Count(); ++Index) {
    FPlace = {.Language = Written[Index]};
    Append("\t\t<LANGUAGE VALUE=\"");
    AppendEscaped(Written[Index]);
    Append("\" ALIAS=\"");
    AppendEscaped(FAliases[Index]);
    Append("\"/>\r\n");
  }
  Append("\t</LANGUAGES>\r\n");
}

void TExportXMLLResourceUtilOperation::WriteSection(const std::string& SectionID, const TStringList& Written) {
  FPlace = {.SectionID = SectionID};
  Append("<SECTION SectionID=\"");
  AppendEscaped(SectionID);
  Append("\">\r\n\t<DATA>\r\n");
  const auto Texts = LContainer().GetLocalizatorTable(DatabaseName).ReadSection(SectionID, Written);
  while (Texts->Next()) {
    FPlace = {.SectionID = SectionID, .Name = Texts->Name()};
    WriteString(*Texts, Written);
    if (FOut.size() >= BlockSize) Flush();
  }
  Append("\t</DATA>\r\n</SECTION>\r\n");
}

void TExportXMLLResourceUtilOperation::WriteString(TSectionTexts& Texts, const TStringList& Written) {
  Append("\t\t<ITEM ID=\"");
  AppendEscaped(Texts.Name());
  Append("\">\r\n");
  for (int Index = 0; Index < Written.Count(); ++Index) {
    const std::optional<std::string_view> Text = Texts.Text(Index);
    if (!Text) continue;
    FPlace.Language = Written[Index];
    Append("\t\t\t<");
    AppendEscaped(FAliases[Index]);
    Append(">");
    AppendEscaped(*Text, TXMLPlace::Text);
    Append("</");
    AppendEscaped(FAliases[Index]);
    Append(">\r\n");
    ++FTexts;
  }
  Append("\t\t</ITEM>\r\n");
  ++FStrings;
}

void TExportXMLLResourceUtilOperation::Append(std::string_view Piece) { AppendUtf16Bytes(FOut, Piece); }

void TExportXMLLResourceUtilOperation::AppendEscaped(std::string_view Value, TXMLPlace Place) {
  FEscaped.clear();
  const std::int64_t Lost = StrToXML(FEscaped, Value, Place);
  Append(FEscaped);
  FLosses.Unrepresentable += Lost;
  if (Lost && StrictText)
    throw ELUtilError(
        Format("Can not export resource '%s', language '%s', to XML. It contains characters that XML can "
               "not carry",
               StringIDOf(FPlace.SectionID, FPlace.Name), FPlace.Language));
}

void TExportXMLLResourceUtilOperation::Flush() {
  Stream->Write(FOut);
  FOut.clear();
}

void TExportXMLLResourceUtilOperationInterface::SetSections(TStringList IDs) {
  FSections = std::move(IDs);
  Operation().Sections = &FSections;
}

void TExportXMLLResourceUtilOperationInterface::SetLanguages(TStringList Names) {
  FLanguages = std::move(Names);
  Operation().Languages = FLanguages.Count() ? &FLanguages : nullptr;
}

}  // namespace velkrund

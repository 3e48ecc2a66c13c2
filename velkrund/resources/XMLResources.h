#pragma once

#include <string>
#include <string_view>

#include "velkrund/operations/OperationInterface.h"
#include "velkrund/platform/localization/LocalizatorTable.h"
#include "velkrund/platform/ormtools/LineReader.h"
#include "velkrund/platform/ormtools/Streams.h"
#include "velkrund/platform/ormtools/StringLists.h"
#include "velkrund/platform/ormtools/XML.h"

namespace velkrund {

/// The names of elements that stand for languages in a document, in the order of the languages. Each is the shortest
/// beginning of the language that no other has, in upper case and shorter than there are languages; where there is
/// none, the language with the first number that makes it unlike the others.
TStringList LanguageAliases(const TStringList& Languages);

/// Writes the strings of several sections, in several languages, as one XML document:
///
///     <LRES Version="1">
///     	<LANGUAGES>
///     		<LANGUAGE VALUE="English" ALIAS="E"/>    one for each language
///     	</LANGUAGES>
///     <SECTION SectionID="K_CLIENTS">                one for each section
///     	<DATA>
///     		<ITEM ID="Caption">                        one for each string, and in it one element for each
///     text 			<E>Clients</E>
///     		</ITEM>
///     	</DATA>
///     </SECTION>
///     </LRES>
///
/// It is written as UTF-16, low bytes first, without a byte-order mark, though its declaration names windows-1251: its
/// readers expect both. Strings stand in the order in which the languages bring them; where there is no text, there is
/// no element.
class TExportXMLLResourceUtilOperation : public TDatabaseUtilOperation {
 public:
  /// 1; 0: cancelled, and the document ends early, but well. After an error what was written stays in the stream.
  int Execute() override;

  // Borrowed. The first two have to be given.
  TStream* Stream = nullptr;
  const TStringList* Sections = nullptr;
  const TStringList* Languages = nullptr;  // null: all of the database
  /// Characters that XML cannot carry are an error; otherwise they are replaced and counted.
  bool StrictText = WorkSettings().StrictText;

  // Of the last run.
  const TStringList& Aliases() const { return FAliases; }
  std::int64_t Strings() const { return FStrings; }
  std::int64_t Texts() const { return FTexts; }
  /// Characters that XML cannot carry, written as U+FFFD; an error where the application is strict about text.
  const TTextLosses& Losses() const { return FLosses; }

  static const TUtilOperationDescriptor Descriptor;

 private:
  /// What is being written, for errors; borrowed.
  struct TPlace {
    std::string_view SectionID = {}, Name = {}, Language = {};
  };

  void WriteLanguages(const TStringList& Written);
  void WriteSection(const std::string& SectionID, const TStringList& Written);
  void WriteString(TSectionTexts& Texts, const TStringList& Written);
  void Append(std::string_view Piece);
  void AppendEscaped(std::string_view Value, TXMLPlace Place = TXMLPlace::Attribute);
  void Flush();

  TStringList FAliases;
  std::int64_t FStrings = 0, FTexts = 0;
  TTextLosses FLosses;
  TPlace FPlace;
  std::string FOut;      // what is not in the stream yet
  std::string FEscaped;  // scratch
};

class TExportXMLLResourceUtilOperationInterface
    : public TOperationInterface<TExportXMLLResourceUtilOperationInterface, TExportXMLLResourceUtilOperation> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  /// Borrowed; outlives the run.
  TStream* Stream() const { return Operation().Stream; }
  void SetStream(TStream* Stream) { Operation().Stream = Stream; }
  const TStringList& Sections() const { return FSections; }
  void SetSections(TStringList IDs);
  const TStringList& Languages() const { return FLanguages; }
  /// An empty list: all of the database.
  void SetLanguages(TStringList Names);

 private:
  TStringList FSections, FLanguages;  // what the operation borrows
};

}  // namespace velkrund

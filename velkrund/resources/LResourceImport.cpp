#include <unordered_set>
#include <vector>

#include "velkrund/dialogs/YesNoConfirmationForm.h"
#include "velkrund/eif/RecordPieces.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/resources/LResource.h"
#include "velkrund/resources/LUtilErrors.h"
#include "velkrund/resources/LanguageLock.h"

namespace velkrund {

namespace {

/// Names to be chosen from, found ignoring case; without a list all names are chosen.
class TChosenNames {
 public:
  explicit TChosenNames(const TStringList* List) : FAll(!List) {
    if (List)
      for (const std::string& Name : *List) FNames.insert(LowerCase(Name));
  }
  bool Has(std::string_view Name) const { return FAll || FNames.contains(LowerCase(Name)); }

 private:
  const bool FAll;
  std::unordered_set<std::string> FNames;
};

}  // namespace

/// Reads a body.
class TEICommonLResource::TReader {
 public:
  TReader(TEICommonLResource& Section, TEIStream& Stream)
      : FSection(Section), FStream(Stream), FChosen(Section.LSection ? nullptr : Section.Resources) {}

  TStringList ReadLanguages() {
    TStringList Listed;
    do {
      if (AtEnd()) Refuse("Languages section not found");
    } while (!NextLine().starts_with(" [LANGUAGES]"));
    while (true) {
      if (AtEnd()) Refuse("Strings section not found");
      const std::string_view Line = NextLine();
      if (Line.starts_with(" [STRINGS]")) return Listed;
      if (!Line.starts_with(Indentation)) RefuseLine("Error in languages section. Leading spaces not found");
      CheckLine(Line);
      Listed.Add(std::string(Trim(Line)));
    }
  }

  /// Listed: the section's languages. False: cancelled.
  bool ReadStrings(const TStringList& Listed, TLSection& Into) {
    for (const std::string& Name : Listed) {
      const bool IsTaken = !FSection.Languages || FSection.Languages->IndexOf(Name) >= 0;
      if (IsTaken) Into.AddLanguage(Name);
      FLanguages.push_back({Name, IsTaken ? Into.GetResources(Name) : nullptr});
    }
    FPlaces.AddAll(Listed.Count(),
                   [this](int At) -> std::string_view { return FLanguages[static_cast<std::size_t>(At)].Name; });
    while (FIsPending || !AtEnd()) {
      if (FSection.IsCanceled()) return false;
      ReadName();
      while (!AtEnd() && ReadText()) {
      }
    }
    return true;
  }

  [[noreturn]] void Refuse(std::string_view What) const {
    throw ELUtilError(Format("Can not import localized resource. %s. SectionID:'%s'", What, FSection.FSectionID),
                      {.Code = TErrorCode::Record});
  }

 private:
  struct TLanguage {
    std::string Name;
    TStringHash* Texts;  // null: they are not to be imported
  };

  [[noreturn]] void RefuseLine(std::string_view What, std::string_view Remedy = {},
                               TErrorCode Code = TErrorCode::Record) const {
    throw ELUtilError(Format("Can not import localized resource. %s (Position:%d). SectionID:'%s'%s", What,
                             FStream.SourcePosition(), FSection.FSectionID, Remedy),
                      {.Code = Code});
  }

  /// A text that is not read as it stands.
  void Alter(std::string_view What, std::string_view Remedy) const {
    ++FStream.Losses().Altered;
    if (FStream.StrictText())
      RefuseLine(Format("Error in strings section. %s", What), Format(". Allow losses to %s", Remedy),
                 TErrorCode::Loss);
  }

  // A file that another program cuts off meanwhile ends before its size.
  bool AtEnd() const { return FStream.Peek().empty(); }

  std::string_view NextLine() const {
    FSection.ShowProgress(FStream.Position(), FStream.Size(), FName);
    return FStream.Readln();
  }

  void CheckLine(std::string_view Line) const {
    if (FSection.StrictLines && Line.find('\n') != std::string_view::npos)
      RefuseLine("A line feed alone stands within a line, where it ends none", {}, TErrorCode::LineFeeds);
  }

  void ReadName() {
    const std::string_view Line = FIsPending ? FPending : NextLine();
    FIsPending = false;
    if (!Line.starts_with(Indentation)) RefuseLine("Error in strings section. Leading spaces not found");
    const std::string_view Name = Trim(Line);
    if (!Name.ends_with(':')) RefuseLine("Error in strings section. ':' not found");
    CheckLine(Line);
    FName = Name.substr(0, Name.size() - 1);
    FIsChosen = FChosen.Has(FName);
    ++(FIsChosen ? FSection.Counted().Strings : FSection.Counted().OtherNames);
  }

  /// False: the line is the next name's, which is read again.
  bool ReadText() {
    const std::int64_t Start = FStream.Position(), LinesRead = FStream.ReadLnCnt();
    std::string_view Line = NextLine();
    const bool IsInPieces = Line.ends_with(ContinuationMark);
    if (IsInPieces) Line = JoinPieces(Line);
    if (!Line.starts_with(Indentation)) RefuseLine("Error in strings section. Leading spaces not found");
    if (Line.substr(Indentation.size()).starts_with(' ')) {
      CheckLine(Line);
      TakeText(Line);
      return true;
    }
    FIsPending = !IsInPieces;
    FPending = Line;
    if (IsInPieces) {
      FStream.SetPosition(Start);
      FStream.SetReadLnCnt(LinesRead);
    }
    return false;
  }

  std::string_view JoinPieces(std::string_view First) {
    FJoined = First;
    while (FJoined.ends_with(ContinuationMark)) {
      if (AtEnd()) RefuseLine("Invalid tree data structure. Unexpected end of strings section");
      const std::string_view Next = NextLine();
      if (!Next.starts_with(ContinuationMark)) RefuseLine("Invalid tree data structure. '@' is missing");
      FJoined.pop_back();
      FJoined += Next.substr(1);
    }
    return FJoined;
  }

  void TakeText(std::string_view Line) {
    const std::size_t Equals = std::min(Line.find('='), Line.size());
    const std::string_view Name = Trim(Line.substr(0, Equals));
    const TLanguage* const Language = FindLanguage(Name);
    if (!Language) return Alter(Format("The languages section lacks the language '%s'", Name), "pass over its texts");
    if (!Language->Texts) {
      ++FSection.Counted().OtherLanguages;
      return;
    }
    const std::string_view Value = Trim(Line.substr(std::min(Equals + 1, Line.size())));
    if (Value.size() < 2 || !Value.starts_with('\'') || !Value.ends_with('\''))
      RefuseLine("Error in strings section. Invalid text value");
    FText = Value.substr(1, Value.size() - 2);
    if (!FSection.UnConvertString(FText)) Alter("The end of a text cuts an escape off", "read it without");
    if (FText == AbsentText) return Alter("A text is the character 0 alone, which stands for none", "leave it out");
    if (FIsChosen && !Language->Texts->Change(FName, FText))
      Alter(Format("There is a second text of '%s' in the language '%s'", FName, Language->Name), "take the last one");
  }

  /// Null: the section does not list it. Texts mostly stand in the order of the list.
  const TLanguage* FindLanguage(std::string_view Name) {
    if (FNextLanguage >= FLanguages.size()) FNextLanguage = 0;
    if (FNextLanguage < FLanguages.size() && FLanguages[FNextLanguage].Name == Name)
      return &FLanguages[FNextLanguage++];
    const int Place = FPlaces.Find(
        Name, [this](int At) -> std::string_view { return FLanguages[static_cast<std::size_t>(At)].Name; });
    if (Place < 0) return nullptr;
    FNextLanguage = static_cast<std::size_t>(Place) + 1;
    return &FLanguages[static_cast<std::size_t>(Place)];
  }

  TEICommonLResource& FSection;
  TEIStream& FStream;
  const TChosenNames FChosen;
  std::vector<TLanguage> FLanguages;  // all that the section lists
  TNameIndex FPlaces;                 // in them
  std::size_t FNextLanguage = 0;      // the one that is expected next
  std::string FName, FText, FJoined;
  bool FIsChosen = false;
  std::string_view FPending;  // the line of the next name
  bool FIsPending = false;
};

/// Writes what was read into the database.
class TEICommonLResource::TStore {
 public:
  explicit TStore(TEICommonLResource& Section)
      : FSection(Section), FTable(LContainer().GetLocalizatorTable(Section.DatabaseName)) {}

  /// False: cancelled.
  bool Write(const TLSection& Texts) {
    for (int Index = 0; Index < Texts.GetCount(); ++Index) {
      const std::string& Language = Texts.GetLanguages(Index);
      TLanguageLock Lock(FTable, FSection.FSectionID, Language);
      for (const auto& [Name, Text] : Texts.GetResByIndex(Index).Entries()) {
        if (FSection.IsCanceled()) return false;
        SetStringID(FID, FSection.FSectionID, Name);
        const bool MayWrite = Decide(Language);
        if (FSection.FOverwriteAsk->FCancel) return false;
        if (MayWrite) FTable.WriteString(FID, Language, Text);
        ++(MayWrite ? FSection.Counted().Texts : FSection.Counted().LeftAlone);
      }
      Lock.End();
    }
    return !FSection.IsCanceled();
  }

 private:
  /// Whether the text takes the place of what there may be.
  bool Decide(const std::string& Language) {
    TYesNoCancelAsk& Ask = *FSection.FOverwriteAsk;
    const bool WritesAll = Ask.FYes && !Ask.FAlwaysAsk;
    if (WritesAll || !FTable.StringExist(FID, Language)) return true;
    if (Ask.FAlwaysAsk)
      Synchronize([&] {
        const int Code = FSection.AskOverwrite(FID);
        Ask.FYes = Code == mrYes || Code == ConfirmedYesToAll;
        Ask.FAlwaysAsk = Code == mrYes || Code == mrNo;
      });
    return Ask.FYes;
  }

  TEICommonLResource& FSection;
  TLocalizatorTable& FTable;
  std::string FID;
};

void TEICommonLResource::ImportData(TEIStream& Stream) {
  Counted() = {};
  FStopped = false;
  TReader Reader(*this, Stream);
  TStringList Listed = Reader.ReadLanguages();
  if (ReadLanguagesOnly) {
    if (!Languages) Reader.Refuse("Languages not assigned for storing language list");
    *Languages = std::move(Listed);
    return;
  }
  TLSection Read;
  FStopped = !Reader.ReadStrings(Listed, Read);
  if (FStopped) return;
  if (LSection) {
    *LSection = std::move(Read);
    return;
  }
  // No line of the file is to blame for what comes now.
  Stream.SetErrorLine(-1);
  TTransaction Transaction(DatabaseName, TIsolationLevel::ReadCommitted);
  FStopped = !TStore(*this).Write(Read);
  if (!FStopped) return Transaction.Commit();
  Counted() = {};
}

}  // namespace velkrund

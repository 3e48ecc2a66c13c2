#include "standalone/localization/StoredStrings.h"

#include <algorithm>
#include <utility>

#include "standalone/catalogue/CatalogueCells.h"
#include "standalone/localization/SectionReader.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// Strings that are deleted by one statement.
constexpr std::size_t MostDeleted = 500;

}  // namespace

void TStoredStrings::DropDeadLock() {
  if (!FLock || FLock->IsAlive()) return;
  FLockLost = FLock->HasTransaction();
  FLock.reset();
}

/// Beside a lock, with nothing held back.
void TStoredStrings::InTransaction(const std::function<void()>& Work) {
  try {
    TWriteTransaction Transaction(FTables.Databases(), FTables.DatabaseName());
    Work();
    FTables.NoteChange();
    Transaction.Commit();
  } catch (...) {
    if (FLock) FLock->Renew();
    throw;
  }
}

/// Hands over whatever is held back.
void TStoredStrings::Settle() {
  DropDeadLock();
  if (FLock) FLock->Finish();
  DeletePending();
}

/// That covers an ID and a language; null: none does.
TSectionLock* TStoredStrings::LockOn(const std::string& StringID, const std::string& Language) {
  DropDeadLock();
  if (!FToDelete.empty()) Settle();
  return FLock && FLock->Covers(StringID, Language) ? FLock.get() : nullptr;
}

std::string TStoredStrings::GetString(const std::string& StringID, const std::string& Language) {
  std::string Absent(AbsentText);
  TSectionLock* const Lock = LockOn(StringID, Language);
  if (Lock && !Lock->Exists(StringID)) return Absent;
  if (!Lock || Lock->IsWritten(StringID)) Settle();
  if (!FTables.Exist()) return Absent;
  const std::string Key = LowerCase(StringID), LanguageKey = LowerCase(Language);
  const auto Row = FTables.Query(
      "SELECT t.text FROM velkrund_strings s JOIN velkrund_texts t ON t.string_number = s.number "
      "JOIN velkrund_languages l ON l.number = t.language_number WHERE s.string_key = ? AND l.name_key = ?",
      {TextCell(Key), TextCell(LanguageKey)});
  return Row->Next() ? TakeText(*Row, 0) : Absent;
}

bool TStoredStrings::StringExist(const std::string& StringID, const std::string& Language) {
  if (TSectionLock* const Lock = LockOn(StringID, Language)) return Lock->Exists(StringID);
  return GetString(StringID, Language) != AbsentText;
}

void TStoredStrings::CheckWritable(const std::string& StringID, const std::string& Language, std::string_view Text) {
  const TCapabilities& Engine = FTables.Connection().Capabilities();
  if (WhyNotHeld(Engine, StringID)) CheckHolds(Engine, StringID, Format("The ID of the string '%s'", StringID));
  if (Text != AbsentText && !WhyNotHeld(Engine, Text)) return;
  const std::string What = Format("The text of the string '%s' in language '%s'", StringID, Language);
  CheckHolds(Engine, Text, What);
  throw EDatabaseError(What + " is the character U+0000 alone, which stands for a text that is not there",
                       {.Code = TErrorCode::Value});
}

void TStoredStrings::WriteString(const std::string& StringID, const std::string& Language, std::string_view Text) {
  CheckWritable(StringID, Language, Text);
  if (TSectionLock* const Lock = LockOn(StringID, Language)) return Lock->Write(StringID, Text);
  WriteAlone(StringID, Language, Text);
}

void TStoredStrings::WriteAlone(const std::string& StringID, const std::string& Language, std::string_view Text) {
  Settle();
  InTransaction([&] {
    TKnownStrings Strings(FTables, SectionFor(StringID));
    Strings.ReadNone();
    TSectionLock Alone(FTables, std::move(Strings), Language);
    Alone.Write(StringID, Text);
    Alone.Finish();
  });
}

/// That a string is to be written in, where no lock says it.
std::string TStoredStrings::SectionFor(const std::string& StringID) {
  if (FTables.Exist()) {
    if (std::optional<std::string> Section = SectionOf(StringID)) return *Section;
    if (std::string Section = LongestSection(StringID); !Section.empty()) return Section;
  }
  std::size_t Last = StringID.rfind('_');
  // What stands behind the section's ID has to be a name.
  if (Last + 1 == StringID.size() && Last > 0) Last = StringID.rfind('_', Last - 1);
  std::string Result = Last == 0 || Last == std::string::npos ? StringID : StringID.substr(0, Last);
  if (NameInSection(StringID, SectionKeyOf(Result))) return Result;
  throw EDatabaseError(Format("The ID of the string '%s' ends with the separator of section and name: there is no name "
                              "behind it",
                              StringID),
                       {.Code = TErrorCode::Value});
}

/// Whose ID is the beginning of the string's; empty: there is none.
std::string TStoredStrings::LongestSection(const std::string& StringID) {
  const std::string Key = LowerCase(StringID);
  for (std::size_t End = Key.size(); End > 0 && End != std::string::npos; End = Key.rfind('_', End - 1)) {
    const std::string Beginning = Key.substr(0, End);
    if (!NameInSection(Key, Beginning)) continue;
    const auto Row =
        FTables.Query("SELECT section_id FROM velkrund_strings WHERE section_key = ? LIMIT 1", {TextCell(Beginning)});
    if (Row->Next()) return TakeText(*Row, 0);
  }
  return {};
}

void TStoredStrings::FillResNames(const std::string& SectionID, const std::string& Language, TStringList& Names) {
  Settle();
  const std::optional<std::int64_t> Number = FTables.LanguageNumber(Language);
  if (!Number) return;
  const std::string Key = SectionKeyOf(SectionID);
  const auto Rows = FTables.Query(
      "SELECT s.name FROM velkrund_strings s JOIN velkrund_texts t ON t.string_number = s.number "
      "WHERE s.section_key = ? AND t.language_number = ? ORDER BY s.number",
      {TextCell(Key), NumberCell(Number)});
  while (Rows->Next()) Names.Add(TakeText(*Rows, 0));
}

std::unique_ptr<TSectionTexts> TStoredStrings::ReadSection(const std::string& SectionID, const TStringList& Languages) {
  Settle();
  return std::make_unique<TSectionReader>(FTables, SectionKeyOf(SectionID), Languages);
}

void TStoredStrings::Lock(const std::string& SectionID, const std::string& Language) {
  Settle();
  if (FLock)
    throw EDatabaseError(Format("Cannot lock section '%s': section '%s' is locked in language '%s'", SectionID,
                                FLock->SectionID(), FLock->Language()));
  FLockOwn.reset();
  FLockLost = false;
  const TCapabilities& Engine = FTables.Connection().Capabilities();
  if (WhyNotHeld(Engine, SectionID)) CheckHolds(Engine, SectionID, Format("The ID of the section '%s'", SectionID));
  if (!FTables.IsInTransaction())
    FLockOwn = std::make_unique<TWriteTransaction>(FTables.Databases(), FTables.DatabaseName());
  try {
    std::optional<TKnownStrings> Strings = std::exchange(FLastLocked, std::nullopt);
    if (!Strings || Strings->SectionKey() != SectionKeyOf(SectionID)) Strings.emplace(FTables, SectionID);
    FLock = std::make_unique<TSectionLock>(FTables, std::move(*Strings), Language);
    FLock->ReadStrings();
  } catch (...) {
    FLock.reset();
    FLockOwn.reset();
    throw;
  }
}

void TStoredStrings::UnLock(const std::string& SectionID, const std::string& Language) {
  DropDeadLock();
  if (FLock && !FLock->IsOf(SectionID, Language))
    throw EDatabaseError(Format("Cannot unlock section '%s' in language '%s': section '%s' is locked in language '%s'",
                                SectionID, Language, FLock->SectionID(), FLock->Language()));
  const std::unique_ptr<TSectionLock> Lock = std::move(FLock);
  const std::unique_ptr<TWriteTransaction> Own = std::move(FLockOwn);
  if (std::exchange(FLockLost, false))
    throw EDatabaseError(
        Format("The texts of section '%s' in language '%s' are not written: what has been done under "
               "their lock was rolled back",
               SectionID, Language));
  if (!Lock) return;
  Lock->Finish();
  if (Own)
    Own->Commit();
  else
    FLastLocked.emplace(Lock->TakeStrings());
}

void TStoredStrings::BeginUpdate() {
  if (FUpdates++ == 0 && !FTables.IsInTransaction())
    FUpdateOwn = std::make_unique<TWriteTransaction>(FTables.Databases(), FTables.DatabaseName());
}

void TStoredStrings::EndUpdate() {
  if (FUpdates == 0 || --FUpdates > 0) return;
  const std::unique_ptr<TWriteTransaction> Own = std::move(FUpdateOwn);
  Settle();
  if (Own) Own->Commit();
}

bool TStoredStrings::DeleteString(const std::string& StringID) {
  DropDeadLock();
  if (FLock) FLock->Finish();
  if (!FTables.Exist()) return false;
  const std::string Key = LowerCase(StringID);
  const std::optional<std::int64_t> Number =
      FTables.QueryNumber("SELECT number FROM velkrund_strings WHERE string_key = ?", {TextCell(Key)});
  if (!Number || std::find(FToDelete.begin(), FToDelete.end(), *Number) != FToDelete.end()) return false;
  if (FUpdates == 0) {
    InTransaction([&] { Delete({&*Number, 1}); });
    return true;
  }
  if (FToDelete.size() == MostDeleted) DeletePending();
  FToDeleteMark = FTables.TransactionMark();
  FToDelete.push_back(*Number);
  return true;
}

void TStoredStrings::DeletePending() {
  const std::vector<std::int64_t> Numbers = std::exchange(FToDelete, {});
  // Not when the transaction that they were to be deleted in is gone.
  if (!Numbers.empty() && FToDeleteMark == FTables.TransactionMark()) Delete(Numbers);
}

void TStoredStrings::Delete(std::span<const std::int64_t> Numbers) {
  const std::string List = ListOf(Numbers);
  // First what whoever writes texts of them holds: then those that he has written are found, too.
  FTables.Execute(Format("DELETE FROM velkrund_strings WHERE number IN (%s)", List));
  FTables.Execute(Format("DELETE FROM velkrund_texts WHERE string_number IN (%s)", List));
  FTables.NoteChange();
}

std::vector<TLSectionInfo> TStoredStrings::Sections() {
  Settle();
  std::vector<TLSectionInfo> Result;
  if (!FTables.Exist()) return Result;
  // In the order of the keys, both times.
  const auto Strings =
      FTables.Query("SELECT min(section_id), count(*) FROM velkrund_strings GROUP BY section_key ORDER BY section_key");
  while (Strings->Next()) Result.push_back({TakeText(*Strings, 0), TakeNumber(*Strings, 1).value_or(0), 0});
  const auto Texts = FTables.Query(
      "SELECT count(*) FROM velkrund_strings s JOIN velkrund_texts t ON t.string_number = s.number "
      "GROUP BY s.section_key ORDER BY s.section_key");
  for (TLSectionInfo& Section : Result)
    if (Texts->Next()) Section.Texts = TakeNumber(*Texts, 0).value_or(0);
  std::sort(Result.begin(), Result.end(),
            [](const TLSectionInfo& A, const TLSectionInfo& B) { return CompareText(A.SectionID, B.SectionID) < 0; });
  return Result;
}

std::optional<std::string> TStoredStrings::SectionOf(const std::string& StringID) {
  Settle();
  if (!FTables.Exist()) return std::nullopt;
  const std::string Key = LowerCase(StringID);
  const auto Row = FTables.Query("SELECT section_id FROM velkrund_strings WHERE string_key = ?", {TextCell(Key)});
  return Row->Next() ? std::optional(TakeText(*Row, 0)) : std::nullopt;
}

}  // namespace velkrund

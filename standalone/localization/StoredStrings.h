#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/databases/WriteTransaction.h"
#include "standalone/localization/SectionLock.h"
#include "velkrund/platform/localization/LocalizatorTable.h"

namespace velkrund {

/// The localized strings of one database.
class TStoredStrings final : public TLocalizatorTable {
 public:
  /// Tables: borrowed.
  explicit TStoredStrings(TLocalizationTables& Tables) : FTables(Tables) {}

  std::string GetString(const std::string& StringID, const std::string& Language) override;
  /// Under a lock that covers the string, without a question to the engine.
  bool StringExist(const std::string& StringID, const std::string& Language) override;
  void WriteString(const std::string& StringID, const std::string& Language, std::string_view Text) override;
  void FillResNames(const std::string& SectionID, const std::string& Language, TStringList& Names) override;
  std::unique_ptr<TSectionTexts> ReadSection(const std::string& SectionID, const TStringList& Languages) override;
  void Lock(const std::string& SectionID, const std::string& Language) override;
  void UnLock(const std::string& SectionID, const std::string& Language) override;
  void BeginUpdate() override;
  void EndUpdate() override;
  bool DeleteString(const std::string& StringID) override;
  std::vector<TLSectionInfo> Sections() override;
  std::optional<std::string> SectionOf(const std::string& StringID) override;

 private:
  TSectionLock* LockOn(const std::string& StringID, const std::string& Language);
  void DropDeadLock();
  void InTransaction(const std::function<void()>& Work);
  void Settle();
  void CheckWritable(const std::string& StringID, const std::string& Language, std::string_view Text);
  void WriteAlone(const std::string& StringID, const std::string& Language, std::string_view Text);
  std::string SectionFor(const std::string& StringID);
  std::string LongestSection(const std::string& StringID);
  void DeletePending();
  void Delete(std::span<const std::int64_t> Numbers);

  TLocalizationTables& FTables;
  std::optional<TKnownStrings> FLastLocked;  // what is known of the section that was locked last
  std::unique_ptr<TSectionLock> FLock;
  std::unique_ptr<TWriteTransaction> FLockOwn;    // that the lock began
  bool FLockLost = false;                         // with what was written under it, while its transaction goes on
  int FUpdates = 0;                               // begun and not ended
  std::unique_ptr<TWriteTransaction> FUpdateOwn;  // that they began
  std::vector<std::int64_t> FToDelete;            // numbers of strings
  std::int64_t FToDeleteMark = 0;                 // of the transaction that they are to be deleted in
};

}  // namespace velkrund

#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "standalone/databases/StandaloneManager.h"
#include "standalone/localization/LocalizationStore.h"
#include "tests/standalone/DriverFixture.h"

namespace velkrund::tests {

/// Whoever works on a database, with a connection of his own.
class TStoreUser {
 public:
  explicit TStoreUser(std::string Url, std::chrono::milliseconds BusyTime = std::chrono::milliseconds(10'000))
      : FUrl(std::move(Url)) {
    Manager.Databases().SetCreateMissing(true);
    Manager.Databases().SetBusyTime(BusyTime);
  }

  TLanguagesTable& Languages() { return Store.GetLanguagesTable(FUrl); }
  TLocalizatorTable& Strings() { return Store.GetLocalizatorTable(FUrl); }
  TConnection& Connection() { return Manager.Databases().Connection(FUrl); }
  /// Writes texts under a lock.
  void Write(const std::string& Section, const std::string& Language,
             const std::vector<std::pair<std::string, std::string>>& Texts) {
    Strings().Lock(Section, Language);
    try {
      for (const auto& [ID, Text] : Texts) Strings().WriteString(ID, Language, Text);
    } catch (...) {
      EXPECT_ANY_THROW(Strings().UnLock(Section, Language)) << "its transaction is lost";
      throw;
    }
    Strings().UnLock(Section, Language);
  }
  /// "Name: text, text" with "-" for a text that is not there, in the order of ReadSection.
  std::vector<std::string> Section(const std::string& SectionID, const TStringList& Names) {
    const std::unique_ptr<TSectionTexts> Texts = Strings().ReadSection(SectionID, Names);
    std::vector<std::string> Result;
    while (Texts->Next()) {
      std::string& Line = Result.emplace_back(Texts->Name() + ":");
      for (int I = 0; I < Names.Count(); ++I) Line.append(" ").append(Texts->Text(I).value_or("-"));
    }
    EXPECT_EQ(Texts->Count(), static_cast<std::int64_t>(Result.size()));
    return Result;
  }
  std::vector<std::string> SectionList() {
    std::vector<std::string> Result;
    for (const TLSectionInfo& Info : Strings().Sections())
      Result.push_back(Info.SectionID + " " + std::to_string(Info.Strings) + " " + std::to_string(Info.Texts));
    return Result;
  }
  std::int64_t Rows(const std::string& Table) {
    const auto Found = Connection().Query("SELECT count(*) FROM " + Table);
    TKvVariant Count;
    Found->Next();
    Found->Read(0, Count);
    return Count.AsInteger();
  }

 private:
  const std::string FUrl;

 public:
  TStandaloneManager Manager{TConfiguration()};
  TLocalizationStore Store{Manager.Databases()};
};

class LocalizationFixture : public testing::TestWithParam<TEngine> {
 protected:
  LocalizationFixture() {
    for (const char* Language : {"English", "Russian"}) User.Languages().SetLanguage(Language, {});
  }

  TTemporaryFolder Folder;
  TAddressed Address = GetParam().Address(Folder);
  const std::string Url = Address.Url;
  TStoreUser User{Url};
};

}  // namespace velkrund::tests

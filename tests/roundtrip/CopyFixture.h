#pragma once

#include <gmock/gmock.h>

#include "standalone/dictionary/StandaloneDictionary.h"
#include "tests/roundtrip/RoundTrip.h"
#include "velkrund/dialogs/YesNoConfirmationForm.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/InstalledService.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {

/// Answers the dialog about rows that are there, and the message box.
class TAnswers final : public TWindowSystem {
 public:
  int ShowModal(TForm& Form) override { return Next(dynamic_cast<TYesNoConfirmationForm&>(Form).MainLabel.Caption); }
  int Next(const std::string& Question) {
    Asked.push_back(Question);
    if (Answers.empty()) throw EQuestionUnanswered("nobody");
    const int Result = Answers.front();
    Answers.erase(Answers.begin());
    return Result;
  }

  std::vector<int> Answers;
  std::vector<std::string> Asked;
};

/// s has the rows, t takes them; both are in the target, and s in another database too.
class TCopyFixture : public testing::TestWithParam<const char*> {
 protected:
  TCopyFixture() {
    Platform.Manager.SetLookUpText([](std::string_view Key) { return std::string(Key) + " %s"; });
    Platform.Manager.Databases().SetDefaultDatabase(Target.Url);
    Single.TargetDatabaseName = List.TargetDatabaseName = Target.Url;
    Single.SourceTableName = "S";
    Single.TargetTableName = "T";
  }

  bool IsServer() const { return GetParam() == std::string("postgresql"); }
  TTestDatabase Open(const std::string& Name) {
    return IsServer() ? PostgreSQLDatabase() : SQLiteDatabase(Folder / Name);
  }
  void Renew(const std::string& Before = {}) {
    const std::string Bytes = IsServer() ? "bytea" : "BLOB";
    for (TTestDatabase* Database : {&Target, &Other})
      Database->Run("DROP TABLE IF EXISTS s; DROP TABLE IF EXISTS t; CREATE TABLE s (i integer, n text, b " + Bytes +
                    "); INSERT INTO s VALUES (1, 'one', NULL), (2, NULL, NULL), (3, 'three', NULL);");
    Target.Run("CREATE TABLE t (i integer PRIMARY KEY, n text CHECK (n <> 'bad'), x text DEFAULT 'd', b " + Bytes +
               "); INSERT INTO t VALUES (1, 'old', 'kept', NULL), (7, 'seven', 'x', NULL);");
    for (TTestDatabase* Database : {&Target, &Other})
      if (!Before.empty()) Database->Run(Before);
  }
  /// What is in a table once that which hangs in a transaction is gone.
  std::string RowsOf(const TTestDatabase& Database, const std::string& Table = "t",
                     const std::string& Fields = "i, n, x") {
    Platform.Manager.Databases().Close(Database.Url);
    std::string Result = Database.Text("SELECT " + Fields + " FROM " + Table + " ORDER BY i");
    std::replace(Result.begin(), Result.end(), '\t', ',');
    std::replace(Result.begin(), Result.end(), '\n', ' ');
    return Result;
  }
  template <typename TOperation>
  static std::string Outcome(TOperation& Operation) {
    try {
      return std::to_string(Operation.Execute());
    } catch (const std::exception& Error) {
      return ExceptionClassName(Error) + ": " + Error.what();
    }
  }

  TTemporaryFolder Folder;
  TTestDatabase Target = Open("target.db"), Other = Open("other.db");
  TRealPlatform Platform;
  TStandaloneDictionary Dictionary{Platform.Manager};
  TAnswers Person;
  const TServiceGuard<TDictionary> DictionaryGuard{&Dictionary};
  const TServiceGuard<TWindowSystem> PersonGuard{&Person};
  const TMessageBoxGuard Box{[this](TWindowHandle, std::u16string_view Text, std::u16string_view, std::uint32_t,
                                    std::int32_t, std::int32_t) { return Person.Next("box " + FromUtf16(Text)); }};
  TUOCustomCopyTable Single;
  TUOCustomCopyTables List;
};

}  // namespace velkrund::tests

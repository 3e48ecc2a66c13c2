// Rows that the module's own operations copy between tables, on the real platform.

#include "standalone/dictionary/StoredDescriptions.h"
#include "tests/roundtrip/CopyFixture.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;
using CopyTable = TCopyFixture;

INSTANTIATE_TEST_SUITE_P(Engines, CopyTable, testing::Values("sqlite", "postgresql"),
                         [](const auto& Info) { return Info.param; });

constexpr const char* Before = "1,old,kept 7,seven,x ";

TEST_P(CopyTable, OneTable) {
  using TSettings = TUOCustomCopyTable;
  struct TCase {
    const char* Before;
    std::function<void(TSettings&)> Set;
    const char* Outcome;  // or a part of it
    const char* Rows;     // of t
  };
  const TCase Cases[] = {
      {"", [](TSettings&) {}, "1", "1,one,d 2,\\N,d 3,three,d "},
      {"", [](TSettings& S) { S.Selection = "i > 1"; }, "1", "2,\\N,d 3,three,d "},
      {"", [](TSettings& S) { S.Selection = "i > 1", S.Append = true; }, "1",
       "1,old,kept 2,\\N,d 3,three,d 7,seven,x "},
      {"", [](TSettings& S) { S.Selection = "i > 9"; }, "1", ""},
      {"", [](TSettings& S) { S.Append = S.Update = true; }, "1", "1,one,kept 2,\\N,d 3,three,d 7,seven,x "},
      {"", [](TSettings& S) { S.Update = true; }, "1", "1,one,d 2,\\N,d 3,three,d "},
      {"",
       [](TSettings& S) {
         S.FieldMapping = {{"N", "X"}, {"gone", "n"}};
       },
       "1", "1,\\N,one 2,\\N,\\N 3,\\N,three "},
      {"DELETE FROM s", [](TSettings&) {}, "1", ""},
      // Nothing is done where one of them cannot be opened, and nothing stays of what fails or is cancelled.
      {"", [](TSettings& S) { S.SourceTableName = "gone"; }, "0", Before},
      {"", [](TSettings& S) { S.TargetTableName = "gone"; }, "0", Before},
      {"", [](TSettings& S) { S.SetCanceled(true); }, "0", Before},
      {"", [](TSettings& S) { S.FOnShowProgress = [&S](auto, auto, auto) { S.SetCanceled(true); }; }, "0", Before},
      {"", [](TSettings& S) { S.Append = true; }, "EDatabaseError: ", Before},
      {"", [](TSettings& S) { S.Selection = "i >"; }, "EDatabaseError: ", Before},
      {"INSERT INTO s VALUES (4, 'bad', NULL)", [](TSettings&) {}, "EDatabaseError: ", Before},
      {"INSERT INTO s VALUES (4, 'bad', NULL)", [](TSettings& S) { S.Append = S.Update = true; },
       "EDatabaseError: ", Before},
      {"ALTER TABLE s RENAME i TO k", [](TSettings& S) { S.Append = S.Update = true; }, "EDatabaseError: ", Before},
  };
  for (const auto& [Prepare, Set, Expected, Rows] : Cases)
    for (const TTestDatabase* Source : {&Target, &Other}) {
      SCOPED_TRACE(Format("case %d from %s", &Set - &Cases[0].Set, Source == &Target ? "within" : "another"));
      Renew(Prepare);
      TUOCustomCopyTable Operation;
      Operation.DatabaseName = Source->Url;
      Operation.TargetDatabaseName = Target.Url;
      Operation.SourceTableName = "S";
      Operation.TargetTableName = "T";
      Set(Operation);
      EXPECT_THAT(Outcome(Operation), testing::StartsWith(Expected));
      EXPECT_EQ(RowsOf(Target), Rows);
      EXPECT_EQ(Operation.Report().Opened, Operation.SourceTableName != "gone" && Operation.TargetTableName != "gone");
    }
  Renew();
  Single.DatabaseName = Target.Url;
  Single.SourceTableName = "t";
  EXPECT_EQ(Outcome(Single), "EDicUtilError: The table 't' cannot be copied onto itself");
  EXPECT_EQ(RowsOf(Target), Before);
}

TEST_P(CopyTable, ReportsRowsAndProgress) {
  Renew();
  Single.DatabaseName = Other.Url;
  std::vector<std::string> Seen;
  Single.FOnShowProgress = [&](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    Seen.push_back(Format("%d/%d %s", Current, Total, std::string(Name)));
  };
  Single.Append = Single.Update = true;
  EXPECT_EQ(Outcome(Single), "1");
  EXPECT_EQ(Single.Report().Rows, 3);
  EXPECT_EQ(Single.Report().UpdatedRows, 1);
  EXPECT_EQ(Single.Report().DeletedRows, 0);
  ASSERT_FALSE(Seen.empty());
  EXPECT_EQ(Seen.back(), "3/3 T");
  Single.Append = Single.Update = false;
  EXPECT_EQ(Outcome(Single), "1");
  EXPECT_EQ(Single.Report().DeletedRows, 4);
  EXPECT_EQ(Single.Report().UpdatedRows, 0);
}

// The deletion goes to the application's default database, whatever the target is.
TEST_P(CopyTable, TheDefaultDatabaseIsEmptied) {
  TDatabases& Databases = Platform.Manager.Databases();
  Renew();
  Single.DatabaseName = Other.Url;
  Databases.SetDefaultDatabase({});
  EXPECT_THAT(Outcome(Single), HasSubstr("default"));
  EXPECT_EQ(RowsOf(Target), Before);
  Single.Append = true;
  Single.Selection = "i > 1";
  EXPECT_EQ(Outcome(Single), "1") << "what deletes nothing needs none";
  Renew();
  Databases.SetDefaultDatabase(Other.Url);
  Single.Append = false;
  EXPECT_THAT(Outcome(Single), HasSubstr("EDatabaseError: ")) << "there is no such table there";
  EXPECT_EQ(RowsOf(Target), Before);
  const auto Put = [&] { Other.Run("CREATE TABLE t AS SELECT i, n, n AS x FROM s"); };
  Put();
  EXPECT_EQ(Outcome(Single), "1");
  EXPECT_EQ(RowsOf(Target), "1,old,kept 2,\\N,d 3,three,d 7,seven,x ");
  EXPECT_EQ(RowsOf(Other), "");
  Renew();
  Put();
  Single.Selection.clear();
  EXPECT_THAT(Outcome(Single), HasSubstr("EDatabaseError: ")) << "a row with that key has stayed";
  EXPECT_EQ(RowsOf(Target), Before);
  EXPECT_EQ(RowsOf(Other), "") << "no roll back of the target brings these back";
}

TEST_P(CopyTable, TablesInsideBLOBFields) {
  using TCells = std::vector<std::pair<std::string, std::int64_t>>;
  const auto Inside = [&](const std::string& Name, const TCells& Cells) {
    TBLOBTable::TFields Fields;
    for (const auto& Cell : Cells) Fields.push_back({Cell.first, TKvKind::Int64});
    const auto Result = Platform.Manager.NewBLOBTable(Name, Fields);
    Result->BeginAppend();
    for (const auto& [Field, Value] : Cells) Result->Record().FieldByName(Field).Buffer().SetInteger(Value);
    Result->AppendRecord();
    Result->EndAppend();
    return Result->Bytes();
  };
  const std::string Old = Inside("OLD", {{"WIDTH", 3}, {"GONE", 4}}), New = Inside("t.b", {{"W", 3}});
  const std::string Damaged = Old.substr(0, Old.size() - 1);
  TDicTableDescription Described;
  Described.Name = "T.B";
  const std::vector<TDicField> Fields = {{.Name = "W", .Type = TDicFieldType::Int64}};
  struct TCase {
    std::string Value;
    bool HasStructure, HasFields, IsExcluded;
    const char* Outcome;
    std::string Kept;  // empty: the row did not come
  };
  const TCase Cases[] = {
      {Old, false, false, false, "1", Old},
      {Old, true, true, true, "1", Old},
      {Old, true, true, false, "1", New},
      {"plain", true, true, false, "1", "plain"},
      {Damaged, true, true, false, "EDicUtilError: Error opening BLOB table in field 'b' in the table 't'", ""},
      {Old, true, false, false, "EDicUtilError: Error getting BLOB table in field 'b' in the table 't'", ""},
  };
  for (const TCase& Case : Cases)
    for (const TTestDatabase* Source : {&Target, &Other}) {
      SCOPED_TRACE(Format("case %d", &Case - Cases));
      Renew("DELETE FROM s WHERE i <> 2");
      TConnection& Connection = Platform.Manager.Databases().Connection(Source->Url);
      TKvVariant Cell;
      Cell.SetBytes(Case.Value);
      Connection.Execute("UPDATE s SET b = " + Connection.Dialect().ParameterMark(1), {&Cell, 1});
      Described.Fields = Case.HasFields ? Fields : std::vector<TDicField>();
      if (Case.HasStructure) StoreDescription(Target.Url, Described);
      TUOCustomCopyTable Operation;
      Operation.DatabaseName = Source->Url;
      Operation.TargetDatabaseName = Target.Url;
      Operation.SourceTableName = "s";
      Operation.TargetTableName = "t";
      Operation.SetBLOBMapping({{"B.width", "w"}});
      if (Case.IsExcluded) Operation.ExcludedBLOBTableFields = TStringList{"B"};
      EXPECT_EQ(Outcome(Operation), Case.Outcome);
      EXPECT_THAT(Operation.Report().LostFields, testing::SizeIs(Case.Kept == New ? 1 : 0));
      if (Case.Kept.empty()) {
        EXPECT_EQ(RowsOf(Target), Before);
        continue;
      }
      const auto Opened = Platform.Manager.GetUserTable("t", Target.Url, false);
      ASSERT_TRUE(Opened->First());
      EXPECT_EQ(Opened->FieldByName("b").Value().AsText(), Case.Kept);
      EXPECT_FALSE(Opened->Next());
    }
}

}  // namespace
}  // namespace velkrund::tests

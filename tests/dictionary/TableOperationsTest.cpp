#include <gtest/gtest.h>

#include "tests/dictionary/TableFixture.h"
#include "velkrund/dictionary/Registration.h"
#include "velkrund/eif/Eifiles.h"
#include "velkrund/operations/OperationErrors.h"

namespace velkrund::tests {
namespace {

/// Every table is there, and empty.
class TPlatformWithTables : public TTestPlatform {
 public:
  std::unique_ptr<TTable> GetUserTable(const std::string& Name, const std::string&, bool) override {
    if (Name == "GONE") return nullptr;
    return std::make_unique<TMemoryTable>(Name, TMemoryTable::TColumns{{"A", TKvKind::Int64}});
  }
};

class TableOperations : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!EITypeList().Find("TableData", 200)) RegisterDictionaryClasses();
  }
  TableOperations() : File(Platform.MemoryFiles), Table("T", {{"A", TKvKind::Int64}}) {
    File.SetFileName("t.eif");
    File.CreateFile();
    File.Open();
    AppendRow(Table, {Integer(1)});
  }

  TPlatformWithTables Platform;
  TEIFile File;
  TMemoryTable Table;
};

TEST_F(TableOperations, ReleaseChoosesVersionAndEncoding) {
  const struct {
    TExportReleaseVersion Release;
    TKvEncoding Encoding;
    int ExpectedVersion;
    TKvEncoding ExpectedEncoding;
  } Cases[] = {
      {TExportReleaseVersion::rv17, TKvEncoding::Utf8, 100, TKvEncoding::Ansi},
      {TExportReleaseVersion::rv20, TKvEncoding::Utf8, 200, TKvEncoding::Utf8},
      {TExportReleaseVersion::rv20, TKvEncoding::Ansi, 200, TKvEncoding::Ansi},
  };
  TUOExportTableDataInterface Export;
  Export.SetTarget(&File);
  Export.SetTable(&Table);
  for (const auto& Case : Cases) {
    Export.SetSectionName("S");
    Export.SetTableName("T");
    Export.SetReleaseVersion(Case.Release);
    Export.SetEncoding(Case.Encoding);
    ASSERT_EQ(Export.Execute(), 1) << Export.LastError();
    const TEISection& Section = File.Sections()[File.Sections().Count() - 1];
    EXPECT_EQ(Section.Version(), Case.ExpectedVersion);
    EXPECT_EQ(Section.Encoding(), Case.ExpectedEncoding);
    EXPECT_EQ(Section.ParamValue("TableName"), "T");
  }
  EXPECT_EQ(static_cast<TUOExportTableData&>(Export.Operation()).Report.RowCount, 1);
}

TEST_F(TableOperations, FailuresAndCancellationAreResults) {
  TUOExportTableDataInterface Export;
  EXPECT_EQ(Export.Execute(), 0);
  EXPECT_EQ(Export.LastError(), "Exception:Propetry Target must be assigned for export util operation");
  Export.SetTarget(&File);
  Export.SetTableName("GONE");
  Export.SetSectionName("S");
  EXPECT_EQ(Export.Execute(), 0);
  EXPECT_EQ(Export.LastError(), "EDicUtilError:Can not export table data. Error opening table (TableName:'GONE')");
  Export.SetTable(&Table);
  Export.Operation().SetCanceled(true);
  EXPECT_EQ(Export.Execute(), 0);
  EXPECT_EQ(Export.LastError(), "");
  EXPECT_EQ(File.Sections().Count(), 0);
  EXPECT_EQ(Platform.MemoryFiles.Get("t.eif"), "");

  TUOImportTableDataInterface Import;
  EXPECT_EQ(Import.Execute(), 0);
  EXPECT_TRUE(Import.LastError().starts_with("EAccessViolation:")) << Import.LastError();
  Export.Operation().SetCanceled(false);
  ASSERT_EQ(Export.Execute(), 1);
  Import.SetSource(&File);
  EXPECT_EQ(Import.Execute(), 0);
  EXPECT_TRUE(Import.LastError().starts_with(
      "EEIError:Can not import table data. Error opening table (TableName:'GONE'); FileName: t.eif; Line: 3 "
      "OwnerException: \r\nEDicUtilError: "))
      << Import.LastError();
}

TEST_F(TableOperations, StrictnessIsOfTheRun) {
  TMemoryTable Texts("T", {{"A", TKvKind::String}});
  AppendRow(Texts, {Text("日")});
  TUOExportTableDataInterface Export;
  Export.SetTarget(&File);
  Export.SetTable(&Texts);
  Export.SetTableName("T");
  Export.SetSectionName("S");
  for (const auto Release : {TExportReleaseVersion::rv17, TExportReleaseVersion::rv20}) {
    Export.SetReleaseVersion(Release);
    Export.SetEncoding(TKvEncoding::Ansi);
    for (const bool Strict : {true, false}) {
      Platform.WorkSettings.StrictText = !Strict;
      File.SetStrictText(Strict);
      EXPECT_EQ(Export.Execute(), Strict ? 0 : 1) << Export.LastError();
    }
  }

  Platform.MemoryFiles.Put("v.eif",
                           "[SECTION]\r\nType=TableData\r\nVersion=200\r\nName=S\r\nTableName=T\r\n[DATA]\r\n"
                           "[FIELDS]\r\nA\r\n[RECORDS]\r\n<abc>\r\n[END]\r\n");
  TEIFile Values(Platform.MemoryFiles);
  Values.SetFileName("v.eif");
  Values.Open();
  TUOImportTableDataInterface Import;
  Import.SetSource(&Values);
  auto& Operation = static_cast<TUOImportTableData&>(Import.Operation());
  for (const auto& [OfRun, OfApplication, Refused] : {std::tuple<std::optional<bool>, bool, bool>{{}, true, true},
                                                      {{}, false, false},
                                                      {true, false, true},
                                                      {false, true, false}}) {
    Operation.StrictValues = OfRun;
    Platform.WorkSettings.StrictValues = OfApplication;
    EXPECT_EQ(Import.Execute(), Refused ? 0 : 1) << Import.LastError();
    EXPECT_EQ(Operation.Report.NullsMade, Refused ? 0 : 1);
  }
}

TEST_F(TableOperations, PropertiesByName) {
  const TInterfaceClass Class = InterfaceClasses().Find("tuoimporttabledatainterface");
  ASSERT_TRUE(Class);
  const auto Object = Class.Create(nullptr);
  SetPropertyText(*Object, "tablename", "X");
  SetPropertyText(*Object, "Append", "true");
  SetPropertyText(*Object, "Fields", "A, B");
  SetPropertyText(*Object, "DatabaseName", "db");
  SetPropertyText(*Object, "SectionNumber", "3");
  auto& Import = dynamic_cast<TUOImportTableData&>(Object->Operation());
  EXPECT_EQ(Import.TableName, "X");
  EXPECT_TRUE(Import.Append);
  EXPECT_EQ(Import.DatabaseName, "db");
  EXPECT_EQ(Import.FSectionNumber, 3);
  EXPECT_EQ(Import.Fields.IndexOf("b"), 1);
  SetProperty(*Object, "Fields", std::vector<std::string>());
  EXPECT_EQ(Import.Fields.Count(), 0);
  EXPECT_EQ(std::get<bool>(GetProperty(*Object, "SkipMissingFields")), true);
  for (const auto& [Name, Value] : TStringPairs{
           {"Nope", "1"}, {"Append", "maybe"}, {"LastError", "x"}, {"SectionNumber", "9999999999"}, {"Source", "1"}})
    EXPECT_THROW(SetPropertyText(*Object, Name, Value), EPropertyError) << Name;

  const auto Export = InterfaceClasses().Find("TUOExportTableDataInterface").Create(nullptr);
  SetPropertyText(*Export, "ReleaseVersion", "RV17");
  EXPECT_EQ(std::get<std::int64_t>(GetProperty(*Export, "ReleaseVersion")), 0);
  EXPECT_THROW(SetProperty(*Export, "ReleaseVersion", std::int64_t{2}), EPropertyError);
  SetProperty(*Export, "Target", static_cast<void*>(&File));
  EXPECT_EQ(dynamic_cast<TUOExportTableData&>(Export->Operation()).FTarget, &File);
}

}  // namespace
}  // namespace velkrund::tests

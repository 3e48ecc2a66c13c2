#include <gtest/gtest.h>

#include "tests/dictionary/QueryFixture.h"
#include "tests/dictionary/RecreateFixture.h"
#include "velkrund/dictionary/Registration.h"
#include "velkrund/eif/Eifiles.h"

namespace velkrund::tests {
namespace {

/// Queries of two rows and one parameter; the table T is there.
class TPlatformWithQueries : public TTestPlatform {
 public:
  TPlatformWithQueries() : Result("R", {{"A", TKvKind::Int64}}) {
    for (const int Row : {10, 20}) AppendRow(Result, {Integer(Row)});
  }

  std::unique_ptr<TSelectQuery> CreateSelectQuery(const std::string&) override {
    if (!HasQueries) return nullptr;
    auto Query = std::make_unique<TTableQuery>(Result, "");
    Query->Parameters() = {{"P"}};
    return Query;
  }
  std::unique_ptr<TTable> GetUserTable(const std::string& Name, const std::string&, bool) override {
    if (Name != "T") return nullptr;
    return std::make_unique<TMemoryTable>(Name, TMemoryTable::TColumns{{"B", TKvKind::Int64}});
  }

  bool HasQueries = true;
  TMemoryTable Result;
};

class QueryOperations : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!EITypeList().Find("QueryData", 200)) RegisterDictionaryClasses();
  }
  QueryOperations() : File(Platform.MemoryFiles) {
    File.SetFileName("q.eif");
    File.CreateFile();
    File.Open();
  }
  const TEISection& LastSection() const { return File.Sections()[File.Sections().Count() - 1]; }

  TPlatformWithQueries Platform;
  TEIFile File;
  std::vector<std::string> Done;
  TNamedObjects Generators{Done};
  const TServiceGuard<TDicDBContainer> Guard{&Generators};
};

TEST_F(QueryOperations, QueriesOutAndIn) {
  const auto Export = InterfaceClasses().Find("TUOExportQueryDataInterface").Create(nullptr);
  SetProperty(*Export, "Target", static_cast<void*>(&File));
  SetPropertyText(*Export, "SectionName", "Q");
  EXPECT_EQ(Export->Execute(), 0);
  EXPECT_EQ(Export->LastError(), "EDicUtilError:Can not export Query data. Query not assigned");
  SetPropertyText(*Export, "SQL", "SELECT A");
  SetPropertyText(*Export, "Parameters", "p=integer:x");
  EXPECT_EQ(Export->Execute(), 0);
  EXPECT_EQ(Export->LastError(), "EDicUtilError:The parameter 'p' has a value that is none of the type integer: 'x'");
  EXPECT_EQ(Platform.MemoryFiles.Get("q.eif"), "") << "nothing is left of what has failed";
  SetPropertyText(*Export, "Parameters", "p=integer:5");
  for (const char* Release : {"rv20", "rv17"}) {
    SetPropertyText(*Export, "ReleaseVersion", Release);
    ASSERT_EQ(Export->Execute(), 1) << Export->LastError();
    EXPECT_EQ(LastSection().Version(), Release == std::string("rv20") ? 200 : 100);
    EXPECT_EQ(LastSection().ParamValue("Query"), "SELECT A");
    EXPECT_EQ(GetPropertyInteger(*Export, "Rows"), 2);
  }
  EXPECT_NE(Platform.MemoryFiles.Get("q.eif").find("  <P|integer|5>\r\n [FIELDS]\r\n  #\r\n  A\r\n"),
            std::string::npos);

  const auto Import = InterfaceClasses().Find("TUOImportQueryDataInterface").Create(nullptr);
  SetProperty(*Import, "Source", static_cast<void*>(&File));
  EXPECT_EQ(Import->Execute(), 0);
  EXPECT_TRUE(Import->LastError().starts_with("EQuestionUnanswered:")) << Import->LastError();
  SetPropertyText(*Import, "TableName", "T");
  SetPropertyText(*Import, "StrictValues", "strict");
  EXPECT_EQ(Import->Execute(), 0) << "the table has no field A";
  SetPropertyText(*Import, "FieldMapping", "A=B");
  for (const int Section : {0, 1}) {
    SetProperty(*Import, "SectionNumber", std::int64_t{Section});
    EXPECT_EQ(Import->Execute(), 1) << Import->LastError();
    EXPECT_EQ(GetPropertyInteger(*Import, "Rows"), 2);
    EXPECT_EQ(GetPropertyText(*Import, "SkippedFields"), "#");
  }
  Platform.HasQueries = false;
  EXPECT_EQ(Export->Execute(), 0);
  EXPECT_EQ(Export->LastError(), "EDicUtilError:Can not export query data. The platform has no queries");
}

TEST_F(QueryOperations, GeneratorsOut) {
  Generators.There = {{71, "G"}};
  TUOExportGeneratorDataInterface Export;
  Export.SetTarget(&File);
  Export.SetSectionName("S");
  Export.SetGeneratorName("GONE");
  EXPECT_EQ(Export.Execute(), 0);
  EXPECT_EQ(Export.LastError(), "EDicUtilError:Can not export generator data. The database has no generator 'GONE'");
  Export.SetGeneratorName("G");
  ASSERT_EQ(Export.Execute(), 1) << Export.LastError();
  EXPECT_EQ(Platform.MemoryFiles.Get("q.eif"),
            "\xEF\xBB\xBF\r\n[SECTION]\r\nEncoding = UTF8\r\nName = S\r\nType = GeneratorData\r\nVersion = 200\r\n"
            "GeneratorName = G\r\nStartValue = 9000000000\r\n[DATA]\r\n[END]\r\n");
}

TEST_F(QueryOperations, GeneratorsIn) {
  const struct {
    const char *Name, *Value, *Wanted;
    bool OnlyForward;
    const char *Done, *Error;  // its beginning
    bool LeftAlone;
  } Cases[] = {
      {"G", "9000000000", "", false, "set G 1 9000000000", "", false},
      {"G", "2", "H", false, "set H 1 2", "", false},
      {"G", "5", "", true, "advance G 5", "", true},
      {"N", "5", "", true, "set N 1 5", "", false},
      {"G", "1", "", false, "", "", true},
      {"G", "0", "", true, "", "", true},
      {"", "-7", "", false, "", "", true},
      {"", "5", "", false, "", "EDicUtilError: Can not import generator data. The section names no generator", false},
      {"G", "5x", "", false, "", "EConvertError: '5x' is not a valid integer value (StartValue)", false},
      {"G", "9223372036854775808", "", false, "", "EConvertError: '9223372036854775808' is not", false},
  };
  Generators.There = {{71, "G"}};
  for (const auto& Case : Cases) {
    SCOPED_TRACE(std::string(Case.Name) + Case.Value);
    Done.clear();
    Platform.Log.clear();
    TEISection Header;
    Header.FParameters.AddParam("GeneratorName", Case.Name);
    Header.FParameters.AddParam("StartValue", Case.Value);
    TEIGeneratorData Section;
    TMemoryStream Memory;
    TEIStream Stream(Memory, 0);
    const std::string Error = ErrorOf([&] {
      Section.Initialize(Header);
      if (*Case.Wanted) Section.GeneratorName = Case.Wanted;
      Section.OnlyForward = Case.OnlyForward;
      Section.ImportData(Stream);
    });
    EXPECT_TRUE(*Case.Error ? Error.starts_with(Case.Error) : Error == "no error") << Error;
    EXPECT_EQ(Done, *Case.Done ? std::vector<std::string>{Case.Done} : std::vector<std::string>());
    EXPECT_EQ(Section.LeftAlone(), Case.LeftAlone);
    EXPECT_EQ(Platform.Log, *Case.Done ? (std::vector<std::string>{"start", "commit"}) : std::vector<std::string>());
  }
  Platform.MemoryFiles.Put("g.eif",
                           "[SECTION]\r\nType=GeneratorData\r\nVersion=200\r\nName=S\r\nGeneratorName=G\r\n"
                           "StartValue=7\r\n[DATA]\r\n[END]\r\n");
  TEIFile Source(Platform.MemoryFiles);
  Source.SetFileName("g.eif");
  Source.Open();
  TUOImportGeneratorDataInterface Import;
  Import.SetSource(&Source);
  Import.SetGeneratorName("N");
  Import.SetOnlyForward(true);
  Done.clear();
  EXPECT_EQ(Import.Execute(), 1) << Import.LastError();
  EXPECT_EQ(Done, std::vector<std::string>{"set N 1 7"});
}

}  // namespace
}  // namespace velkrund::tests

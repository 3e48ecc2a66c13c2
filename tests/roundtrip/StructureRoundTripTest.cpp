#include <gmock/gmock.h>

#include "tests/roundtrip/RoundTrip.h"
#include "tests/support/StructureSamples.h"
#include "velkrund/dsp/Dsputils.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* StoredRows = "SELECT * FROM velkrund_structures ORDER BY object_type, name_key";

/// What every engine that keeps structures has to do.
class StructureRoundTrip : public testing::TestWithParam<const char*> {
 protected:
  TTestDatabase NewDatabase() {
    if (GetParam() == std::string("postgresql")) return PostgreSQLDatabase();
    return SQLiteDatabase(Folder / ("structures" + std::to_string(++FNumber) + ".db"));
  }

  /// Stores a tree that Fill makes.
  static void Store(const TTestDatabase& Database, const TDSPListItem& Item,
                    const std::function<void(TDSPNode&)>& Fill) {
    const auto Form = DSPContainer().CreateFormManager(Database.Url);
    Form->ObjectName = Item.ObjectName;
    Form->ObjectType = Item.ObjectType;
    Fill(Form->Root());
    ASSERT_TRUE(Form->SavePureStructure());
    DSPContainer().Table(Database.Url).ChangeStructureProperties(Item);
  }

  /// The error text, empty on success.
  std::string Export(const TTestDatabase& Database, const std::string& Name, const std::string& FileName,
                     TExportReleaseVersion Release = TExportReleaseVersion::rv20) {
    TEIFile File;
    File.SetFileName(Folder / FileName);
    File.CreateFile();
    File.Open();
    TUOExportDSPStructureInterface Operation;
    Operation.SetTarget(&File);
    Operation.SetDatabaseName(Database.Url);
    Operation.SetObjectName(Name);
    Operation.SetObjectType(12);
    Operation.SetSectionName("s");
    Operation.SetReleaseVersion(Release);
    return Operation.Execute() ? std::string() : Operation.LastError();
  }

  std::string Import(const TTestDatabase& Database, const std::string& FileName) {
    TEIFile File;
    File.SetFileName(Folder / FileName);
    File.SetReadonly(true);
    File.Open();
    TUOImportDSPStructureInterface Operation;
    Operation.SetSource(&File);
    Operation.SetDatabaseName(Database.Url);
    static_cast<TUOImportDSPStructure&>(Operation.Operation()).OverwriteAsk.FAlwaysAsk = false;
    return Operation.Execute() ? std::string() : Operation.LastError();
  }

  /// A file with a section about FORM of type 12.
  void WriteSection(const std::string& FileName, const std::string& Lines) {
    Folder.Write(FileName,
                 "[SECTION]\r\nName = s\r\nType = DSPStructure\r\nVersion = 200\r\nObjectType = 12\r\nObjectName = "
                 "FORM\r\nTableName = NEW\r\nParentObject = \r\nRootNode = \r\n[DATA]\r\n" +
                     Lines + "[END]\r\n");
  }

  static TDSPTable& Table(const TTestDatabase& Database) { return DSPContainer().Table(Database.Url); }

  TTemporaryFolder Folder;
  TRealPlatform Platform;

 private:
  int FNumber = 0;
};

INSTANTIATE_TEST_SUITE_P(Engines, StructureRoundTrip, testing::Values("sqlite", "postgresql"),
                         [](const auto& Info) { return Info.param; });

TEST_P(StructureRoundTrip, EverythingComesBackInBothVersions) {
  const TDSPListItem Item{"Форма \"1\"", 12, "CLIENTS", "P'); --", " two\r\nlines\r\n"};
  for (const auto Release : {TExportReleaseVersion::rv20, TExportReleaseVersion::rv17}) {
    const TTestDatabase Source = NewDatabase(), Copy = NewDatabase();
    Platform.Manager.ChangeSettings().StrictText = Release == TExportReleaseVersion::rv20;
    Store(Source, Item, [&](TDSPNode& Root) {
      TDSPNode* At = &Root;
      for (const char* Name : {"a b ", "Ёж = 1", "x\\y", "'"}) At = &At->AddNode(Name);
      AddNodeSamples(*At);
      At->Sort();
      if (Release == TExportReleaseVersion::rv20) return;
      for (int Index = 0; Index < At->GetCount(); ++Index) {
        TDSPNode& Node = At->GetNodes(Index);
        // The version before has no form for these.
        if (Node.ValueType() == TDSPValueType::Variant && Node.Value().Kind() >= TKvKind::Int64)
          Node.SetValueType(TDSPValueType::Variant);
      }
    });
    ASSERT_EQ(Export(Source, Item.ObjectName, "1.eif", Release), "");
    ASSERT_EQ(Import(Copy, "1.eif"), "") << Folder.Read("1.eif");
    ASSERT_EQ(Export(Copy, Item.ObjectName, "2.eif", Release), "");
    EXPECT_EQ(Folder.Read("2.eif"), Folder.Read("1.eif"));
    const auto Read = Table(Copy).GetStructureProperties(Item.ObjectName, 12);
    ASSERT_TRUE(Read);
    EXPECT_EQ(Read->TableName + Read->ParentObject + Read->Remarks, Item.TableName + Item.ParentObject + Item.Remarks);
    if (Release == TExportReleaseVersion::rv20) {
      EXPECT_EQ(Copy.Cells(StoredRows), Source.Cells(StoredRows));
    }
  }
}

TEST_P(StructureRoundTrip, NamesAreFoundIgnoringCaseAndKeepTheirs) {
  const TTestDatabase Database = NewDatabase();
  EXPECT_EQ(Table(Database).List().Count(), 0);
  EXPECT_FALSE(Table(Database).DeleteStructure("Form", 12));
  EXPECT_FALSE(Platform.Manager.DatabaseInfo(Database.Url).CatalogueVersion) << "looking makes nothing";
  for (const auto& [Name, Type] : {std::pair("Форма", 73),
                                   {"Форма", 12},
                                   {"a'; DROP TABLE velkrund_structures; --", 12},
                                   {"kayıt", 14},  // two letters, which have one capital
                                   {"kayit", 14}})
    Store(Database, {Name, Type, "T", "", ""}, [](TDSPNode& Root) { Root.AddNode("n"); });
  EXPECT_TRUE(Table(Database).DSPStructureExist("ФОРМА", 12));
  EXPECT_FALSE(Table(Database).DSPStructureExist("ФОРМА", 13));
  Table(Database).ChangeStructureProperties({"форма", 12, "U", "V", "W"});
  const auto Read = Table(Database).GetStructureProperties("фОРМА", 12);
  ASSERT_TRUE(Read);
  EXPECT_EQ(Read->ObjectName + Read->TableName, "ФормаU");
  std::string Names;
  for (const TDSPListItem& Item : Table(Database).List()) Names += Format("%s %d|", Item.ObjectName, Item.ObjectType);
  EXPECT_EQ(Names, "a'; DROP TABLE velkrund_structures; -- 12|Форма 12|kayit 14|kayıt 14|Форма 73|");
  EXPECT_TRUE(Table(Database).DeleteStructure("ФОРМА", 12));
  EXPECT_EQ(Table(Database).List().Count(), 4);
  EXPECT_THAT(Export(Database, "Форма", "f.eif"), EndsWith("Structure not found (OT:12;ON:'Форма')"));
  EXPECT_TRUE(Platform.Manager.Tables(Database.Url).empty()) << "they are no tables of the user";
  EXPECT_EQ(Platform.Manager.DatabaseInfo(Database.Url).CatalogueVersion, 1);
}

TEST_P(StructureRoundTrip, AfterAnErrorTheStoreIsAsBefore) {
  const std::string Head = " [REMARKS]\r\n  new\r\n [TREE]\r\n";
  const struct {
    std::string Body;
    const char* Says;
  } Cases[] = {
      {"", "Remarks section not found"},
      {" [REMARKS]\r\n  new\r\n", "Can not import DSPStructure. Tree section not found"},
      {Head + "  a:string = 'new'\r\n  b:integer = x\r\n", "'x' is not a valid integer value"},
      {Head + "  a:string = 'new'\r\n   b\r\n", "Invalid level structure (Position:"},
      {Head + "  a:string = 'new'@\r\n", "Unexpected end of tree section (Position:"},
      {Head + "  a:strong = 'new'\r\n", "Invalid node type:'strong'."},
  };
  const TTestDatabase Empty = NewDatabase(), Filled = NewDatabase();
  Store(Filled, {"FORM", 12, "OLD", "", "old"}, [](TDSPNode& Root) { Root.AddNode("a").AddNode("b"); });
  const std::string Before = Filled.Cells(StoredRows);
  for (const auto& Case : Cases) {
    WriteSection("bad.eif", Case.Body);
    EXPECT_THAT(Import(Filled, "bad.eif"), HasSubstr(Case.Says));
    EXPECT_EQ(Filled.Cells(StoredRows), Before) << Case.Says;
    EXPECT_THAT(Import(Empty, "bad.eif"), HasSubstr(Case.Says));
    EXPECT_FALSE(Platform.Manager.DatabaseInfo(Empty.Url).CatalogueVersion) << Case.Says;
  }
}

TEST_P(StructureRoundTrip, WhatTheCatalogueCanNotBe) {
  const TTestDatabase Database = NewDatabase();
  Store(Database, {"FORM", 12, "T", "", ""}, [](TDSPNode& Root) { Root.AddNode("a"); });
  WriteSection("new.eif", " [REMARKS]\r\n  \r\n [TREE]\r\n  b\r\n");
  const std::string Cut = GetParam() == std::string("sqlite") ? "substr(tree, 1, length(tree) - 1)"
                                                              : "substring(tree from 1 for length(tree) - 1)";
  Database.Run("UPDATE velkrund_structures SET tree = " + Cut);
  EXPECT_THAT(
      Export(Database, "form", "f.eif"),
      StartsWith("EDSPError:The stored tree of the structure 'FORM' (type 12) is damaged: its checksum is wrong"));
  const std::string Before = Database.Cells(StoredRows);
  EXPECT_THAT(Import(Database, "new.eif"), HasSubstr("is damaged"));
  EXPECT_EQ(Database.Cells(StoredRows), Before);
  EXPECT_TRUE(Table(Database).DeleteStructure("FORM", 12));
  EXPECT_EQ(Import(Database, "new.eif"), "");

  Database.Run("UPDATE velkrund_catalogue SET version = 2");
  EXPECT_THAT(Export(Database, "FORM", "f.eif"), HasSubstr("have the layout 2, which another version"));
  EXPECT_THAT(Import(Database, "new.eif"), HasSubstr("have the layout 2"));
  Database.Run("DELETE FROM velkrund_catalogue");
  EXPECT_THAT(Import(Database, "new.eif"), HasSubstr("velkrund_catalogue of the database has lost its row"));

  for (const char* Statement : {"DROP TABLE velkrund_structures", "DROP TABLE velkrund_catalogue",
                                "CREATE VIEW velkrund_catalogue AS SELECT 2"})
    Database.Run(Statement);
  EXPECT_THAT(Import(Database, "new.eif"), HasSubstr("Cannot make the table velkrund_catalogue"));
}

}  // namespace
}  // namespace velkrund::tests

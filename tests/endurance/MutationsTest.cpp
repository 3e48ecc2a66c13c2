#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <random>

#include "jobs/application/Application.h"
#include "jobs/sections/CheckFiles.h"
#include "jobs/sections/ImportFiles.h"
#include "jobs/tables/ExportTables.h"
#include "tests/endurance/Faults.h"
#include "tests/roundtrip/TestDatabase.h"
#include "tests/support/TemporaryFolder.h"

namespace velkrund::tests {
namespace {

constexpr int Shares = 4;  // tests that run side by side

/// How many files are damaged by one of them. VELKRUND_MUTATIONS asks for another number of all together.
int MutationCount() {
  const char* const Wished = std::getenv("VELKRUND_MUTATIONS");
  return (Wished ? std::atoi(Wished) : 5'000) / Shares;
}

/// A section, and where the part begins that a database need not fit: what stands before it names tables and fields.
struct TSample {
  std::string Bytes;
  std::size_t Free;
};

TSample Section(const std::string& Header, const std::string& Body, const char* FreeBehind = "[DATA]\r\n") {
  const std::string Bytes = "[SECTION]\r\n" + Header + "[DATA]\r\n" + Body + "[END]\r\n";
  return {Bytes, Bytes.find(FreeBehind) + std::string_view(FreeBehind).size()};
}

/// Every kind of section, in both versions where there are two.
std::vector<TSample> Samples(const std::string& Rows200, const std::string& Rows100) {
  const auto Rows = [](const std::string& File) {
    constexpr std::string_view Behind = " [RECORDS]\r\n";
    const std::string Bytes = File.substr(File.find("[SECTION]"));
    return TSample{Bytes, Bytes.find(Behind) + Behind.size()};
  };
  const std::string Structure =
      "ObjectType = 12\r\nObjectName = S\r\nTableName = A\r\nParentObject = \r\nRootNode = \r\n";
  const std::string Utf8 = "Encoding = UTF8\r\n", Ansi = "Encoding = ANSI\r\n";
  return {
      Rows(Rows200),
      Rows(Rows100),
      Section(
          Utf8 + "Name = S\r\nType = DSPStructure\r\nVersion = 200\r\n" + Structure,
          " [REMARKS]\r\n  said\r\n [TREE]\r\n  a:integer = 1\r\n    b:string = 'x#000Dy'\r\n    c:boolean = TRUE\r\n"
          "      d:double = 1.5\r\n    e:binary = 0A FF 10\r\n  f:SysDate = 2024-02-29\r\n  g\r\n"),
      Section(Ansi + "Name = S\r\nType = DSPStructure\r\nVersion = 100\r\n" + Structure,
              " [REMARKS]\r\n  said\r\n [TREE]\r\n  a:integer = 1\r\n    b:string = 'x#0D'\r\n  c:boolean = TRUE\r\n"
              "    d:variant = DATE(-1.25)\r\n    e:variant = OLESTR(x#0A)\r\n"),
      Section(Utf8 + "Name = G\r\nType = GeneratorData\r\nVersion = 200\r\nGeneratorName = G\r\nStartValue = 17\r\n",
              ""),
      Section(Utf8 + "Name = English\r\nType = Language\r\nVersion = 100\r\nLanguageID = English\r\n",
              "  RussianName=a\r\n  EnglishName=English\r\n  NativeName=c\r\n"),
      Section(Utf8 + "Name = K\r\nType = LocalizedResource\r\nVersion = 200\r\nSectionID = K\r\n",
              " [LANGUAGES]\r\n  English\r\n  Russian\r\n [STRINGS]\r\n  A:\r\n   English = 'one #0023'\r\n"
              "   Russian = 'один'\r\n  B_X:\r\n   Russian = ''\r\n"),
      Section(Ansi + "Name = K\r\nType = LocalizedResource\r\nVersion = 100\r\nSectionID = K\r\n",
              " [LANGUAGES]\r\n  English\r\n [STRINGS]\r\n  A:\r\n   English = 'one#23'\r\n"),
  };
}

/// Damage as editors, disks, transfers and malice do it.
class TDamage {
 public:
  explicit TDamage(unsigned Seed) : FRandom(Seed) {}

  std::size_t Below(std::size_t Limit) { return Limit == 0 ? 0 : FRandom() % Limit; }

  /// Changes something behind the position From.
  void Do(std::string& Bytes, std::size_t From) {
    static constexpr std::array<std::string_view, 24> Pieces = {"|",         "<",
                                                                ">",         "'",
                                                                "#",         "#000A",
                                                                "#DCFF",     "\\",
                                                                ":",         "=",
                                                                "\r",        "\n",
                                                                "\r\n",      std::string_view("\0", 1),
                                                                "\xFF",      "\xC2",
                                                                "я",         "NULL",
                                                                "-1",        "99999999999999999999",
                                                                "[END]\r\n", " [TREE]\r\n",
                                                                "  ",        "1e400"};
    const std::size_t At = From + Below(Bytes.size() - From), Length = 1 + Below(Below(8) == 0 ? 200 : 4);
    switch (Below(8)) {
      case 0:
        Bytes[At] = static_cast<char>(Bytes[At] ^ (1 << Below(8)));
        break;
      case 1:
        Bytes.erase(At, Length);
        break;
      case 2:
        Bytes.insert(At, Pieces[Below(Pieces.size())]);
        break;
      case 3:
        Bytes.replace(At, Length, Pieces[Below(Pieces.size())]);
        break;
      case 4:
        Bytes.insert(From + Below(Bytes.size() - From), Bytes.substr(At, Length));
        break;
      case 5:  // a digit or letter of a value, so that it may stay one
        if (std::isalnum(static_cast<unsigned char>(Bytes[At])) != 0) Bytes[At] = "0179aEx"[Below(7)];
        break;
      case 6:
        MoveLine(Bytes, From, At);
        break;
      default:
        Bytes.resize(Below(4) == 0 ? At : Bytes.size());
    }
  }

 private:
  /// Repeats the line at the position elsewhere, or takes it there.
  void MoveLine(std::string& Bytes, std::size_t From, std::size_t At) {
    const std::size_t Before = Bytes.rfind('\n', At), Begin = Before == std::string::npos ? 0 : Before + 1;
    const std::size_t End = Bytes.find('\n', At);
    if (Begin < From || End == std::string::npos) return;
    const std::string Line = Bytes.substr(Begin, End + 1 - Begin);
    if (Below(2) == 0) Bytes.erase(Begin, Line.size());
    const std::size_t Target = Bytes.find('\n', From + Below(Bytes.size() + 1 - From));
    Bytes.insert(Target == std::string::npos ? Bytes.size() : Target + 1, Line);
  }

  std::mt19937 FRandom;
};

class TMutationsTest : public testing::TestWithParam<int> {
 protected:
  TMutationsTest() {
    FSource.Run(
        "CREATE TABLE A(ID, V, W, X); INSERT INTO A VALUES (1, 'plain', 1.5, x'00FF'), (2, 'a|b<c>\\d#', NULL, NULL), "
        "(3, '', -2147483648, 'я'), (4, '[END]', 1e300, '2024-02-29'), (NULL, ' ', 0.1, x'');");
    FTarget.Run("CREATE TABLE A(ID, V, W, X)");
    Export("200", TExportReleaseVersion::rv20);
    Export("100", TExportReleaseVersion::rv17);
  }

  void Export(const std::string& Name, TExportReleaseVersion Release) {
    TJobExportTablesInterface Operation;
    Operation.SetDatabaseName(FSource.Url);
    Operation.Job().Tables = {"A"};
    Operation.Job().FileName = FFolder / Name;
    Operation.Job().ReleaseVersion = Release;
    Operation.Job().Policies.AllowLoss = true;  // of the older version
    EXPECT_EQ(Operation.Execute(), 1) << Operation.LastError();
  }

  std::string Check(const std::string& Path) {
    TJobCheckFilesInterface Operation;
    Operation.Job().FileNames = {Path};
    return Operation.Execute() ? std::string() : "!" + Operation.LastError();
  }

  /// Everything that is there gives way.
  std::string Import(const std::string& Path) {
    TJobImportFilesInterface Operation;
    Operation.SetDatabaseName(FTarget.Url);
    TJobImportFiles& Job = Operation.Job();
    Job.FileNames = {Path};
    Job.AddLanguages = true;
    Job.SetGenerators = true;
    TPolicies& Policies = Job.Policies;
    Policies.ExistingRows = Policies.ExistingStructures = Policies.ExistingTexts = Policies.ExistingObjects =
        TExisting::Replace;
    Policies.RepeatedTables = TRepeatedTables::Join;
    Policies.CreateTables = TCreateTables::No;
    Policies.OnError = TOnError::Stop;
    return Operation.Execute() ? std::string() : "!" + Operation.LastError();
  }

  /// For the disk's sake: with it nothing is synced.
  const int FEngine = (MakeEngineFaulty(), 0);
  TTemporaryFolder FFolder;
  const TTestDatabase FSource = SQLiteDatabase(FFolder / "a.db"), FTarget = SQLiteDatabase(FFolder / "b.db");
  TApplication FApplication{{.ConfigFile = FFolder.Write("none.toml", "")}};
};

INSTANTIATE_TEST_SUITE_P(Shares, TMutationsTest, testing::Range(0, Shares));

TEST_P(TMutationsTest, WhatIsGoodForACheckCanBeImported) {
  const std::vector<TSample> Originals = Samples(FFolder.Read("200"), FFolder.Read("100"));
  for (const TSample& Original : Originals) {
    const std::string Path = FFolder.Write("whole", Original.Bytes);
    ASSERT_EQ(Check(Path) + Import(Path), "") << Original.Bytes;
  }
  int Good = 0, Compared = 0;
  for (int Number = 0; Number < MutationCount(); ++Number) {
    TDamage Damage(static_cast<unsigned>(Number * Shares + GetParam()));
    const TSample& Original = Originals[Damage.Below(Originals.size())];
    const bool Fits = Damage.Below(4) != 0;
    std::string Bytes = Original.Bytes;
    for (std::size_t Count = 1 + Damage.Below(3); Count > 0; --Count) Damage.Do(Bytes, Fits ? Original.Free : 0);
    const std::string Path = FFolder.Write("F", Bytes);
    const std::string Fault = Check(Path), Failure = Import(Path);
    if (!Fits) continue;
    ++Compared;
    if (Fault.empty()) ++Good;
    EXPECT_EQ(Fault.empty(), Failure.empty()) << Fault << "\n" << Failure << "\n" << Bytes;
  }
  // Neither refuses or takes everything, or nothing would have been compared.
  EXPECT_GT(Good, Compared / 10);
  EXPECT_LT(Good, Compared * 9 / 10);
}

}  // namespace
}  // namespace velkrund::tests

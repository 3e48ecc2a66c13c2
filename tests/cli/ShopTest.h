#pragma once

#include "tests/cli/CommandTest.h"

namespace velkrund::tests {

/// A folder with shop.db: A with three rows, B with two, and with empty.db: the same tables without rows.
class TShopTest : public TCommandTest {
 protected:
  static constexpr const char* Tables =
      "CREATE TABLE A (ID INTEGER PRIMARY KEY, NAME TEXT, PRICE DECIMAL(12,2), BIN BLOB, AT TIMESTAMP);"
      "CREATE TABLE B (ID INTEGER PRIMARY KEY, X REAL);";

  TShopTest() {
    Query("shop.db", std::string(Tables) +
                         "INSERT INTO A VALUES (1, 'Smith|Sons #1', 12.5, x'0A00FF', '2024-02-29 23:59:59'),"
                         "  (2, char(10, 9) || 'Анна', -0.01, x'', NULL), (3, '', NULL, NULL, '1999-12-31 00:00:00.5');"
                         "INSERT INTO B VALUES (1, 0.1), (2, 1e300);");
    Query("empty.db", Tables);
  }

  /// Every cell with its type and its bytes.
  std::string Exact(const std::string& Database, const std::string& Table) const {
    return Query(Database, Table == "A"
                               ? "SELECT typeof(ID), ID, typeof(NAME), hex(NAME), typeof(PRICE), quote(PRICE), "
                                 "quote(BIN), quote(AT) FROM A ORDER BY ID"
                               : "SELECT ID, typeof(X), quote(X) FROM B ORDER BY ID");
  }
  std::string Counts(const std::string& Database) const {
    return Query(Database, "SELECT (SELECT count(*) FROM A), (SELECT count(*) FROM B)");
  }

  /// The command line that imports into empty.db.
  static TArguments ImportInto(const std::string& Object, const TArguments& More) {
    TArguments Result = {"import", Object, "-d", "sqlite:empty.db"};
    Result.insert(Result.end(), More.begin(), More.end());
    return Result;
  }

  struct TImportCase {
    std::string Before;  // statement for empty.db
    TArguments Options;
    int ExitCode;
    std::string Counts;  // rows of A and B afterwards
    std::string Says;
  };
  void CheckImports(const std::string& Object, const std::vector<TImportCase>& Cases) {
    for (const auto& [Before, Options, ExitCode, Expected, Says] : Cases) {
      Query("empty.db", "DELETE FROM A; DELETE FROM B; " + Before);
      const TOutcome Outcome = Run(ImportInto(Object, Options));
      EXPECT_EQ(Outcome.ExitCode, ExitCode) << Joined(Options) << "\n" << Outcome.Errors;
      EXPECT_EQ(Counts("empty.db"), Expected) << Joined(Options) << "\n" << Outcome.Errors;
      EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Joined(Options) << "\n" << Outcome.Errors;
      EXPECT_EQ(Outcome.Output, "") << Joined(Options);
    }
  }

  /// A version 200 section with the fields and records given.
  static std::string Section(const std::string& Name, const TArguments& Fields, const TArguments& Records) {
    std::string Result = "[SECTION]\r\nEncoding = UTF8\r\nName = " + Name +
                         "\r\nType = TableData\r\nVersion = 200\r\n" + "TableName = " + Name +
                         "\r\n[DATA]\r\n [FIELDS]\r\n";
    for (const std::string& Field : Fields) Result += "  " + Field + "\r\n";
    Result += " [RECORDS]\r\n";
    for (const std::string& Record : Records) Result += "  <" + Record + ">\r\n";
    return Result + "[END]\r\n";
  }
};

}  // namespace velkrund::tests

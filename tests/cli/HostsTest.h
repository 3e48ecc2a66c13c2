#pragma once

#include "tests/cli/CommandTest.h"

namespace velkrund::tests {

/// The same runs through two hosts, the command and a program in C: each has to do, to refuse and to leave the same.
class THostsTest : public TCommandTest {
 protected:
  THostsTest() {
    const std::string Tables =
        "CREATE TABLE L (I INTEGER PRIMARY KEY, P INTEGER REFERENCES O);"
        "CREATE TABLE O (I INTEGER PRIMARY KEY, N TEXT);"
        "CREATE TABLE X (I INTEGER PRIMARY KEY, Y INTEGER REFERENCES Y);"
        "CREATE TABLE Y (I INTEGER PRIMARY KEY, X INTEGER REFERENCES X);";
    Query("full.db", Tables +
                         "INSERT INTO O VALUES (1, 'one'), (2, '\xD0\x94va'); INSERT INTO L VALUES (1, 1), (2, 2);"
                         "INSERT INTO X VALUES (1, 1); INSERT INTO Y VALUES (1, 1);");
    Query("empty.db", Tables);
    Query("rows.db", Tables + "INSERT INTO O VALUES (7, 'old'); INSERT INTO L VALUES (8, 7);");
    Query("procedure.db",
          Tables +
              "CREATE TABLE velkrund_catalogue (version INTEGER NOT NULL, PRIMARY KEY (version));"
              "INSERT INTO velkrund_catalogue VALUES (1); CREATE TABLE velkrund_procedures (name_key, name, kind, "
              "parameters, body); INSERT INTO velkrund_procedures VALUES ('p', 'P', 74, '0 3 - - A' || char(10), "
              "'INSERT INTO O VALUES (:A, ''x''); SELECT * FROM O')");
    Query("broken.db", Tables + "INSERT INTO L VALUES (8, 70);");
    Query("other.db", "CREATE TABLE O (OTHER TEXT); CREATE TABLE L (I INTEGER PRIMARY KEY CHECK (I <> 2), P INTEGER)");
    EXPECT_EQ(Run({"export", "table", "-d", "sqlite:full.db", "--all", "-o", "all.eif"}).ExitCode, 0);
    EXPECT_EQ(Run({"export", "table", "-d", "sqlite:full.db", "-t", "L", "-o", "l.eif"}).ExitCode, 0);
    EXPECT_EQ(Run({"export", "table", "-d", "sqlite:full.db", "-t", "O", "-o", "o.eif"}).ExitCode, 0);
    Query("made.db",
          "CREATE TABLE M (I INTEGER PRIMARY KEY, R INTEGER REFERENCES NOWHERE (I)); INSERT INTO M VALUES (1, NULL)");
    EXPECT_EQ(Run({"export", "table", "-d", "sqlite:made.db", "--all", "--structures", "-o", "made.eif"}).ExitCode, 0);
    Write("forms.eif", Form("A") + Form("B"));
    Write("bad.eif", Read("l.eif") + Form("A") + Read("o.eif").replace(Read("o.eif").find("<1|"), 3, "<1||"));
    Write("cut.eif", Read("o.eif") + Read("l.eif").substr(0, Read("l.eif").size() - 5));
    Write("twice.eif", Read("o.eif") + Read("o.eif"));
    Write("typeless.eif", Form("C") + Form("D").replace(Form("D").find("= 12"), 4, "= x") + Form("E"));
    Write("malformed.eif", Read("o.eif").replace(Read("o.eif").find("Name = O"), 8, "Name = Q\xFF"));
    Write("lines.eif", "[SECTION]\nName = O\n");
    EXPECT_EQ(Run({"import", "structure", "-d", "sqlite:rows.db", "-i", "forms.eif"}).ExitCode, 0);
  }

  static std::string Form(const std::string& Name) {
    return "[SECTION]\r\nEncoding = UTF8\r\nName = " + Name +
           "\r\nType = DSPStructure\r\nVersion = 200\r\nObjectType = 12\r\nObjectName = " + Name +
           "\r\nTableName = \r\nParentObject = \r\nRootNode = \r\n[DATA]\r\n [REMARKS]\r\n  \r\n [TREE]\r\n"
           "  Caption:string = 'x'\r\n[END]\r\n";
  }

  struct TCase {
    TArguments Command;  // W is the database, w.eif the file that is worked on
    TArguments Job;      // class and properties
    std::string Database = "empty.db", File = "all.eif";
    int ExitCode = 0;
    std::string Says = {};  // both hosts
  };

  /// The documents of both hosts name the same, times apart.
  static nlohmann::json Comparable(const std::string& Text) {
    nlohmann::json Result = nlohmann::json::parse(Text, nullptr, false);
    const std::function<void(nlohmann::json&)> WithoutTimes = [&](nlohmann::json& Part) {
      if (Part.is_object()) Part.erase("seconds");
      if (!Part.is_structured()) return;  // it would be its own only member
      for (auto& Member : Part) WithoutTimes(Member);
    };
    WithoutTimes(Result);
    return Result;
  }

  struct TLeft {
    TOutcome Outcome;
    std::string Rows, File;
  };
  TLeft RunOn(const TCase& Case, const TArguments& Line) {
    remove(Path("w.eif").c_str());
    if (!Case.File.empty()) Write("w.eif", Read(Case.File));
    Write("w.db", Read(Case.Database));
    TLeft Result{Run(Line), {}, {}};
    Result.Rows = Query("w.db",
                        "SELECT 'O', O.* FROM O; SELECT 'L', L.* FROM L;"
                        "SELECT 'T', * FROM pragma_table_list WHERE name = 'velkrund_structures'");
    if (Case.Database != "other.db") Result.Rows += Query("w.db", "SELECT 'X', X.* FROM X; SELECT 'Y', Y.* FROM Y");
    if (Result.Rows.find("velkrund_structures") != std::string::npos)
      Result.Rows += Query("w.db", "SELECT hex(tree), * FROM velkrund_structures ORDER BY 2, 3");
    Result.File = Exists("w.eif") ? Read("w.eif") : "none";
    return Result;
  }

  void Check(const std::vector<TCase>& Cases) {
    for (const TCase& Case : Cases) {
      TArguments Command = Case.Command, Job = Case.Job;
      Command.push_back("--json");
      Job.insert(Job.begin(), VELKRUND_RUN_JOB);
      const TLeft A = RunOn(Case, Command), B = RunOn(Case, Job);
      const std::string What = Joined(Command) + "\n" + A.Outcome.Errors + Joined(Job) + "\n" + B.Outcome.Errors;
      EXPECT_EQ(A.Outcome.ExitCode, Case.ExitCode) << What;
      EXPECT_EQ(B.Outcome.ExitCode, Case.ExitCode) << What;
      EXPECT_NE((A.Outcome.Errors + A.Outcome.Output).find(Case.Says), std::string::npos) << What;
      EXPECT_NE((B.Outcome.Errors + B.Outcome.Output).find(Case.Says), std::string::npos) << What;
      EXPECT_EQ(A.Rows, B.Rows) << What;
      EXPECT_EQ(A.File, B.File) << What;
      const nlohmann::json Document = Comparable(A.Outcome.Output);
      EXPECT_FALSE(Document.is_discarded()) << What;
      // An error before the run has begun is told in each host's own words.
      if (!Document.contains("error") || Document.contains("sections")) {
        EXPECT_EQ(Document, Comparable(B.Outcome.Output)) << What;
      }
    }
  }
};

}  // namespace velkrund::tests

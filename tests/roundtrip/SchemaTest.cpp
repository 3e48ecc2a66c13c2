#include "tests/roundtrip/SchemaTest.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace velkrund::tests {

namespace {

constexpr const char* Folder = VELKRUND_SOURCE_DIR "/tests/roundtrip/schemas/";

constexpr const char* Empties = R"(
  DO $$ DECLARE name text; BEGIN
    FOR name IN SELECT oid::regnamespace FROM pg_namespace WHERE oid >= 16384 OR nspname = 'public' LOOP
      EXECUTE 'DROP SCHEMA ' || name || ' CASCADE';
    END LOOP;
  END $$;
  CREATE SCHEMA public; GRANT USAGE ON SCHEMA public TO public)";

std::vector<std::string> Split(const std::string& Text, char At) {
  std::vector<std::string> Result;
  std::istringstream In(Text);
  for (std::string Word; std::getline(In >> std::ws, Word, At);) Result.push_back(Word);
  return Result;
}

std::set<std::string> Names(const std::string& Text) {
  const std::vector<std::string> All = Split(Text, ',');
  return {All.begin(), All.end()};
}

}  // namespace

std::vector<std::string> SchemaNames(const std::string& Engine) {
  std::vector<std::string> Result;
  for (const auto& Entry : std::filesystem::directory_iterator(Folder)) {
    const std::filesystem::path Name = Entry.path().stem();  // without .sql
    if (!Name.has_extension() || Name.extension() == "." + Engine) Result.push_back(Name.stem());
  }
  std::sort(Result.begin(), Result.end());
  return Result;
}

TSchema ReadSchema(const std::string& Name, const std::string& Engine) {
  std::ifstream File(Folder + Name + "." + Engine + ".sql");
  if (!File) File.open(Folder + Name + ".sql");
  TSchema Result;
  std::string Same;
  const std::map<std::string, std::string*> Parts = {{"-- rows", &Result.Rows},
                                                     {"-- other rows", &Result.OtherRows},
                                                     {"-- after", &Result.After},
                                                     {"-- before", &Result.Before},
                                                     {"-- same", &Same}};
  std::string* Part = &Result.Statements;
  for (std::string Line; std::getline(File, Line);) {
    const std::size_t Colon = Line.find(": ");
    const std::string Key = Line.substr(0, Colon), Value = Colon == Line.npos ? "" : Line.substr(Colon + 2);
    if (const auto Found = Parts.find(Line); Found != Parts.end())
      Part = Found->second;
    else if (Key == "-- options")
      Result.Options = Split(Value, ' ');
    else if (Key == "-- refused")
      Result.Refused = Value;
    else if (Key == "-- says")
      Result.Says = Value;
    else if (Key == "-- fires")
      Result.Fires = Names(Value);
    else if (Key == "-- changes")
      Result.Changes = Names(Value);
    else if (Key == "-- left out")
      Result.LeftOut = Names(Value);
    else
      *Part += Line + "\n";
  }
  Result.Same = Split(Same, '\n');
  if (Result.Rows.empty()) throw std::runtime_error(Name + " has no rows");
  return Result;
}

TArguments operator+(TArguments Left, const TArguments& Right) {
  Left.insert(Left.end(), Right.begin(), Right.end());
  return Left;
}

TTestDatabase TSchemaTest::Made(const std::string& Engine, const std::string& Name, const std::string& Statements) {
  if (Engine == "sqlite") {
    std::filesystem::remove(Path(Name));
    const TTestDatabase Result = SQLiteDatabase(Path(Name));
    Result.Run("PRAGMA synchronous = OFF; PRAGMA busy_timeout = 10000; BEGIN; " + Statements + "; COMMIT");
    return Result;
  }
  if (!FPostgreSQL.contains(Name)) FPostgreSQL.emplace(Name, PostgreSQLDatabase());
  const TTestDatabase& Result = FPostgreSQL.at(Name);
  Result.Run(Empties);
  Result.Run(Statements);
  return Result;
}

TTestDatabase TSchemaTest::Made(const std::string& Engine, const std::string& Name, const TSchema& Schema,
                                const std::string& Rows) {
  const TTestDatabase Result = Made(Engine, Name, Schema.Before + Schema.Statements);
  for (const std::string& Statements : {Rows, Schema.After}) Result.Run(Statements);
  return Result;
}

TOutcome TSchemaTest::Export(const TTestDatabase& Source, const std::string& File) {
  std::filesystem::remove(Path(File));
  const TOutcome Outcome = Run({"export", "table", "-d", Source.Url, "--all", "-o", File});
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  return Outcome;
}

TArguments TSchemaTest::Import(const TTestDatabase& Target, const TArguments& Options, const std::string& Object) {
  return TArguments{"import", Object, "-d", Target.Url, "-i", "F"} + Options;
}

}  // namespace velkrund::tests

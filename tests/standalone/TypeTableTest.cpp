// The table of types in docs/dictionary.md against what the engines make and read back.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "standalone/dictionary/DescriptionWords.h"
#include "standalone/drivers/postgresql/PostgreSQLDriver.h"
#include "standalone/drivers/sqlite/SQLiteDriver.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

bool HasScaleAlone(TDicFieldType Type) { return Type >= TDicFieldType::Time && Type <= TDicFieldType::Interval; }

/// Of "Decimal(10,2)".
TDicField FieldOf(const std::string& Text) {
  const std::size_t Open = std::min(Text.find('('), Text.size());
  TDicField Field = {.Name = "f"};
  Field.Type =
      static_cast<TDicFieldType>(std::ranges::find(FieldTypeWords, Text.substr(0, Open)) - FieldTypeWords.begin());
  if (Open == Text.size()) return Field;
  (HasScaleAlone(Field.Type) ? Field.Scale : Field.Size) = std::stoi(Text.substr(Open + 1));
  if (const std::size_t Comma = Text.find(','); Comma != std::string::npos)
    Field.Scale = std::stoi(Text.substr(Comma + 1));
  return Field;
}

/// "Decimal(10,2)".
std::string Shown(const TDicField& Field) {
  std::string Numbers;
  for (const auto& Number : {Field.Size, Field.Scale})
    if (Number) Numbers += (Numbers.empty() ? "(" : ",") + std::to_string(*Number);
  return std::string(FieldTypeWords.at(static_cast<std::size_t>(Field.Type))) + (Numbers.empty() ? "" : Numbers + ")");
}

struct TRow {
  std::string Type;
  std::vector<std::string> Cells;  // of SQLite, of PostgreSQL
};

std::vector<TRow> TableOfPage() {
  std::vector<TRow> Rows;
  std::ifstream Page(VELKRUND_SOURCE_DIR "/docs/dictionary.md");
  bool InTable = false;
  for (std::string Line; std::getline(Page, Line);) {
    InTable = Line.starts_with("| neutral type |") || (InTable && Line.starts_with("|"));
    if (!InTable || !Line.starts_with("| `")) continue;
    std::vector<std::string> Cells;
    std::stringstream Text(Line.substr(2));
    for (std::string Cell; std::getline(Text, Cell, '|');) Cells.push_back(Cell);
    Rows.push_back({Cells.at(0).substr(1, Cells.at(0).rfind('`') - 1), {Cells.at(1), Cells.at(2)}});
  }
  return Rows;
}

/// The cell that the page should have, as far as programs can tell: without the reason of a refusal.
std::string Cell(TConnection& Connection, const TDicField& Field, const std::string& TableName) {
  TDicTableDescription Table;
  Table.Name = TableName;
  Table.Fields = {Field};
  const TScript Script = Connection.Scripts().Table(Table, {}, Connection.Scripts().TablePattern());
  for (const TScriptStatement& Statement : Script.Statements) Connection.Execute(Statement.Text);
  const TDicField Back = Connection.Definitions().Table({TableName, ""}, {}).Fields.at(0);
  const TDicWords* const Words = WordsOf(Back.Words, Connection.Scripts().Engine());
  std::string Result = " `" + (Words ? Words->Text.value_or("") : "") + "`";
  if (Shown(Back) != Shown(Field)) Result += " → `" + Shown(Back) + "`";
  const bool Refused = std::ranges::any_of(Script.Gaps, [](const TScriptGap& Gap) { return !Gap.Harmless; });
  return Result + (Refused ? ", **refused**" : " ");
}

void CheckColumn(TConnection& Connection, std::size_t Column) {
  std::vector<bool> Shown(FieldTypeWords.size(), false);
  int Number = 0;
  for (const TRow& Row : TableOfPage()) {
    const TDicField Field = FieldOf(Row.Type);
    ASSERT_LT(static_cast<std::size_t>(Field.Type), FieldTypeWords.size()) << Row.Type;
    Shown[static_cast<std::size_t>(Field.Type)] = true;
    const std::string& OfPage = Row.Cells[Column];
    EXPECT_EQ(OfPage.substr(0, OfPage.find(": ")), Cell(Connection, Field, "t" + std::to_string(++Number))) << Row.Type;
  }
  for (std::size_t Type = 0; Type < FieldTypeWords.size(); ++Type)
    EXPECT_NE(Shown[Type], FieldTypeWords[Type].empty()) << "no row for " << FieldTypeWords[Type];
}

TEST(TypeTableTest, SQLiteDeclaresAndReadsWhatThePageSays) {
  CheckColumn(*TSQLiteDriver().Connect({"sqlite", ":memory:"}, {.CreateMissing = true}), 0);
}

TEST(TypeTableTest, PostgreSQLDeclaresAndReadsWhatThePageSays) {
  TPostgreSQLDatabase Database;
  CheckColumn(*TPostgreSQLDriver().Connect(ParseDatabaseUrl(Database.Url()).value(), {}), 1);
}

}  // namespace
}  // namespace velkrund::tests

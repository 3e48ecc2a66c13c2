// The grammar is the engine's own: constraints of a table may follow each other without commas.

#include "standalone/drivers/sqlite/SQLiteTableDeclaration.h"

#include <algorithm>
#include <utility>

#include "standalone/drivers/sqlite/SQLiteConstraintReader.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

using TKind = TSQLiteToken::TKind;

bool IsOneOf(const TSQLiteToken& Token, std::initializer_list<std::string_view> Keywords) {
  return std::any_of(Keywords.begin(), Keywords.end(), [&](std::string_view Word) { return Token.Is(Word); });
}

class TReader {
 public:
  TReader(std::string_view Statement, std::string_view TableName)
      : FTokens(Statement, Format("table '%s'", TableName)) {}

  TSQLiteTableDeclaration Read() {
    FTokens.Expect("CREATE");
    FTokens.Expect("TABLE");
    FTokens.TakeName();
    FTokens.Expect('(');
    do {
      if (IsAtTableConstraint()) break;
      ReadColumn();
    } while (FTokens.TakeIf(','));
    while (IsAtTableConstraint()) {
      FConstraints.ReadForTable();
      if (FTokens.TakeIf(',')) FConstraints.ForgetName();
    }
    FTokens.Expect(')');
    ReadOptions();
    if (FResult.Columns.empty() || !FTokens.IsAtEnd()) FTokens.Fail();
    ResolveNames();
    return std::move(FResult);
  }

 private:
  bool IsAtTableConstraint() const {
    return IsOneOf(FTokens.Peek(), {"CONSTRAINT", "PRIMARY", "UNIQUE", "CHECK", "FOREIGN"});
  }

  void ReadColumn() {
    FConstraints.ForgetName();
    FResult.Columns.push_back({FTokens.TakeName(), ReadType()});
    while (ReadColumnConstraint()) {
    }
    FConstraints.ForgetName();
  }

  std::string ReadType() {
    const std::size_t Start = FTokens.Peek().Start;
    bool Any = false;
    while (FTokens.Peek().IsName() && !IsAtColumnConstraint()) FTokens.Take(), Any = true;
    if (!Any) return {};
    if (FTokens.Peek().IsSymbol('(')) FTokens.TakeBracketed();
    return std::string(FTokens.Since(Start));
  }

  bool IsAtColumnConstraint() const {
    return IsAtComputed() || IsOneOf(FTokens.Peek(), {"CONSTRAINT", "DEFAULT", "NOT", "NULL", "PRIMARY", "UNIQUE",
                                                      "CHECK", "REFERENCES", "COLLATE", "DEFERRABLE"});
  }

  /// Without AS, the words before it are of the type.
  bool IsAtComputed() const {
    const bool HasMore = FTokens.Peek().Is("GENERATED") && FTokens.Peek(1).Is("ALWAYS");
    return FTokens.Peek(HasMore ? 2 : 0).Is("AS");
  }

  bool ReadColumnConstraint() {
    TSQLiteColumnDeclaration& Column = FResult.Columns.back();
    if (FTokens.TakeIf("CONSTRAINT")) {
      FConstraints.ReadName();
      return true;
    }
    if (FTokens.TakeIf("DEFAULT")) {
      Column.Default = ReadDefault();
    } else if (FTokens.TakeIf("COLLATE")) {
      Column.Collate = FTokens.TakeName();
    } else if (IsAtComputed()) {
      ReadComputed(Column);
    } else if (FTokens.TakeIf("NULL")) {
      FConstraints.ReadConflict();
    } else if (FTokens.Peek().Is("NOT") && FTokens.Peek(1).Is("NULL")) {
      FTokens.Take(), FTokens.Take();
      Column.NotNull = true;
      Column.NotNullConflict = FConstraints.ReadConflict();
    } else {
      return FConstraints.ReadForColumn(Column.Name);
    }
    FConstraints.ForgetName();
    return true;
  }

  std::string ReadDefault() {
    const std::size_t Start = FTokens.Peek().Start;
    if (FTokens.Peek().IsSymbol('(')) {
      FTokens.TakeBracketed();
      return std::string(FTokens.Since(Start));
    }
    if (!FTokens.TakeIf('-')) FTokens.TakeIf('+');
    const TSQLiteToken& Value = FTokens.Take();
    if (Value.Kind == TKind::Symbol) FTokens.Fail();
    const bool IsValue = IsOneOf(Value, {"NULL", "TRUE", "FALSE", "CURRENT_TIMESTAMP", "CURRENT_DATE", "CURRENT_TIME"});
    if ((Value.Kind == TKind::Word && !IsValue) || Value.Kind == TKind::Quoted) {
      // A name means its own text here.
      std::string Text = "'";
      for (const char C : Value.Name()) Text += C == '\'' ? "''" : std::string(1, C);
      return Text + "'";
    }
    return std::string(FTokens.Since(Start));
  }

  void ReadComputed(TSQLiteColumnDeclaration& Column) {
    if (FTokens.TakeIf("GENERATED")) FTokens.Expect("ALWAYS");
    FTokens.Expect("AS");
    Column.Computed = std::string(FTokens.TakeBracketed());
    Column.Stored = FTokens.TakeIf("STORED");
    if (!Column.Stored) FTokens.TakeIf("VIRTUAL");
  }

  void ReadOptions() {
    if (FTokens.IsAtEnd()) return;
    do {
      if (FTokens.TakeIf("WITHOUT")) {
        FTokens.Expect("ROWID");
        FResult.WithoutRowId = true;
      } else {
        FTokens.Expect("STRICT");
        FResult.Strict = true;
      }
    } while (FTokens.TakeIf(','));
  }

  void ResolveNames() {
    const auto Resolve = [&](std::string& Name) {
      const auto Found = std::find_if(FResult.Columns.begin(), FResult.Columns.end(),
                                      [&](const auto& Column) { return SameSQLiteName(Column.Name, Name); });
      if (Found == FResult.Columns.end()) FTokens.Fail();
      Name = Found->Name;
    };
    for (TDicKey& Key : FResult.Keys)
      for (TDicColumn& Column : Key.Columns) Resolve(Column.Name);
    for (TDicForeignKey& Key : FResult.ForeignKeys)
      for (TDicForeignKey::TPair& Pair : Key.Columns) Resolve(Pair.Column);
  }

  TSQLiteTokenReader FTokens;
  TSQLiteTableDeclaration FResult;
  TSQLiteConstraintReader FConstraints{FTokens, FResult};
};

}  // namespace

TSQLiteTableDeclaration ReadTableDeclaration(std::string_view Statement, std::string_view TableName) {
  return TReader(Statement, TableName).Read();
}

}  // namespace velkrund

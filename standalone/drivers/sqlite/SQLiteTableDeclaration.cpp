// The grammar is the engine's own: constraints of a table may follow each other without commas, words of a deferred
// reference may stand anywhere behind it, and a name that no constraint follows is none.

#include "standalone/drivers/sqlite/SQLiteTableDeclaration.h"

#include <algorithm>
#include <utility>

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/sqlite/SQLiteTokenReader.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

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
      ReadTableConstraint();
      if (FTokens.TakeIf(',')) FName.clear();
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
    FName.clear();
    FResult.Columns.push_back({FTokens.TakeName(), ReadType()});
    while (ReadColumnConstraint()) {
    }
    FName.clear();
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
    if (FTokens.Peek().Is("GENERATED")) return FTokens.Peek(1).Is("ALWAYS");
    return IsOneOf(FTokens.Peek(), {"CONSTRAINT", "DEFAULT", "NOT", "NULL", "PRIMARY", "UNIQUE", "CHECK", "REFERENCES",
                                    "COLLATE", "DEFERRABLE", "AS"});
  }

  bool ReadColumnConstraint() {
    TSQLiteColumnDeclaration& Column = FResult.Columns.back();
    if (FTokens.TakeIf("CONSTRAINT")) {
      FName = FTokens.TakeName();
    } else if (FTokens.TakeIf("DEFAULT")) {
      Column.Default = ReadDefault();
      FName.clear();
    } else if (FTokens.TakeIf("COLLATE")) {
      Column.Collate = FTokens.TakeName();
      FName.clear();
    } else if (FTokens.Peek().Is("AS") || (FTokens.Peek().Is("GENERATED") && FTokens.Peek(1).Is("ALWAYS"))) {
      ReadComputed(Column);
    } else if (FTokens.TakeIf("NULL")) {
      ReadConflict();
      FName.clear();
    } else if (FTokens.Peek().Is("NOT") && FTokens.Peek(1).Is("NULL")) {
      FTokens.Take(), FTokens.Take();
      Column.NotNull = true;
      Column.NotNullConflict = ReadConflict();
      FName.clear();
    } else {
      return ReadColumnKey(Column.Name) || ReadCheck() || ReadColumnReference(Column.Name);
    }
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
    FName.clear();
  }

  /// What the engine is told to do with a row that breaks a constraint; empty: the usual.
  std::string ReadConflict() {
    if (!FTokens.Peek().Is("ON") || !FTokens.Peek(1).Is("CONFLICT")) return {};
    FTokens.Take(), FTokens.Take();
    const std::string Action = UpperCase(FTokens.TakeName());
    return Action == "ABORT" ? std::string() : Action;
  }

  bool ReadColumnKey(const std::string& Column) {
    const bool IsPrimary = FTokens.Peek().Is("PRIMARY");
    if (!IsPrimary && !FTokens.Peek().Is("UNIQUE")) return false;
    FTokens.Take();
    TDicKey Key{.Name = std::exchange(FName, {}), .Primary = IsPrimary, .Columns = {{.Name = Column}}};
    if (IsPrimary) {
      FTokens.Expect("KEY");
      Key.Columns.front().Descending = ReadDescending();
    }
    const std::string Conflict = ReadConflict();
    AddKey(std::move(Key), {}, IsPrimary && FTokens.TakeIf("AUTOINCREMENT"), Conflict);
    return true;
  }

  bool ReadDescending() {
    const bool Descending = FTokens.TakeIf("DESC");
    if (!Descending) FTokens.TakeIf("ASC");
    return Descending;
  }

  /// Columns: what the words of the key have to say of them; empty: nothing.
  void AddKey(TDicKey Key, const std::string& Columns, bool AutoIncrement, const std::string& Conflict) {
    std::string Text = Columns;
    if (AutoIncrement) Text = "AUTOINCREMENT";
    if (!Conflict.empty()) Text += (Text.empty() ? "" : " ") + ("ON CONFLICT " + Conflict);
    if (!Text.empty()) Key.Words["sqlite"].Text = Text;
    FResult.Keys.insert(Key.Primary ? FResult.Keys.begin() : FResult.Keys.end(), std::move(Key));
  }

  bool ReadCheck() {
    if (!FTokens.TakeIf("CHECK")) return false;
    TDicCheck Check{.Name = std::exchange(FName, {})};
    Check.Words["sqlite"].Text = std::string(FTokens.TakeBracketed());
    ReadConflict();  // the engine ignores it
    FResult.Checks.push_back(std::move(Check));
    return true;
  }

  bool ReadColumnReference(const std::string& Column) {
    if (FTokens.TakeIf("REFERENCES")) {
      ReadReference({Column});
      return true;
    }
    return ReadDeferrable();
  }

  void ReadReference(const std::vector<std::string>& Own) {
    TDicForeignKey Key{.Name = std::exchange(FName, {}), .Table = FTokens.TakeName()};
    std::vector<std::string> To(Own.size());
    if (FTokens.Peek().IsSymbol('(')) To = ReadNames();
    if (To.size() != Own.size()) FTokens.Fail();
    for (std::size_t I = 0; I < Own.size(); ++I) Key.Columns.push_back({Own[I], To[I]});
    while (FTokens.Peek().Is("MATCH") || (FTokens.Peek().Is("ON") && !FTokens.Peek(1).Is("CONFLICT"))) {
      if (FTokens.TakeIf("MATCH")) {
        const std::string Match = UpperCase(FTokens.TakeName());
        Key.MatchFull = Match == "FULL";
        if (Match == "PARTIAL") Key.Words["sqlite"].Text = "MATCH PARTIAL";
        continue;
      }
      FTokens.Take();
      if (FTokens.TakeIf("DELETE")) {
        Key.OnDelete = ReadAction();
      } else if (FTokens.TakeIf("UPDATE")) {
        Key.OnUpdate = ReadAction();
      } else {
        FTokens.Expect("INSERT");
        ReadAction();  // the engine ignores it
      }
    }
    FResult.ForeignKeys.push_back(std::move(Key));
    ReadDeferrable();
  }

  TDicKeyAction ReadAction() {
    if (FTokens.TakeIf("CASCADE")) return TDicKeyAction::Cascade;
    if (FTokens.TakeIf("RESTRICT")) return TDicKeyAction::Restrict;
    if (FTokens.TakeIf("NO")) return FTokens.Expect("ACTION"), TDicKeyAction::NoAction;
    FTokens.Expect("SET");
    if (FTokens.TakeIf("NULL")) return TDicKeyAction::SetNull;
    FTokens.Expect("DEFAULT");
    return TDicKeyAction::SetDefault;
  }

  bool ReadDeferrable() {
    const bool IsNot = FTokens.Peek().Is("NOT") && FTokens.Peek(1).Is("DEFERRABLE");
    if (!IsNot && !FTokens.Peek().Is("DEFERRABLE")) return false;
    if (IsNot) FTokens.Take();
    FTokens.Take();
    bool IsDeferred = false;
    if (FTokens.TakeIf("INITIALLY")) {
      IsDeferred = FTokens.TakeIf("DEFERRED");
      if (!IsDeferred) FTokens.Expect("IMMEDIATE");
    }
    if (!FResult.ForeignKeys.empty())
      FResult.ForeignKeys.back().Deferrable = IsNot        ? TDicDeferrable::No
                                              : IsDeferred ? TDicDeferrable::Deferred
                                                           : TDicDeferrable::Immediate;
    return true;
  }

  std::vector<std::string> ReadNames() {
    std::vector<std::string> Result;
    FTokens.Expect('(');
    do Result.push_back(FTokens.TakeName());
    while (FTokens.TakeIf(','));
    FTokens.Expect(')');
    return Result;
  }

  void ReadTableConstraint() {
    if (FTokens.TakeIf("CONSTRAINT")) {
      FName = FTokens.TakeName();
    } else if (FTokens.TakeIf("FOREIGN")) {
      FTokens.Expect("KEY");
      const std::vector<std::string> Own = ReadNames();
      FTokens.Expect("REFERENCES");
      ReadReference(Own);
    } else if (!ReadCheck()) {
      ReadTableKey();
    }
  }

  void ReadTableKey() {
    TDicKey Key{.Name = std::exchange(FName, {}), .Primary = FTokens.Take().Is("PRIMARY")};
    if (Key.Primary) FTokens.Expect("KEY");
    FTokens.Expect('(');
    std::string Columns = "(";
    bool HasCollations = false;
    do {
      TDicColumn& Column = Key.Columns.emplace_back(TDicColumn{FTokens.TakeName()});
      Columns += (Columns.size() > 1 ? ", " : "") + QuoteStandardName(Column.Name);
      if (FTokens.TakeIf("COLLATE")) {
        Columns += " COLLATE " + QuoteStandardName(FTokens.TakeName());
        HasCollations = true;
      }
      Column.Descending = ReadDescending();
      if (Column.Descending) Columns += " DESC";
    } while (FTokens.TakeIf(','));
    const bool AutoIncrement = Key.Primary && FTokens.TakeIf("AUTOINCREMENT");
    FTokens.Expect(')');
    AddKey(std::move(Key), HasCollations ? Columns + ")" : std::string(), AutoIncrement, ReadConflict());
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
  std::string FName;  // of the constraint that comes next
};

}  // namespace

TSQLiteTableDeclaration ReadTableDeclaration(std::string_view Statement, std::string_view TableName) {
  return TReader(Statement, TableName).Read();
}

}  // namespace velkrund

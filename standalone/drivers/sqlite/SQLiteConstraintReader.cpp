// Words of a deferred reference may stand anywhere behind it, and a name that no constraint follows is none.

#include "standalone/drivers/sqlite/SQLiteConstraintReader.h"

#include <utility>

#include "standalone/drivers/Dialect.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

bool TSQLiteConstraintReader::ReadForColumn(const std::string& Column) {
  return ReadColumnKey(Column) || ReadCheck() || ReadColumnReference(Column);
}

std::string TSQLiteConstraintReader::ReadConflict() {
  if (!FTokens.Peek().Is("ON") || !FTokens.Peek(1).Is("CONFLICT")) return {};
  FTokens.Take(), FTokens.Take();
  const std::string Action = UpperCase(FTokens.TakeName());
  return Action == "ABORT" ? std::string() : Action;
}

bool TSQLiteConstraintReader::ReadColumnKey(const std::string& Column) {
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

bool TSQLiteConstraintReader::ReadDescending() {
  const bool Descending = FTokens.TakeIf("DESC");
  if (!Descending) FTokens.TakeIf("ASC");
  return Descending;
}

void TSQLiteConstraintReader::AddKey(TDicKey Key, const std::string& Columns, bool AutoIncrement,
                                     const std::string& Conflict) {
  std::string Text = Columns;
  if (AutoIncrement) Text = "AUTOINCREMENT";
  if (!Conflict.empty()) Text += (Text.empty() ? "" : " ") + ("ON CONFLICT " + Conflict);
  if (!Text.empty()) Key.Words["sqlite"].Text = Text;
  FResult.Keys.insert(Key.Primary ? FResult.Keys.begin() : FResult.Keys.end(), std::move(Key));
}

bool TSQLiteConstraintReader::ReadCheck() {
  if (!FTokens.TakeIf("CHECK")) return false;
  TDicCheck Check{.Name = std::exchange(FName, {})};
  Check.Words["sqlite"].Text = std::string(FTokens.TakeBracketed());
  ReadConflict();  // the engine ignores it
  FResult.Checks.push_back(std::move(Check));
  return true;
}

bool TSQLiteConstraintReader::ReadColumnReference(const std::string& Column) {
  if (FTokens.TakeIf("REFERENCES")) {
    ReadReference({Column});
    return true;
  }
  return ReadDeferrable();
}

void TSQLiteConstraintReader::ReadReference(const std::vector<std::string>& Own) {
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

TDicKeyAction TSQLiteConstraintReader::ReadAction() {
  if (FTokens.TakeIf("CASCADE")) return TDicKeyAction::Cascade;
  if (FTokens.TakeIf("RESTRICT")) return TDicKeyAction::Restrict;
  if (FTokens.TakeIf("NO")) return FTokens.Expect("ACTION"), TDicKeyAction::NoAction;
  FTokens.Expect("SET");
  if (FTokens.TakeIf("NULL")) return TDicKeyAction::SetNull;
  FTokens.Expect("DEFAULT");
  return TDicKeyAction::SetDefault;
}

bool TSQLiteConstraintReader::ReadDeferrable() {
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

std::vector<std::string> TSQLiteConstraintReader::ReadNames() {
  std::vector<std::string> Result;
  FTokens.Expect('(');
  do Result.push_back(FTokens.TakeName());
  while (FTokens.TakeIf(','));
  FTokens.Expect(')');
  return Result;
}

void TSQLiteConstraintReader::ReadForTable() {
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

void TSQLiteConstraintReader::ReadTableKey() {
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

}  // namespace velkrund

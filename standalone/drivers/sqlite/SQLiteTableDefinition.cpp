#include "standalone/drivers/sqlite/SQLiteTableDefinition.h"

#include <algorithm>
#include <utility>

#include "standalone/drivers/NeutralExpression.h"
#include "standalone/drivers/TextLines.h"
#include "standalone/drivers/sqlite/SQLiteDeclarations.h"
#include "standalone/drivers/sqlite/SQLiteFieldTypes.h"
#include "standalone/drivers/sqlite/SQLiteTokenReader.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// What the engine says of a column, against which its declaration is held.
bool Agree(const TColumnInfo& Known, const TSQLiteColumnDeclaration& Declared, int KeyPosition) {
  // The engine takes columns of some keys for NOT NULL without the words.
  return Known.Name == Declared.Name && (KeyPosition > 0 || Known.Nullable != Declared.NotNull) &&
         Known.Generated == Declared.Computed.has_value() && Known.KeyPosition == KeyPosition;
}

int KeyPosition(const TSQLiteTableDeclaration& Declaration, const std::string& Column) {
  if (Declaration.Keys.empty() || !Declaration.Keys.front().Primary) return 0;
  const std::vector<TDicColumn>& Columns = Declaration.Keys.front().Columns;
  const auto Found =
      std::find_if(Columns.begin(), Columns.end(), [&](const TDicColumn& One) { return One.Name == Column; });
  return Found == Columns.end() ? 0 : static_cast<int>(Found - Columns.begin()) + 1;
}

}  // namespace

const std::string_view SQLiteUuidDefault =
    "(lower(hex(randomblob(4)) || '-' || hex(randomblob(2)) || '-4' || substr(hex(randomblob(2)), 2) || '-' || "
    "substr('89ab', 1 + (random() & 3), 1) || substr(hex(randomblob(2)), 2) || '-' || hex(randomblob(6))))";

TSQLiteTableDefinition::TSQLiteTableDefinition(const TTableDescription& Known) : FKnown(Known) {
  FResult.Name = Known.Table.Name;
}

void TSQLiteTableDefinition::AddDeclaration(TSQLiteTableDeclaration Declaration, bool KeyIsRowNumber) {
  bool Agrees = FKnown.Columns.size() == Declaration.Columns.size();
  for (std::size_t I = 0; Agrees && I < FKnown.Columns.size(); ++I)
    Agrees = Agree(FKnown.Columns[I], Declaration.Columns[I], KeyPosition(Declaration, Declaration.Columns[I].Name));
  if (!Agrees)
    throw EDatabaseError(
        Format("Cannot read the declaration of table '%s', as the database keeps it: the engine "
               "takes its columns for others",
               FKnown.Table.Name));
  for (std::size_t I = 0; I < FKnown.Columns.size(); ++I) {
    AddColumn(FKnown.Columns[I], Declaration.Columns[I]);
    if (KeyIsRowNumber && FKnown.Columns[I].KeyPosition > 0) FResult.Fields.back().Auto = TDicAutoKey::RowNumber;
  }
  FResult.Keys = std::move(Declaration.Keys);
  FResult.ForeignKeys = std::move(Declaration.ForeignKeys);
  for (TDicCheck& Check : Declaration.Checks) {
    Check.Text = Neutral(*Check.Words["sqlite"].Text);
    if (Check.Text) Check.Words.clear();
    FResult.Checks.push_back(std::move(Check));
  }
  if (!Declaration.Strict && !Declaration.WithoutRowId) return;
  FResult.Words["sqlite"].Text = !Declaration.WithoutRowId ? "STRICT"
                                 : Declaration.Strict      ? "STRICT, WITHOUT ROWID"
                                                           : "WITHOUT ROWID";
}

void TSQLiteTableDefinition::AddVirtual(const std::string& Using) {
  for (const TColumnInfo& Column : FKnown.Columns) {
    FResult.Fields.push_back(FieldOf(Column));
    if (Column.KeyPosition == 0) continue;
    FResult.Fields.back().Auto = TDicAutoKey::RowNumber;
    FResult.Keys.push_back({.Primary = true, .Columns = {{.Name = Column.Name}}});
  }
  FResult.Words["sqlite"].Parts["Virtual"] = Using;
}

TDicField TSQLiteTableDefinition::FieldOf(const TColumnInfo& Column) const {
  const TSQLiteFieldType Type = FieldTypeOf(Column.DeclaredType);
  TDicField Result{.Name = Column.Name, .Type = Type.Type, .Size = Type.Size, .Scale = Type.Scale};
  Result.Words["sqlite"].Text = Column.DeclaredType;
  return Result;
}

void TSQLiteTableDefinition::AddColumn(const TColumnInfo& Known, const TSQLiteColumnDeclaration& Declared) {
  TDicField Field = FieldOf(Known);
  TDicWords& Words = Field.Words["sqlite"];
  Words.Text = Declared.Type;
  Field.NotNull = Declared.NotNull;
  if (!Declared.NotNullConflict.empty()) Words.Parts["NotNull"] = "ON CONFLICT " + Declared.NotNullConflict;
  if (!Declared.Collate.empty()) Words.Parts["Collate"] = Declared.Collate;
  if (Declared.Default) {
    const TExpressionSource NoColumns{.Column = [](std::string_view, bool) { return std::nullopt; },
                                      .IsIdleCast = [](std::string_view) { return false; }};
    Field.Default = *Declared.Default == SQLiteUuidDefault ? std::optional<std::string>("UUID")
                                                           : NeutralDefault(*Declared.Default, Field.Type, NoColumns);
    if (!Field.Default) Words.Parts["Default"] = *Declared.Default;
  }
  if (Declared.Computed) {
    Field.Computed = Neutral(*Declared.Computed);
    Field.Stored = Declared.Stored;
    if (!Field.Computed) {
      Field.Computed.emplace();
      Words.Parts["Computed"] = *Declared.Computed;
    }
  }
  FResult.Fields.push_back(std::move(Field));
}

std::optional<std::string> TSQLiteTableDefinition::ColumnName(std::string_view Name) const {
  for (const TColumnInfo& Column : FKnown.Columns)
    if (SameSQLiteName(Column.Name, Name)) return Column.Name;
  return std::nullopt;
}

std::optional<std::string> TSQLiteTableDefinition::Neutral(std::string_view Text) const {
  bool HasTruth = false;
  const auto Column = [&](std::string_view Name, bool) {
    for (const TColumnInfo& Known : FKnown.Columns)
      HasTruth = HasTruth || (Known.Kind == TKvKind::Boolean && SameSQLiteName(Known.Name, Name));
    return ColumnName(Name);
  };
  std::optional<std::string> Result =
      NeutralExpression(Text, {.Column = Column, .IsIdleCast = [](std::string_view) { return false; }});
  // Only here is a truth value the number 0 or 1.
  const std::vector<TSQLiteToken> Tokens = SQLiteTokens(Text);
  const auto IsNumber = [](const TSQLiteToken& Token) { return Token.Kind == TSQLiteToken::TKind::Number; };
  if (HasTruth && std::any_of(Tokens.begin(), Tokens.end(), IsNumber)) return std::nullopt;
  return Result;
}

void TSQLiteTableDefinition::AddIndex(const std::string& Name, const std::string& Statement) {
  const TSQLiteIndexDeclaration Declared = ReadIndexDeclaration(Statement, Name);
  TDicIndex Index{.Name = Name, .Unique = Declared.Unique};
  bool IsAllSaid = !Declared.Partial;
  for (const TSQLiteIndexedColumn& Column : Declared.Columns) {
    const std::optional<std::string> Known = Column.IsName ? ColumnName(Column.Text) : std::nullopt;
    const std::optional<std::string> Said = Known ? Known : Neutral(Column.Text);
    Index.Columns.push_back({Said.value_or(Column.Text), !Known, Column.Descending});
    IsAllSaid = IsAllSaid && Said && Column.Collate.empty();
  }
  if (!IsAllSaid) Index.Words["sqlite"].Text = Statement;
  FResult.Indexes.push_back(std::move(Index));
}

void TSQLiteTableDefinition::AddTrigger(const std::string& Name, const std::string& Statement) {
  FResult.Triggers.push_back(SQLiteTrigger(Name, Statement));
}

TDicTableDescription TSQLiteTableDefinition::Take() {
  std::sort(FResult.Indexes.begin(), FResult.Indexes.end(),
            [](const TDicIndex& A, const TDicIndex& B) { return A.Name < B.Name; });
  return std::move(FResult);
}

TDicTrigger SQLiteTrigger(const std::string& Name, const std::string& Statement) {
  TDicTrigger Result{.Name = Name};
  Result.Words["sqlite"].Lines = SplitLines(Statement);
  return Result;
}

}  // namespace velkrund

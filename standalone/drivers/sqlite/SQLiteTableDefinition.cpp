#include "standalone/drivers/sqlite/SQLiteTableDefinition.h"

#include <algorithm>
#include <utility>

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/TextLines.h"
#include "standalone/drivers/expressions/NeutralExpression.h"
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

const TColumnInfo* TSQLiteTableDefinition::Column(std::string_view Name) const {
  const auto Found = std::find_if(FKnown.Columns.begin(), FKnown.Columns.end(),
                                  [&](const TColumnInfo& One) { return SameSQLiteName(One.Name, Name); });
  return Found == FKnown.Columns.end() ? nullptr : &*Found;
}

/// The expression as other engines would have it, without the casts of numbers that are kept as texts; nothing where
/// such numbers are compared as texts, or where columns of any kind of values are taken for numbers, which others do
/// not do.
std::optional<std::string> TSQLiteTableDefinition::WithoutCasts(std::string_view Text) const {
  const std::vector<TSQLiteToken> Tokens = SQLiteTokens(Text);
  std::string Result;
  bool HasLoose = false;
  bool Counts = false;
  const auto IsCast = [&](std::size_t At) {
    return At >= 2 && At + 3 < Tokens.size() && Tokens[At - 2].Is("CAST") && Tokens[At - 1].IsSymbol('(') &&
           Tokens[At + 1].Is("AS") && Tokens[At + 2].Is("NUMERIC") && Tokens[At + 3].IsSymbol(')');
  };
  std::size_t Copied = 0;
  for (std::size_t At = 0; At < Tokens.size(); ++At) {
    Counts = Counts || Tokens[At].Kind == TSQLiteToken::TKind::Number || Tokens[At].IsSymbol('+') ||
             Tokens[At].IsSymbol('-') || Tokens[At].IsSymbol('*');
    const bool IsName = Tokens[At].IsName() && Tokens[At].Kind != TSQLiteToken::TKind::Text;
    const TColumnInfo* Named = IsName ? Column(Tokens[At].Name()) : nullptr;
    if (!Named) continue;
    HasLoose = HasLoose || Named->Kind == TKvKind::Null;
    if (!KeepsNumbersAsTexts(FieldTypeOf(Named->DeclaredType).Type, Named->DeclaredType)) continue;
    if (!IsCast(At)) return std::nullopt;
    Result.append(Text.substr(Copied, Tokens[At - 2].Start - Copied)).append(Tokens[At].Text);
    Copied = Tokens[At + 3].Behind();
  }
  if (HasLoose && Counts) return std::nullopt;
  return Result.append(Text.substr(Copied));
}

std::optional<std::string> TSQLiteTableDefinition::Neutral(std::string_view Text) const {
  const std::optional<std::string> Plain = WithoutCasts(Text);
  if (!Plain) return std::nullopt;
  return NeutralExpression(*Plain, {.Column = [this](std::string_view Name, bool) -> std::optional<std::string> {
                                      const TColumnInfo* Named = Column(Name);
                                      return Named ? std::optional(Named->Name) : std::nullopt;
                                    },
                                    .IsIdleCast = [](std::string_view) { return false; },
                                    .IsBoolean =
                                        [this](std::string_view Name) {
                                          const TColumnInfo* Named = Column(Name);
                                          return Named && Named->Kind == TKvKind::Boolean;
                                        }});
}

/// The column that a neutral expression is, where it keeps its numbers as texts; else null.
const TColumnInfo* TSQLiteTableDefinition::NumberOf(const std::string& Neutral) const {
  for (const TDicField& Field : FResult.Fields)
    if (QuoteStandardName(Field.Name) == Neutral) {
      const TColumnInfo* const Result = Column(Field.Name);
      const bool IsNumber = Result && KeepsNumbersAsTexts(FieldTypeOf(Result->DeclaredType).Type, Result->DeclaredType);
      return IsNumber ? Result : nullptr;
    }
  return nullptr;
}

void TSQLiteTableDefinition::AddIndex(const std::string& Name, const std::string& Statement) {
  const TSQLiteIndexDeclaration Declared = ReadIndexDeclaration(Statement, Name);
  TDicIndex Index{.Name = Name, .Unique = Declared.Unique};
  bool IsAllSaid = !Declared.Partial;
  for (const TSQLiteIndexedColumn& Indexed : Declared.Columns) {
    const TColumnInfo* Known = Indexed.IsName ? Column(Indexed.Text) : nullptr;
    std::optional<std::string> Said = Known ? Known->Name : Neutral(Indexed.Text);
    // To an engine with such numbers the column itself is in the order of its numbers.
    if (const TColumnInfo* const Cast = Known || !Said ? nullptr : NumberOf(*Said)) {
      // Beside the column as it is the list does not tell which of them is meant.
      const auto IsIt = [&](const TSQLiteIndexedColumn& Other) { return Other.IsName && Column(Other.Text) == Cast; };
      IsAllSaid = IsAllSaid && std::none_of(Declared.Columns.begin(), Declared.Columns.end(), IsIt);
      Known = Cast;
      Said = Cast->Name;
      std::string& Numbers = Index.Words["sqlite"].Parts["Numbers"];
      Numbers += (Numbers.empty() ? "" : ", ") + QuoteStandardName(Cast->Name);
    }
    Index.Columns.push_back({Said.value_or(Indexed.Text), !Known, Indexed.Descending});
    IsAllSaid = IsAllSaid && Said && Indexed.Collate.empty();
  }
  if (!IsAllSaid) Index.Words["sqlite"] = {.Text = Statement};
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

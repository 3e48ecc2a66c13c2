#include "standalone/drivers/postgresql/PostgreSQLExpressions.h"

#include <algorithm>

#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "standalone/drivers/postgresql/PostgreSQLNeutralWords.h"

namespace velkrund {
namespace {

/// Whether it has a length or precision: such a cast cuts or rounds.
bool HasLength(std::string_view Type) { return Type.find('(') != std::string_view::npos; }

/// Whether what stands behind "::" is that type, and neither one with a length nor an array of it.
bool IsCastTo(std::string_view Rest, std::string_view Type) {
  if (!Rest.starts_with(Type)) return false;
  Rest.remove_prefix(Type.size());
  return Rest.empty() || (Rest.front() != '(' && Rest.front() != '[' && !IsNameCharacter(Rest.front()));
}

/// Types of the constants that the engine itself casts when it prints them.
bool IsOfConstant(std::string_view Type) {
  constexpr std::string_view Types[] = {"text", "character varying", "bpchar", "integer", "bigint", "numeric", "bytea"};
  return std::find(std::begin(Types), std::end(Types), Type) != std::end(Types);
}

/// Types whose values compare the same in every engine: neither those that ignore blanks, case or zones, nor those that
/// have an order of their own.
bool ComparesAlike(std::string_view Type) {
  constexpr std::string_view Types[] = {"smallint",
                                        "integer",
                                        "bigint",
                                        "numeric",
                                        "real",
                                        "double precision",
                                        "boolean",
                                        "text",
                                        "character varying",
                                        "bytea",
                                        "date",
                                        "time without time zone",
                                        "timestamp without time zone",
                                        "uuid"};
  return std::find(std::begin(Types), std::end(Types), Type) != std::end(Types);
}

bool IsTextType(std::string_view Type) { return Type == "text" || Type == "character varying" || Type == "bpchar"; }

}  // namespace

/// The engine prints names in their own case, quoted where they are not in lower case.
std::optional<std::string> TPostgreSQLExpressions::ColumnNamed(std::string_view Name) const {
  for (const TExpressionColumn& Column : FColumns)
    if (Column.Name == Name && ComparesAlike(Column.Type)) return Column.Name;
  return std::nullopt;
}

/// Whether a column is cast to something that is not its own type: its values are then compared in another way.
bool TPostgreSQLExpressions::ChangesColumn(const std::string& Text) const {
  for (const TExpressionColumn& Column : FColumns)
    for (std::size_t At = Text.find(Column.Quoted); At != std::string::npos; At = Text.find(Column.Quoted, At + 1)) {
      // In "beta" there is no "a".
      if (At > 0 && (IsNameCharacter(Text[At - 1]) || Text[At - 1] == '"')) continue;
      std::string_view Rest = std::string_view(Text).substr(At + Column.Quoted.size());
      if (Rest.starts_with(')')) Rest.remove_prefix(1);
      if (!Rest.starts_with("::")) continue;
      Rest.remove_prefix(2);
      const bool IsIdle = Column.IsText && (IsCastTo(Rest, "text") || IsCastTo(Rest, "character varying"));
      if (!IsIdle && !IsCastTo(Rest, Column.Type)) return true;
    }
  return false;
}

std::optional<std::string> TPostgreSQLExpressions::Expression(const std::string& Text) const {
  if (ChangesColumn(Text)) return std::nullopt;
  // The engine leaves out a cast to what a column is anyway, with its length. Of reals numeric takes some digits alone.
  const auto HasType = [this](std::string_view Type) {
    return std::any_of(FColumns.begin(), FColumns.end(),
                       [&](const TExpressionColumn& Column) { return Column.Type == Type; });
  };
  const bool HasReals = HasType("real") || HasType("double precision");
  const auto IsIdleCast = [&](std::string_view Type) {
    if (HasLength(Type) || (Type == "numeric" && HasReals)) return false;
    return IsOfConstant(Type) || HasType(Type);
  };
  return NeutralExpression(Text, {[this](std::string_view Name, bool) { return ColumnNamed(Name); }, IsIdleCast});
}

std::optional<std::string> TPostgreSQLExpressions::Default(const std::string& Text, const std::string& Type,
                                                           const TDicField& Field) const {
  const bool HoldsText = Field.Type == TDicFieldType::String || Field.Type == TDicFieldType::FixedString;
  const TDicWords* const Own = WordsOf(Field.Words, "postgresql");
  bool IsCut = false;
  const auto IsIdleCast = [&](std::string_view Cast) {
    if (HasLength(Cast)) {
      IsCut = IsCut || HoldsText;
      // The items of an array may be texts.
      return Own && Own->Text == Cast && Field.Type != TDicFieldType::Other;
    }
    return Cast == Type || (HoldsText ? IsTextType(Cast) : IsOfConstant(Cast));
  };
  const std::optional<std::string> Neutral = NeutralDefault(
      Text, Field.Type, {[](std::string_view, bool) -> std::optional<std::string> { return {}; }, IsIdleCast});
  // A text that is too long is cut by the cast, and refused without it. Its bytes are at least as many as its letters.
  constexpr std::size_t Quotes = 2;
  if (IsCut && Neutral && Neutral->size() > static_cast<std::size_t>(Field.Size.value_or(0)) + Quotes)
    return std::nullopt;
  // 'now'::text is the time of the row, and 'now' that of the table's making.
  return Neutral && DefaultWords(*Neutral, Field.Type) ? Neutral : std::nullopt;
}

}  // namespace velkrund

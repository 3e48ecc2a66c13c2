#include "standalone/drivers/postgresql/PostgreSQLExpressions.h"

#include <algorithm>

#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "standalone/drivers/postgresql/PostgreSQLNeutralWords.h"

namespace velkrund {
namespace {

/// Without a length or precision.
std::string BareType(std::string_view Type) {
  std::string Result(Type);
  const std::size_t Open = Result.find('(');
  if (Open == std::string::npos) return Result;
  const std::size_t Close = Result.find(')', Open);
  return Result.erase(Open, Close == std::string::npos ? Close : Close - Open + 1);
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
      const bool IsOwn = Rest.starts_with(Column.Type);
      const bool IsIdle = Column.IsText && (Rest.starts_with("text") || Rest.starts_with("character varying"));
      if (!IsOwn && !IsIdle) return true;
    }
  return false;
}

std::optional<std::string> TPostgreSQLExpressions::Expression(const std::string& Text) const {
  if (ChangesColumn(Text)) return std::nullopt;
  const auto IsIdleCast = [this](std::string_view Type) {
    const std::string Bare = BareType(Type);
    return IsOfConstant(Bare) || std::any_of(FColumns.begin(), FColumns.end(),
                                             [&](const TExpressionColumn& Column) { return Column.Type == Bare; });
  };
  return NeutralExpression(Text, {[this](std::string_view Name, bool) { return ColumnNamed(Name); }, IsIdleCast});
}

std::optional<std::string> TPostgreSQLExpressions::Default(const std::string& Text, const std::string& Type,
                                                           TDicFieldType Field) const {
  const bool HoldsText = Field == TDicFieldType::String || Field == TDicFieldType::FixedString;
  const auto IsIdleCast = [&](std::string_view Cast) {
    const std::string Bare = BareType(Cast);
    return Bare == Type || (HoldsText ? IsTextType(Bare) : IsOfConstant(Bare));
  };
  const std::optional<std::string> Neutral = NeutralDefault(
      Text, Field, {[](std::string_view, bool) -> std::optional<std::string> { return {}; }, IsIdleCast});
  // 'now'::text is the time of the row, and 'now' that of the table's making.
  return Neutral && DefaultWords(*Neutral, Field) ? Neutral : std::nullopt;
}

}  // namespace velkrund

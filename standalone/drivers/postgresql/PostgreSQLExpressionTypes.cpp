#include "standalone/drivers/postgresql/PostgreSQLExpressionTypes.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "standalone/drivers/expressions/ExpressionParser.h"
#include "standalone/drivers/postgresql/PostgreSQLNeutralWords.h"

namespace velkrund {
namespace {

using TType = TDicFieldType;
using TKind = TExpressionKind;

bool IsInteger(TType Type) { return Type >= TType::Int16 && Type <= TType::UInt64; }
bool IsNumber(TType Type) { return Type >= TType::Int16 && Type <= TType::Money; }
bool IsText(TType Type) { return Type == TType::String || Type == TType::FixedString; }
bool IsMoment(TType Type) { return Type == TType::Date || Type == TType::DateTime || Type == TType::ZonedDateTime; }

bool AreAlike(TType A, TType B) {
  return A == B || (IsNumber(A) && IsNumber(B)) || (IsText(A) && IsText(B)) || (IsMoment(A) && IsMoment(B));
}

/// Of what type a piece of an expression is.
struct TValue {
  TType Type = TType::Any;               // of all kinds: the engine takes none such
  bool IsNull = false;                   // of whatever type is wanted
  const std::string* Literal = nullptr;  // a text, which the engine reads as whatever type is wanted
  bool Is(TType Wanted) const { return IsNull || (!Literal && Type == Wanted); }
};

class TExpressionTypes {
 public:
  explicit TExpressionTypes(const std::vector<TDicField>& Fields) : FFields(Fields) {}

  /// Nothing: the engine refuses it.
  std::optional<TValue> Of(const TExpression& Node) const {
    switch (Node.Kind) {
      case TKind::Number:
        return TValue{Node.Text.find('.') == std::string::npos ? TType::Int64 : TType::Decimal};
      case TKind::String:
        return TValue{.Type = TType::String, .Literal = &Node.Text};
      case TKind::Bytes:
        return TValue{TType::Bytes};
      case TKind::Word:
        return TValue{.Type = TType::Boolean, .IsNull = Node.IsNull()};
      case TKind::Column:
        return OfColumn(Node.Text);
      case TKind::Or:
      case TKind::And:
      case TKind::Not:
        return AreTruths(Node) ? Truth() : std::nullopt;
      case TKind::Comparison:
      case TKind::In:
        return AreCompared(Node) ? Truth() : std::nullopt;
      case TKind::Is:
        return Of(Node.Nodes.front()) ? Truth() : std::nullopt;
      case TKind::Sum:
      case TKind::Product:
      case TKind::Minus:
        return OfCalculation(Node);
      case TKind::Call:
        return OfCall(Node);
      case TKind::Case:
      case TKind::CaseOf:
        return OfCase(Node);
    }
    return std::nullopt;
  }

 private:
  static std::optional<TValue> Truth() { return TValue{TType::Boolean}; }

  std::optional<TValue> OfColumn(const std::string& Name) const {
    const auto Found =
        std::find_if(FFields.begin(), FFields.end(), [&](const TDicField& Field) { return Field.Name == Name; });
    if (Found == FFields.end() || Found->Type == TType::Any) return std::nullopt;
    return TValue{Found->Type};
  }

  /// What both are, as the arms of a choice, or two that are compared.
  static std::optional<TValue> Common(const std::optional<TValue>& A, const std::optional<TValue>& B) {
    if (!A || !B) return std::nullopt;
    if (A->IsNull) return B;
    if (B->IsNull) return A;
    if (A->Literal && B->Literal) return TValue{TType::String};
    if (A->Literal) return Common(B, A);
    if (B->Literal) return FitsPostgreSQLField("'" + *B->Literal + "'", A->Type) ? A : std::nullopt;
    if (!AreAlike(A->Type, B->Type)) return std::nullopt;
    return IsInteger(A->Type) ? B : A;
  }

  bool AreTruths(const TExpression& Node) const {
    return std::all_of(Node.Nodes.begin(), Node.Nodes.end(), [this](const TExpression& Each) {
      const std::optional<TValue> Value = Of(Each);
      return Value && Value->Is(TType::Boolean);
    });
  }

  /// A column of truths is made a number where it meets one.
  bool IsCountedTruth(const TExpression& Node) const {
    const std::optional<TValue> Value = Node.Is(TKind::Column) ? OfColumn(Node.Text) : std::nullopt;
    return Value && Value->Type == TType::Boolean;
  }

  bool AreCompared(const TExpression& Node) const {
    const TExpression& First = Node.Nodes.front();
    return std::all_of(Node.Nodes.begin() + 1, Node.Nodes.end(), [&](const TExpression& Other) {
      if ((IsCountedTruth(First) && Other.Is(TKind::Number)) || (IsCountedTruth(Other) && First.Is(TKind::Number)))
        return true;
      const std::optional<TValue> Both = Common(Of(First), Of(Other));
      return Both && (Both->IsNull || Both->Type != TType::Json);
    });
  }

  std::optional<TValue> OfCalculation(const TExpression& Node) const {
    TValue Result{TType::Int64};
    for (const TExpression& Each : Node.Nodes) {
      if (IsCountedTruth(Each) && !Node.Is(TKind::Minus)) continue;
      const std::optional<TValue> Value = Of(Each);
      if (!Value || Value->Literal || (!Value->IsNull && !IsNumber(Value->Type))) return std::nullopt;
      if (!Value->IsNull && !IsInteger(Value->Type)) Result = *Value;
    }
    return Result;
  }

  std::optional<TValue> OfCall(const TExpression& Node) const {
    const std::optional<TValue> First = Of(Node.Nodes.front());
    if (!First) return std::nullopt;
    if (Node.Text == "LOWER" || Node.Text == "UPPER")
      return First->IsNull || IsText(First->Type) ? std::optional(TValue{TType::String}) : std::nullopt;
    if (Node.Text == "ABS") return IsNumber(First->Type) ? First : std::nullopt;
    std::optional<TValue> Result = First;
    for (std::size_t I = 1; I < Node.Nodes.size(); ++I) Result = Common(Result, Of(Node.Nodes[I]));
    return Result;
  }

  std::optional<TValue> OfCase(const TExpression& Node) const {
    std::size_t Next = Node.Is(TKind::CaseOf) ? 1 : 0;
    std::optional<TValue> Result = TValue{.Type = TType::String, .IsNull = true};
    for (; Next < Node.Nodes.size(); Next += 2) {
      if (Next + 1 == Node.Nodes.size()) return Common(Result, Of(Node.Nodes[Next]));
      const std::optional<TValue> Condition = Of(Node.Nodes[Next]);
      const bool Holds = Node.Is(TKind::CaseOf) ? Common(Of(Node.Nodes.front()), Condition).has_value()
                                                : Condition && Condition->Is(TType::Boolean);
      if (!Holds) return std::nullopt;
      Result = Common(Result, Of(Node.Nodes[Next + 1]));
    }
    return Result;
  }

  const std::vector<TDicField>& FFields;
};

/// Whether a field of the type can be computed so: what is written otherwise by other engines is not.
bool CanKeep(const TValue& Value, TType Field) {
  if (Value.IsNull) return true;
  if (Field == TType::Any) Field = TType::String;
  if (Value.Literal) return FitsPostgreSQLField("'" + *Value.Literal + "'", Field);
  if (IsMoment(Value.Type)) return Value.Type == Field;
  return AreAlike(Value.Type, Field) || (IsText(Field) && IsNumber(Value.Type));
}

}  // namespace

bool FitsPostgreSQL(const std::string& Neutral, const std::vector<TDicField>& Fields,
                    std::optional<TDicFieldType> Wanted) {
  const auto Column = [](std::string_view Name, bool Quoted) {
    return Quoted ? std::optional(std::string(Name)) : std::nullopt;
  };
  const TExpression Tree =
      ParseExpression(Neutral, {.Column = Column, .IsIdleCast = [](std::string_view) { return false; }});
  const std::optional<TValue> Value = TExpressionTypes(Fields).Of(Tree);
  if (!Value) return false;
  return Wanted ? CanKeep(*Value, *Wanted) : Value->IsNull || Value->Type != TType::Json;
}

}  // namespace velkrund

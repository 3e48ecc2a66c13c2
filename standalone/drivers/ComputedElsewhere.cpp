#include "standalone/drivers/ComputedElsewhere.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "standalone/drivers/expressions/ExpressionParser.h"
#include "standalone/drivers/expressions/ExpressionTree.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

using TType = TDicFieldType;
using TKind = TExpressionKind;

constexpr std::ptrdiff_t DigitsOfReal = 15;
constexpr int AnyDecimals = std::numeric_limits<int>::max() / 2;

bool IsComparison(const TExpression& Node) { return Node.Is(TKind::Comparison) || Node.Is(TKind::In); }

/// Whether it compares what stands in it, without being a comparison.
bool Compares(const TExpression& Node) {
  return IsComparison(Node) || Node.Is(TKind::CaseOf) || (Node.Is(TKind::Call) && Node.Text == "NULLIF");
}

bool Calculates(const TExpression& Node) {
  return Node.Is(TKind::Sum) || Node.Is(TKind::Product) || Node.Is(TKind::Minus) ||
         (Node.Is(TKind::Call) && Node.Text == "ABS");
}

/// How many decimals values of a field have at most; nothing: it has no numbers.
std::optional<int> DecimalsOf(const TDicField& Field) {
  if (Field.Type >= TType::Int16 && Field.Type <= TType::UInt64) return 0;
  if (Field.Type == TType::Decimal && Field.Size) return Field.Scale.value_or(0);
  if (Field.Type == TType::Money) return 4;
  if (Field.Type >= TType::Real32 && Field.Type <= TType::Decimal) return AnyDecimals;
  return std::nullopt;
}

class TValues {
 public:
  TValues(const std::vector<TDicField>& Fields, const TElsewhere& Elsewhere) : FFields(Fields), FElsewhere(Elsewhere) {}

  /// Whether the value of Node depends on digits that one engine alone has. IsValue: it is not compared at once.
  bool LosesDigits(const TExpression& Node, bool IsValue) const {
    if (Node.Is(TKind::Column)) {
      const TDicField* const Field = FieldOf(Node);
      return IsValue && Field && FElsewhere.HasOtherDigits(*Field);
    }
    if (Node.Is(TKind::Number))
      return IsValue && std::ranges::count_if(Node.Text, [](char C) { return C >= '0' && C <= '9'; }) > DigitsOfReal &&
             Node.Text.find('.') != std::string::npos;
    const bool IsCompared = IsComparison(Node) || Node.Is(TKind::Is);
    return std::ranges::any_of(Node.Nodes, [&](const TExpression& Each) {
      return LosesDigits(Each, Calculates(Node) || (IsValue && !IsCompared));
    });
  }

  /// Nothing: it is no number, as far as can be told.
  std::optional<int> Decimals(const TExpression& Node) const {
    if (Node.Is(TKind::Column)) {
      const TDicField* const Field = FieldOf(Node);
      return Field ? DecimalsOf(*Field) : std::nullopt;
    }
    if (Node.Is(TKind::Number)) {
      const std::size_t Point = Node.Text.find('.');
      return Point == std::string::npos ? 0 : static_cast<int>(Node.Text.size() - Point - 1);
    }
    const bool IsChoice = Node.Is(TKind::Case) || Node.Is(TKind::CaseOf) || Node.Is(TKind::Call);
    if (!IsChoice && !Calculates(Node)) return std::nullopt;
    std::optional<int> Result;
    for (std::size_t I = 0; I < Node.Nodes.size(); ++I) {
      if (IsCondition(Node, I)) continue;
      const std::optional<int> Each = Decimals(Node.Nodes[I]);
      if (!Each) continue;
      Result = Node.Is(TKind::Product) ? std::min(Result.value_or(0) + *Each, AnyDecimals)
                                       : std::max(Result.value_or(0), *Each);
    }
    return Result;
  }

  const TDicField* OtherOrder(const TExpression& Node, bool IsCompared) const {
    if (Node.Is(TKind::Column)) {
      const TDicField* const Field = FieldOf(Node);
      return IsCompared && Field && FElsewhere.HasOtherOrder(*Field) ? Field : nullptr;
    }
    for (const TExpression& Each : Node.Nodes)
      if (const TDicField* Found = OtherOrder(Each, IsCompared || Compares(Node))) return Found;
    return nullptr;
  }

 private:
  const TDicField* FieldOf(const TExpression& Node) const {
    const auto Found = std::ranges::find(FFields, Node.Text, &TDicField::Name);
    return Found == FFields.end() ? nullptr : &*Found;
  }

  /// Whether a node of a choice says which value is taken.
  static bool IsCondition(const TExpression& Node, std::size_t Index) {
    const std::size_t First = Node.Is(TKind::CaseOf) ? 1 : 0;
    if (!Node.Is(TKind::Case) && !Node.Is(TKind::CaseOf)) return false;
    return Index < First || ((Index - First) % 2 == 0 && Index + 1 < Node.Nodes.size());
  }

  const std::vector<TDicField>& FFields;
  const TElsewhere& FElsewhere;
};

/// How many decimals the field of a computed value takes; what is more is rounded by one engine and kept by the other.
std::optional<int> RoomFor(const TDicField& Field) {
  if (Field.Type == TType::String || Field.Type == TType::FixedString) return 0;
  return DecimalsOf(Field);
}

}  // namespace

std::string OtherValueOf(const std::string& Neutral, const std::vector<TDicField>& Fields, const TDicField* Computed,
                         const TElsewhere& Elsewhere) {
  const auto Column = [](std::string_view Name, bool Quoted) {
    return Quoted ? std::optional(std::string(Name)) : std::nullopt;
  };
  const TExpression Tree =
      ParseExpression(Neutral, {.Column = Column, .IsIdleCast = [](std::string_view) { return false; }});
  const TValues Values(Fields, Elsewhere);
  if (Values.LosesDigits(Tree, true)) return "the engines calculate it with different numbers of digits";
  if (const TDicField* Field = Values.OtherOrder(Tree, false))
    return Format("the engines compare the values of field '%s' differently", Field->Name);
  const std::optional<int> Room = Computed ? RoomFor(*Computed) : std::nullopt;
  const std::optional<int> Decimals = Room ? Values.Decimals(Tree) : std::nullopt;
  if (Decimals && *Decimals > *Room) return "one engine rounds it to the type of the field, and the other does not";
  return {};
}

}  // namespace velkrund

#include "hosts/cli/render/TreeText.h"

#include <cmath>
#include <utility>
#include <vector>

#include "hosts/cli/render/Texts.h"
#include "velkrund/dsp/NodeTexts.h"
#include "velkrund/dsp/NodeValueParts.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund {

namespace {

constexpr std::size_t BytesAtOnce = 64 * 1024;
// Two levels of the document each, which writers and many readers go down by calling themselves.
constexpr int DeepestJson = 1000;

std::string_view TypeWord(TDSPValueType Type) { return TCurrentNodeTexts().TypeWord(Type); }

/// What a variant holds, in the word for nodes that hold nothing else.
std::string_view KindWord(TKvKind Kind) {
  for (int Number = 1; Number < DSPValueTypeCount; ++Number)
    if (const auto Type = static_cast<TDSPValueType>(Number); Kind != TKvKind::Null && KindOfType(Type) == Kind)
      return TypeWord(Type);
  return "null";
}

/// Behind the "=".
void AppendValue(std::string& Out, const TDSPNode& Node, const std::string& Indent) {
  const TKvKind Kind = Node.Value().Kind();
  if (Kind == TKvKind::Bytes) {
    Out += ' ';
    return AppendHexBytes(Out, Node.Value().AsText());
  }
  const std::string Text = Printable(Node.GetAsString());
  if (!IsTextKind(Kind)) {
    Out += " " + Text;
  } else if (Text.find('\n') == std::string::npos) {
    Out += " '" + Text + "'";
  } else {
    for (std::size_t At = 0; At <= Text.size();) {
      const std::size_t End = std::min(Text.find('\n', At), Text.size());
      Out.append("\n").append(Indent).append("  | ").append(Text, At, End - At);
      At = End + 1;
    }
  }
}

void AppendNode(std::string& Out, const TDSPNode& Node, std::size_t Level) {
  const std::string Indent(2 * Level, ' ');
  Out += Indent + OnOneLine(Node.Name());
  const TDSPValueType Type = Node.ValueType();
  if (Type != TDSPValueType::None) Out.append(": ").append(TypeWord(Type));
  if (Type != TDSPValueType::None && Type != TDSPValueType::Deleted) {
    if (Type == TDSPValueType::Variant) Out.append(" ").append(KindWord(Node.Value().Kind()));
    if (!Node.Value().IsNull()) AppendValue(Out += " =", Node, Indent);
  }
  Out += '\n';
}

TJson ValueJson(const TDSPNode& Node) {
  const TKvVariant& Value = Node.Value();
  switch (const TKvKind Kind = Value.Kind()) {
    case TKvKind::Null:
      return {};
    case TKvKind::UInt64:
      return Value.AsUnsigned();
    case TKvKind::Double:
    case TKvKind::Extended:
      return std::isfinite(Value.AsReal()) ? TJson(Value.AsReal()) : TJson(Str(Value.AsReal()));
    case TKvKind::Boolean:
    case TKvKind::WordBool:
      return Value.AsBoolean();
    case TKvKind::Bytes: {
      std::string Digits;
      AppendHex(Digits, Value.AsText());
      return Digits;
    }
    default:
      return IsIntegerKind(Kind) ? TJson(Value.AsInteger()) : TJson(Node.GetAsString());
  }
}

TJson NodesJson(TDSPNode& Parent, int Level) {
  TJson Result = TJson::array();
  if (Parent.GetCount() > 0 && Level == DeepestJson)
    throw EDSPError(
        Format("The tree has more than %d levels, too many for --json; without it the tree is shown", DeepestJson));
  Parent.Sort();
  for (int Index = 0; Index < Parent.GetCount(); ++Index) {
    TDSPNode& Node = Parent.GetNodes(Index);
    TJson Entry;
    Entry["name"] = Node.Name();
    Entry["type"] = Node.HasValue() ? TJson(TypeWord(Node.ValueType())) : TJson();
    Entry["value"] = ValueJson(Node);
    if (Node.ValueType() == TDSPValueType::Variant)
      Entry["value"] = {{"kind", KindWord(Node.Value().Kind())}, {"value", ValueJson(Node)}};
    Entry["nodes"] = NodesJson(Node, Level + 1);
    Result.push_back(std::move(Entry));
  }
  return Result;
}

}  // namespace

std::string OnOneLine(std::string_view Text) {
  std::string Result;
  for (const char C : Printable(Text)) Result += C == '\n' ? "\\x0A" : std::string(1, C);
  return Result;
}

void WriteTreeText(TDSPNode& Root, const std::function<void(std::string_view Lines)>& Write) {
  std::string Lines;
  std::vector<std::pair<TDSPNode*, int>> Way = {{&Root, 0}};  // each with the child to come next
  Root.Sort();
  while (!Way.empty()) {
    auto& [Parent, Next] = Way.back();
    if (Next == Parent->GetCount()) {
      Way.pop_back();
      continue;
    }
    TDSPNode& Node = Parent->GetNodes(Next++);
    AppendNode(Lines, Node, Way.size() - 1);
    if (Lines.size() >= BytesAtOnce) {
      Write(Lines);
      Lines.clear();
    }
    Node.Sort();
    Way.emplace_back(&Node, 0);
  }
  Write(Lines);
}

TJson TreeJson(TDSPNode& Root) { return NodesJson(Root, 0); }

}  // namespace velkrund

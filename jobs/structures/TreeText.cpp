#include "jobs/structures/TreeText.h"

#include <cmath>
#include <utility>
#include <vector>

#include "velkrund/dsp/NodeTexts.h"
#include "velkrund/dsp/NodeValueParts.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund {

namespace {

constexpr std::size_t BytesAtOnce = 64 * 1024;
// Two levels of the document each, which writers and many readers go down by calling themselves.
constexpr int DeepestDocument = 1000;

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

void SetValue(TDocument& Target, std::string_view Name, const TDSPNode& Node) {
  const TKvVariant& Value = Node.Value();
  switch (const TKvKind Kind = Value.Kind()) {
    case TKvKind::Null:
      Target.SetNull(Name);
      return;
    case TKvKind::UInt64:
      Target.Set(Name, Value.AsUnsigned());
      return;
    case TKvKind::Double:
    case TKvKind::Extended:
      if (std::isfinite(Value.AsReal()))
        Target.Set(Name, Value.AsReal());
      else
        Target.Set(Name, Str(Value.AsReal()));
      return;
    case TKvKind::Boolean:
    case TKvKind::WordBool:
      Target.Set(Name, Value.AsBoolean());
      return;
    case TKvKind::Bytes: {
      std::string Digits;
      AppendHex(Digits, Value.AsText());
      Target.Set(Name, Digits);
      return;
    }
    default:
      if (IsIntegerKind(Kind))
        Target.Set(Name, Value.AsInteger());
      else
        Target.Set(Name, Node.GetAsString());
  }
}

TDocument NodesDocument(TDSPNode& Parent, int Level) {
  TDocument Result = TDocument::List();
  if (Parent.GetCount() > 0 && Level == DeepestDocument)
    throw EDSPError(
        Format("The tree has more than %d levels, too many for a document; as text it can be shown", DeepestDocument));
  Parent.Sort();
  for (int Index = 0; Index < Parent.GetCount(); ++Index) {
    TDSPNode& Node = Parent.GetNodes(Index);
    TDocument Entry;
    Entry.Set("name", Node.Name());
    if (Node.HasValue()) Entry.Set("type", TypeWord(Node.ValueType()));
    if (Node.ValueType() == TDSPValueType::Variant) {
      TDocument Variant;
      Variant.Set("kind", KindWord(Node.Value().Kind()));
      SetValue(Variant, "value", Node);
      Entry.Set("value", std::move(Variant));
    } else if (Node.HasValue() && Node.ValueType() != TDSPValueType::Deleted) {
      SetValue(Entry, "value", Node);
    }
    Entry.Set("nodes", NodesDocument(Node, Level + 1));
    Result.Add(std::move(Entry));
  }
  return Result;
}

}  // namespace

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

TDocument TreeDocument(TDSPNode& Root) { return NodesDocument(Root, 0); }

}  // namespace velkrund

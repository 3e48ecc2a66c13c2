#include "jobs/structures/TreeText.h"

#include <utility>
#include <vector>

#include "velkrund/dsp/NodeTexts.h"
#include "velkrund/dsp/NodeValueParts.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund {

namespace {

constexpr std::size_t BytesAtOnce = 64 * 1024;

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

TDocument NodesDocument(TDSPNode& Parent, int Level) {
  TDocument Result = TDocument::List();
  if (Parent.GetCount() > 0 && Level == DSPDeepestTree)
    throw EDSPError(
        Format("The tree has more than %d levels, too many for a document; as text it can be shown", DSPDeepestTree));
  Parent.Sort();
  for (int Index = 0; Index < Parent.GetCount(); ++Index) {
    TDSPNode& Node = Parent.GetNodes(Index);
    TDocument Entry;
    Entry.Set("name", Node.Name());
    if (Node.HasValue()) Entry.Set("type", TypeWord(Node.ValueType()));
    if (Node.ValueType() == TDSPValueType::Variant) {
      TDocument Variant;
      Variant.Set("kind", KindWord(Node.Value().Kind()));
      Variant.Set("value", TDocument::Value(Node.Value()));
      Entry.Set("value", std::move(Variant));
    } else if (Node.HasValue() && Node.ValueType() != TDSPValueType::Deleted) {
      Entry.Set("value", TDocument::Value(Node.Value()));
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

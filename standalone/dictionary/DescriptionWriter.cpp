#include "standalone/dictionary/DescriptionWriter.h"

#include <utility>

#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund {
namespace {

bool IsNodeWord(std::string_view Name) {
  return !Name.empty() &&
         std::ranges::all_of(Name, [](char C) { return (C >= 'A' && C <= 'Z') || (C >= 'a' && C <= 'z'); });
}

}  // namespace

void TDescriptionWriter::SetText(TDSPNode& Node, std::string_view Text) {
  TKvVariant Value;
  Value.SetText(Text);
  Node.SetValueType(TDSPValueType::String);
  Node.SetValue(std::move(Value));
}

void TDescriptionWriter::SetNumber(TDSPNode& Node, int Number) {
  TKvVariant Value;
  Value.SetInteger(Number, TKvKind::Integer);
  Node.SetValueType(TDSPValueType::Integer);
  Node.SetValue(std::move(Value));
}

void TDescriptionWriter::Layout(int Number) { SetNumber(FNode.AddNode("Layout"), Number); }

void TDescriptionWriter::Text(std::string_view Node, const std::string& Value) {
  if (!Value.empty()) Name(Node, Value);
}

void TDescriptionWriter::Text(std::string_view Node, const std::optional<std::string>& Value) {
  if (Value) Name(Node, *Value);
}

void TDescriptionWriter::Number(std::string_view Node, const std::optional<int>& Value) {
  if (Value) SetNumber(FNode.AddNode(Node), *Value);
}

void TDescriptionWriter::Flag(std::string_view Node, bool Value) {
  if (!Value) return;
  TKvVariant True;
  True.SetBoolean(true);
  TDSPNode& Added = FNode.AddNode(Node);
  Added.SetValueType(TDSPValueType::Boolean);
  Added.SetValue(std::move(True));
}

void TDescriptionWriter::SetLines(TDSPNode& Node, const std::vector<std::string>& Lines) {
  SetNumber(Node, static_cast<int>(Lines.size()));
  for (const std::string& Line : Lines) SetText(Node.AddNode(LineNode), Line);
}

void TDescriptionWriter::AddParts(TDSPNode& Node, const TDicWords& Words, std::string_view Lines) {
  for (const auto& [Name, Part] : Words.Parts) {
    if (!IsNodeWord(Name) || Name == Lines || Name == LineNode || Name == TextNode)
      throw EDSPError(Format("An engine's words cannot have a part '%s'", Name));
    SetText(Node.AddNode(Name), Part);
  }
}

void TDescriptionWriter::EngineWords(const TDicEngineWords& Words, std::string_view Lines) {
  for (const auto& [Engine, Own] : Words) {
    TDSPNode& Node = FNode.AddNode(Engine);
    if (Own.Text) SetText(Node, *Own.Text);
    AddParts(Node, Own, Lines);
    if (!Own.Lines.empty()) SetLines(Node.AddNode(Lines), Own.Lines);
  }
}

void TDescriptionWriter::EngineLines(const TDicEngineWords& Words) {
  for (const auto& [Engine, Own] : Words) {
    TDSPNode& Node = FNode.AddNode(Engine);
    SetLines(Node, Own.Lines);
    AddParts(Node, Own, LineNode);
    if (Own.Text) SetText(Node.AddNode(TextNode), *Own.Text);
  }
}

}  // namespace velkrund

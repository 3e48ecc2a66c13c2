#include "standalone/dictionary/DescriptionReader.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund {
namespace {

/// The names down to the node; the numbers of those that have namesakes, from 1, behind theirs.
std::string PathOf(const TDSPNode& Node) {
  std::string Path;
  for (const TDSPNode* At = &Node; At->Parent(); At = At->Parent()) {
    int Number = 0, Namesakes = 0;
    for (int I = 0; I < At->Parent()->GetCount(); ++I) {
      const TDSPNode& Sibling = At->Parent()->GetNodes(I);
      if (SameText(Sibling.Name(), At->Name())) ++Namesakes;
      if (&Sibling == At) Number = Namesakes;
    }
    std::string Name = At->Name();
    if (Namesakes > 1) Name += Format("[%d]", Number);
    if (!Path.empty()) Name += DSPNameSeparator;
    Path.insert(0, Name);
  }
  return Path;
}

[[noreturn]] void Fail(const TDSPNode& Node, std::string_view Why) {
  throw EDSPError(Node.Parent() ? Format("Node '%s' %s", PathOf(Node), Why) : Format("The tree %s", Why));
}

}  // namespace

bool TDescriptionReader::IsNamed(const TDSPNode& Node, std::string_view Name) { return SameText(Node.Name(), Name); }

std::string TDescriptionReader::TextOf(const TDSPNode& Node) {
  if (Node.ValueType() != TDSPValueType::String) Fail(Node, "should have a value of type string");
  return Node.GetAsString();
}

int TDescriptionReader::NumberOf(const TDSPNode& Node) {
  if (Node.ValueType() != TDSPValueType::Integer) Fail(Node, "should have a value of type integer");
  return static_cast<int>(Node.Value().AsInteger());
}

std::size_t TDescriptionReader::IndexOfWord(const TDSPNode& Node, std::span<const std::string_view> Words) {
  const std::string Word = TextOf(Node);
  const auto Found = std::ranges::find(Words, Word);
  if (Word.empty() || Found == Words.end()) Fail(Node, Format("has the unknown word '%s'", Word));
  return static_cast<std::size_t>(Found - Words.begin());
}

std::size_t TDescriptionReader::CheckedCount(const TDSPNode& List, const std::vector<std::string_view>& Names) {
  const int Count = NumberOf(List);
  for (int I = 0; I < List.GetCount(); ++I) {
    const TDSPNode& Node = List.GetNodes(I);
    if (std::ranges::none_of(Names, [&](std::string_view Name) { return IsNamed(Node, Name); }))
      Fail(Node, "is none that a description has there");
  }
  if (Count != List.GetCount()) Fail(List, Format("says %d, and there are %d below it", Count, List.GetCount()));
  return static_cast<std::size_t>(Count);
}

std::vector<std::string> TDescriptionReader::LinesOf(const TDSPNode& List) {
  std::vector<std::string> Lines;
  for (int I = 0; I < List.GetCount(); ++I) {
    const TDSPNode& Node = List.GetNodes(I);
    if (!IsNamed(Node, LineNode)) continue;
    Lines.push_back(TextOf(Node));
    TDescriptionReader(Node).Finish();
  }
  const int Count = NumberOf(List);
  if (Count != static_cast<int>(Lines.size())) Fail(List, Format("says %d, and has %d lines", Count, Lines.size()));
  return Lines;
}

const TDSPNode* TDescriptionReader::Take(std::string_view Name) {
  const TDSPNode* Found = nullptr;
  for (std::size_t I = 0; I < FRead.size(); ++I) {
    const TDSPNode& Node = FNode.GetNodes(static_cast<int>(I));
    if (!IsNamed(Node, Name)) continue;
    if (Found) Fail(Node, "is there more than once");
    Found = &Node;
    FRead[I] = true;
  }
  return Found;
}

const TDSPNode* TDescriptionReader::TakeLeaf(std::string_view Name) {
  const TDSPNode* const Found = Take(Name);
  if (Found) TDescriptionReader(*Found).Finish();
  return Found;
}

const TDSPNode& TDescriptionReader::Needed(std::string_view Name) {
  const TDSPNode* const Found = TakeLeaf(Name);
  if (!Found) Fail(FNode, Format("lacks the node '%s'", Name));
  return *Found;
}

void TDescriptionReader::Layout(int Number) {
  const TDSPNode& Node = Needed("Layout");
  const int Found = NumberOf(Node);
  if (Found > Number)
    Fail(
        Node,
        Format("says that the structure is of layout %d, which is newer than this program (it knows layout %d): take a "
               "newer version of the program, or describe the object again with this one",
               Found, Number));
  if (Found < 1) Fail(Node, Format("has the unknown number %d", Found));
}

void TDescriptionReader::Text(std::string_view Node, std::string& Value) {
  if (const TDSPNode* const Found = TakeLeaf(Node)) Value = TextOf(*Found);
}

void TDescriptionReader::Text(std::string_view Node, std::optional<std::string>& Value) {
  if (const TDSPNode* const Found = TakeLeaf(Node)) Value = TextOf(*Found);
}

void TDescriptionReader::Number(std::string_view Node, std::optional<int>& Value) {
  if (const TDSPNode* const Found = TakeLeaf(Node)) Value = NumberOf(*Found);
}

void TDescriptionReader::Flag(std::string_view Node, bool& Value) {
  const TDSPNode* const Found = TakeLeaf(Node);
  if (!Found) return;
  if (Found->ValueType() != TDSPValueType::Boolean) Fail(*Found, "should have a value of type boolean");
  Value = Found->Value().AsBoolean();
}

void TDescriptionReader::TakeParts(TDicWords& Words) {
  for (std::size_t I = 0; I < FRead.size(); ++I) {
    const TDSPNode& Node = FNode.GetNodes(static_cast<int>(I));
    if (FRead[I]) continue;
    if (!Words.Parts.emplace(Node.Name(), TextOf(Node)).second) Fail(Node, "is there more than once");
    TDescriptionReader(Node).Finish();
    FRead[I] = true;
  }
}

void TDescriptionReader::EngineWords(TDicEngineWords& Words, std::string_view Lines) {
  for (const std::string_view Engine : EngineNames) {
    const TDSPNode* const Node = Take(Engine);
    if (!Node) continue;
    TDicWords& Own = Words[std::string(Engine)];
    if (Node->HasValue()) Own.Text = TextOf(*Node);
    TDescriptionReader Reader(*Node);
    if (const TDSPNode* const List = Reader.Take(Lines)) {
      CheckedCount(*List, {LineNode});
      Own.Lines = LinesOf(*List);
    }
    Reader.TakeParts(Own);
  }
}

void TDescriptionReader::EngineLines(TDicEngineWords& Words) {
  for (const std::string_view Engine : EngineNames) {
    const TDSPNode* const Node = Take(Engine);
    if (!Node) continue;
    TDicWords& Own = Words[std::string(Engine)];
    Own.Lines = LinesOf(*Node);
    TDescriptionReader Reader(*Node);
    for (std::size_t I = 0; I < Reader.FRead.size(); ++I)
      Reader.FRead[I] = IsNamed(Node->GetNodes(static_cast<int>(I)), LineNode);
    Reader.Text(TextNode, Own.Text);
    Reader.TakeParts(Own);
  }
}

void TDescriptionReader::Finish() const {
  for (std::size_t I = 0; I < FRead.size(); ++I)
    if (!FRead[I]) Fail(FNode.GetNodes(static_cast<int>(I)), "is none that a description has there");
}

}  // namespace velkrund

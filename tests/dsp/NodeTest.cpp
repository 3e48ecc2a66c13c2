#include <gtest/gtest.h>

#include "tests/dsp/DSPFixture.h"

namespace velkrund::tests {
namespace {

TEST(DSPNode, TreesAreAsDeepAndAsWideAsMemoryAllows) {
  constexpr int Count = 100'000;
  for (const bool Deep : {true, false}) {
    TDSPNode Tree("root");
    TDSPNode* At = &Tree;
    for (int Index = 0; Index < Count; ++Index) {
      TDSPNode& Node = At->AddNode("n");
      if (Deep) At = &Node;
    }
    Add(*At, "gone", TDSPValueType::Deleted);
    TDSPNode Copy;
    Copy.Assign(Tree);
    Copy.SetName("root");
    TDSPNode Moved(std::move(Copy));
    EXPECT_TRUE(Moved == Tree);
    EXPECT_EQ(Copy.GetCount(), 0);
    EXPECT_EQ(Moved.GetNodes(0).Parent(), &Moved);
    Moved.EraseDeleted();
    EXPECT_FALSE(Moved == Tree);
    EXPECT_EQ(At->GetNodes(At->GetCount() - 1).GetFullName().size(), Deep ? 2u * Count + 4 : 4);
    Moved = TDSPNode();
    EXPECT_EQ(Moved.GetCount(), 0);
    Tree.Clear();
  }
}

TEST(DSPNode, AssigningAPartOfItself) {
  TDSPNode Tree;
  TDSPNode& A = Tree.AddNode("A");
  Add(A.AddNode("B"), "C", TDSPValueType::Integer, Int(1));
  A.Assign(A.GetNodes(0));
  EXPECT_EQ(A.GetNodes(0).GetFullName(), "A\\C");
  Tree = std::move(A);
  EXPECT_EQ(Tree.Name(), "A");
  EXPECT_EQ(Tree.GetNodes(0).GetFullName(), "C");
  EXPECT_THROW(Tree.GetNodes(1), EListError);
}

TEST(DSPNode, NamesIgnoreCaseAndSortByCodeWithinIt) {
  TDSPNode Tree;
  for (const char* Name : {"b", "я", "B", "A", "Ж", "a", "b"}) Tree.AddNode(Name);
  Tree.GetNodes(0).SetValueType(TDSPValueType::Byte);
  Tree.Sort();
  std::string Names;
  for (int Index = 0; Index < Tree.GetCount(); ++Index) Names += Tree.GetNodes(Index).Name();
  EXPECT_EQ(Names, "AaBbbЖя");
  EXPECT_TRUE(Tree.GetNodes(3).HasValue()) << "equal names keep their order";
  EXPECT_EQ(Tree.FindNode("ж"), &Tree.GetNodes(5));
  EXPECT_EQ(Tree.FindNode("b"), &Tree.GetNodes(2));
  EXPECT_EQ(Tree.FindNode("c"), nullptr);
  EXPECT_EQ(Tree.GetIndexOf(Tree.GetNodes(4)), 4);
  EXPECT_EQ(Tree.GetIndexOf(Tree), -1);
}

TEST(DSPNode, ValuesFitTheirTypes) {
  TDSPNode Node("n");
  const struct {
    TDSPValueType Type;
    TKvVariant Value;
    bool Fits;
  } Cases[] = {
      {TDSPValueType::Integer, Int(1, TKvKind::Int64), false},
      {TDSPValueType::Integer, Int(1), true},
      {TDSPValueType::None, Int(1), false},
      {TDSPValueType::Variant, {}, true},
      {TDSPValueType::Char, Text("Ж", TKvKind::Char), true},
      {TDSPValueType::Char, Text("😀", TKvKind::Char), false},
      {TDSPValueType::Variant, Text("ab", TKvKind::Char), false},
      {TDSPValueType::AnsiChar, Text("", TKvKind::AnsiChar), false},
  };
  for (const auto& Case : Cases) {
    Node.SetValueType(Case.Type);
    const std::string Error = ErrorOf([&] { Node.SetValue(Case.Value); });
    EXPECT_EQ(Error == "no error", Case.Fits) << Error;
  }
  for (int Type = 0; Type < DSPValueTypeCount; ++Type) {
    Node.SetValueType(static_cast<TDSPValueType>(Type));
    EXPECT_TRUE(FitsType(Node.ValueType(), Node.Value())) << "the zero of type " << Type;
  }
}

}  // namespace
}  // namespace velkrund::tests

// Descriptions as trees, and as the sections of files.

#include "standalone/dictionary/Layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "tests/dsp/DSPFixture.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund::tests {
namespace {

/// Descriptions with something in every place, now and then.
class TRandomDescriptions {
 public:
  /// Ansi: letters of the code page only, as the older sections have them.
  TRandomDescriptions(unsigned Seed, bool Ansi) : FRandom(Seed), FPieces(Ansi ? 14 : 15) {}

  TDicTableDescription Table() {
    TDicTableDescription Table;
    Object(Table);
    Fill(Table.Fields, [&](TDicField& F) {
      F = {.Name = Text(), .Type = Type(), .Size = Number(), .Scale = Number(), .NotNull = Yes(), .Comment = Text()};
      F.Default = Maybe(), F.Computed = Maybe(), F.Stored = Yes(), F.Words = Words();
      F.Auto = static_cast<TDicAutoKey>(Below(4)), F.Counter = Counter(), F.Owned = Text();
    });
    Fill(Table.Keys, [&](TDicKey& K) { K = {Text(), false, Columns(), Deferrable(), Words()}; });
    if (!Table.Keys.empty()) Table.Keys.front().Primary = Yes();
    Table.Indexes = Indexes();
    Fill(Table.ForeignKeys, [&](TDicForeignKey& K) {
      K = {.Name = Text(), .Table = Text(), .Schema = Text(), .MatchFull = Yes()};
      Fill(K.Columns, [&](TDicForeignKey::TPair& Pair) { Pair = {Text(), Text()}; });
      K.OnDelete = static_cast<TDicKeyAction>(Below(5)), K.OnUpdate = static_cast<TDicKeyAction>(Below(5));
      K.Deferrable = Deferrable(), K.NotChecked = Yes(), K.Words = Words();
    });
    Fill(Table.Checks, [&](TDicCheck& C) { C = {Text(), Maybe(), Words()}; });
    Table.Triggers = Triggers();
    Table.Words = Words();
    return Table;
  }
  TDicViewDescription View() {
    TDicViewDescription View;
    Object(View);
    Fill(View.Columns, [&](std::string& Column) { Column = Text(); });
    View.Materialized = Yes(), View.Indexes = Indexes(), View.Triggers = Triggers(), View.Words = Words();
    return View;
  }
  TDicProcedureDescription Procedure() {
    TDicProcedureDescription Procedure;
    Object(Procedure);
    Procedure.Selects = Yes(), Procedure.Language = Text(), Procedure.Words = Words();
    for (auto* const List : {&Procedure.Parameters, &Procedure.Result})
      Fill(*List, [&](TDicParameter& P) {
        P = {Text(), static_cast<TDicParameterMode>(Below(3)), Type(), Number(), Number(), Maybe(), Words()};
      });
    return Procedure;
  }
  TDicGeneratorDescription Generator() {
    TDicGeneratorDescription Generator;
    Object(Generator);
    Generator.Counter = Counter(), Generator.Cache = Maybe(), Generator.Words = Words();
    return Generator;
  }

 private:
  void Object(TDicObjectDescription& Object) { Object = {Text(), Text(), Text()}; }
  TDicFieldType Type() {
    const int Number = Below(23);
    return static_cast<TDicFieldType>(Number == AutoKeyFieldType ? 0 : Number);
  }
  TDicCounter Counter() { return {Maybe(), Maybe(), Maybe(), Maybe(), Yes()}; }
  TDicDeferrable Deferrable() { return static_cast<TDicDeferrable>(Below(3)); }
  std::vector<TDicColumn> Columns() {
    std::vector<TDicColumn> List;
    Fill(List, [&](TDicColumn& Column) { Column = {Text(), Yes(), Yes()}; });
    return List;
  }
  std::vector<TDicIndex> Indexes() {
    std::vector<TDicIndex> List;
    Fill(List, [&](TDicIndex& Index) { Index = {Text(), Yes(), Columns(), Words()}; });
    return List;
  }
  std::vector<TDicTrigger> Triggers() {
    std::vector<TDicTrigger> List;
    static const char* const States[] = {"", "Disabled", "Replica", "Always"};
    Fill(List, [&](TDicTrigger& Trigger) { Trigger = {Text(), States[Below(4)], Words()}; });
    return List;
  }
  TDicEngineWords Words() {
    TDicEngineWords All;
    for (const char* const Engine : {"sqlite", "postgresql", "odbc"}) {
      if (Below(3)) continue;
      TDicWords& Own = All[Engine];
      Own.Text = Maybe();
      for (const char* const Part : {"Default", "Check", "Options"})
        if (!Below(3)) Own.Parts[Part] = Text();
      Fill(Own.Lines, [&](std::string& Line) { Line = Text(); });
    }
    return All;
  }

  template <typename T, typename TFill>
  void Fill(std::vector<T>& List, TFill Make) {
    List.resize(static_cast<std::size_t>(Below(4)));
    for (T& Item : List) Make(Item);
  }
  bool Yes() { return Below(2) == 0; }
  std::optional<int> Number() { return Yes() ? std::optional(Below(100)) : std::nullopt; }
  std::optional<std::string> Maybe() { return Yes() ? std::optional(Text()) : std::nullopt; }
  std::string Text() {
    static const char* const Pieces[] = {"a",  "Ж",  " ",  "#", "'", "\"", "\\", ":",
                                         "\t", "\r", "\n", "@", "=", ")",  "😀"};
    std::string Result;
    for (int Count = Below(4); Count > 0; --Count) Result += Pieces[Below(FPieces)];
    return Result;
  }
  int Below(int Limit) { return static_cast<int>(FRandom() % static_cast<unsigned>(Limit)); }

  std::mt19937 FRandom;
  int FPieces;
};

void Shuffle(TDSPNode& Node, std::mt19937& Random) {
  // Different names in another order, namesakes in theirs.
  std::vector<std::string> Names;
  for (int I = 0; I < Node.GetCount(); ++I)
    if (std::ranges::find(Names, Node.GetNodes(I).Name()) == Names.end()) Names.push_back(Node.GetNodes(I).Name());
  std::ranges::shuffle(Names, Random);
  const int Count = Node.GetCount();
  for (const std::string& Name : Names)
    for (int I = 0; I < Count; ++I)
      if (Node.GetNodes(I).Name() == Name) Node.AddNode(Name).Assign(Node.GetNodes(I));
  Node.DeleteNodes(std::vector<bool>(static_cast<std::size_t>(Count), true));
  for (int I = 0; I < Node.GetCount(); ++I) Shuffle(Node.GetNodes(I), Random);
}

class LayoutTest : public testing::Test {
 protected:
  /// What a file makes of the tree.
  const TDSPNode& ThroughFile(const TDSPNode& Tree, bool Old) {
    Platform.Structures.Stored.clear();
    Platform.Structures.Get("S", 12).Tree.Assign(Tree);
    const std::string Body = Export(*EitherSection(Old));
    Platform.Structures.Stored.clear();
    Import(*EitherSection(Old), Body);
    return Platform.Structures.Get("S", 12).Tree;
  }
  template <typename T, typename TRead>
  void ComesBack(const T& Description, TRead Read, bool Old, std::mt19937& Random) {
    TDSPNode Tree;
    Tree.AddNode("what was there");
    WriteTree(Description, Tree);
    EXPECT_TRUE(Read(Tree) == Description);
    EXPECT_TRUE(Read(ThroughFile(Tree, Old)) == Description);
    Shuffle(Tree, Random);
    EXPECT_TRUE(Read(Tree) == Description);
  }

  TDSPPlatform Platform;
};

TEST_F(LayoutTest, DescriptionsComeBackFromTreesAndFiles) {
  std::mt19937 Random(1);
  for (unsigned Seed = 0; Seed < 200 && !HasFailure(); ++Seed) {
    SCOPED_TRACE(Seed);
    const bool Old = Seed % 2;
    TRandomDescriptions Descriptions(Seed, Old);
    ComesBack(Descriptions.Table(), ReadTable, Old, Random);
    ComesBack(Descriptions.View(), ReadView, Old, Random);
    ComesBack(Descriptions.Generator(), ReadGenerator, Old, Random);
    const TDicProcedureDescription Procedure = Descriptions.Procedure();
    ComesBack(
        Procedure, [&](const TDSPNode& Tree) { return ReadProcedure(Tree, Procedure.Selects); }, Old, Random);
  }
}

/// Something in every place.
TDicTableDescription Full() {
  const TDicEngineWords Words = {{"sqlite", {"x", {{"Default", "1"}}, {"l"}}}};
  TDicTableDescription Table;
  Table.Name = "T", Table.Schema = "s", Table.Comment = "c", Table.Words = Words;
  Table.Fields = {{.Name = "a", .Type = TDicFieldType::Int64, .Auto = TDicAutoKey::Always, .Counter = {"1"}},
                  {.Name = "b",
                   .Type = TDicFieldType::Decimal,
                   .Size = 5,
                   .Scale = 2,
                   .NotNull = true,
                   .Default = "0",
                   .Words = Words}};
  Table.Keys = {{"", true, {{"a"}}}, {"u", false, {{"b", false, true}}, TDicDeferrable::Deferred, Words}};
  Table.Indexes = {{"i", true, {{"LOWER(b)", true}}, Words}};
  Table.ForeignKeys = {{.Name = "f", .Table = "t", .Columns = {{"a", "b"}}, .OnDelete = TDicKeyAction::SetNull}};
  Table.ForeignKeys[0].MatchFull = Table.ForeignKeys[0].NotChecked = true;
  Table.Checks = {{"c", "TRUE", Words}};
  Table.Triggers = {{"g", "Disabled", {{"sqlite", {{}, {}, {"1", "2"}}}}}};
  return Table;
}

void ForEach(TDSPNode& Node, const std::function<void(TDSPNode&)>& Action) {
  Action(Node);
  for (int I = 0; I < Node.GetCount(); ++I) ForEach(Node.GetNodes(I), Action);
}

/// The error of the full tree after Damage was done to the node of that number in it, whose name it puts in Name; empty
/// behind the last one.
std::string ErrorOfDamaged(int Number, std::string& Name, const std::function<bool(TDSPNode&)>& Damage) {
  TDSPNode Tree;
  WriteTree(Full(), Tree);
  TDSPNode* Found = nullptr;
  ForEach(Tree, [&](TDSPNode& Node) {
    if (Number-- == 0) Found = &Node;
  });
  if (!Found) return {};
  Name = Found->Name();
  if (!Damage(*Found)) return "not damaged";
  return ErrorOf([&] { ReadTable(Tree); });
}

TEST_F(LayoutTest, DamageIsAnErrorThatNamesTheNode) {
  const std::vector<std::pair<std::string, std::function<bool(TDSPNode&)>>> Damages = {
      {"another node", [](TDSPNode& Node) { return Node.AddNode("Foo"), true; }},
      {"another type",
       [](TDSPNode& Node) { return Node.HasValue() && (Node.SetValueType(TDSPValueType::Double), true); }},
      {"no value", [](TDSPNode& Node) { return Node.HasValue() && (Node.SetValueType(TDSPValueType::None), true); }},
      {"twice",
       [](TDSPNode& Node) { return Node.Parent() && (Node.Parent()->AddNode(Node.Name()).Assign(Node), true); }},
      {"another number",
       [](TDSPNode& Node) {
         if (Node.ValueType() != TDSPValueType::Integer || Node.GetCount() == 0) return false;
         return Node.SetValue(Int(Node.GetCount() + 1)), true;
       }},
  };
  for (const auto& [What, Damage] : Damages) {
    int Damaged = 0;
    std::string Name;
    for (int Number = 0;; ++Number) {
      const std::string Error = ErrorOfDamaged(Number, Name, Damage);
      if (Error.empty()) break;
      if (Error == "not damaged") continue;
      ++Damaged;
      // The words of an engine may lack a text.
      if (What == "no value" && Name == "sqlite" && Error == "no error") continue;
      EXPECT_TRUE(Error.starts_with("EDSPError: Node '")) << What << ": " << Name << ": " << Error;
      const std::string Named = What == "another node" ? "Foo" : Name;
      EXPECT_TRUE(Error.find(Named) != std::string::npos || What == "twice") << What << ": " << Name << ": " << Error;
    }
    EXPECT_GT(Damaged, 8) << What;
  }
}

TEST_F(LayoutTest, ErrorsSayWhereAndWhatToDo) {
  const auto Error = [](const std::function<void(TDSPNode&)>& Damage) {
    TDSPNode Tree;
    WriteTree(Full(), Tree);
    Damage(Tree);
    return ErrorOf([&] { ReadTable(Tree); });
  };
  const auto Fields = [](TDSPNode& Tree) -> TDSPNode& { return *Tree.FindNode("Fields"); };
  EXPECT_EQ(Error([&](TDSPNode& Tree) { Fields(Tree).GetNodes(1).FindNode("Type")->SetValue(Text("Foo")); }),
            R"(EDSPError: Node 'Fields\Field[2]\Type' has the unknown word 'Foo')");
  EXPECT_EQ(Error([&](TDSPNode& Tree) { Fields(Tree).DeleteNode(0); }),
            "EDSPError: Node 'Fields' says 2, and there are 1 below it");
  EXPECT_EQ(Error([&](TDSPNode& Tree) { Fields(Tree).GetNodes(0).DeleteNode(0); }),
            R"(EDSPError: Node 'Fields\Field[1]' lacks the node 'Type')");
  EXPECT_EQ(Error([&](TDSPNode& Tree) { Tree.FindNode("Triggers")->GetNodes(0).FindNode("sqlite")->DeleteNode(0); }),
            R"(EDSPError: Node 'Triggers\Trigger\sqlite' says 2, and has 1 lines)");
  EXPECT_EQ(Error([&](TDSPNode& Tree) { Tree.Clear(); }), "EDSPError: The tree lacks the node 'Layout'");
  EXPECT_EQ(
      Error([&](TDSPNode& Tree) { Tree.FindNode("Layout")->SetValue(Int(2)); }),
      "EDSPError: Node 'Layout' says that the structure is of layout 2, which is newer than this program (it knows "
      "layout 1): take a newer version of the program, or describe the object again with this one");
}

TEST_F(LayoutTest, WhatIsAsUsualIsNotWritten) {
  TDSPNode Tree;
  TDicTableDescription Table;
  Table.Name = "T";
  Table.Fields = {{.Name = "a", .Type = TDicFieldType::Any}};
  WriteTree(Table, Tree);
  Platform.Structures.Get("S", 12).Tree.Assign(Tree);
  std::string Body = Export(*EitherSection(false));
  std::erase(Body, '\r');
  EXPECT_EQ(Body.substr(Body.find(" [TREE]\n") + 8),
            "  Fields:integer = 1\n    Field:string = 'a'\n      Type:string = 'Any'\n"
            "  Layout:integer = 1\n  Name:string = 'T'\n");
}

/// The example of docs/dictionary.md.
TDicTableDescription Example() {
  TDicTableDescription Table;
  Table.Name = "ORDERS", Table.Comment = "one line for each order";
  Table.Fields = {
      {.Name = "ID",
       .Type = TDicFieldType::Int32,
       .NotNull = true,
       .Auto = TDicAutoKey::ByDefault,
       .Counter = {.Start = "1000"},
       .Words = {{"postgresql", {"integer"}}, {"sqlite", {"INTEGER", {{"Made", "Int64 NOT NULL AUTO RowNumber"}}}}}},
      {.Name = "CLIENT", .Type = TDicFieldType::String, .Size = 20, .NotNull = true},
      {.Name = "STATE",
       .Type = TDicFieldType::String,
       .Default = "'new'",
       .Words = {{"postgresql", {"order_state", {}, {"new", "paid"}}}}},
  };
  Table.Keys = {{"", true, {{"ID"}}, {}, {{"sqlite", {"AUTOINCREMENT"}}}}};
  Table.Indexes = {{"ORDERS_CLIENT", false, {{"CLIENT"}, {"ID", false, true}}}};
  Table.ForeignKeys = {{.Table = "CLIENTS", .Columns = {{"CLIENT", "NAME"}}, .OnDelete = TDicKeyAction::Cascade}};
  Table.Checks = {{"", R"("CLIENT" <> '')"}};
  Table.Triggers = {{"LOG", "", {{"sqlite", {{}, {}, {"CREATE TRIGGER LOG AFTER INSERT ON ORDERS", "BEGIN", "END"}}}}}};
  return Table;
}

TEST_F(LayoutTest, TheExampleOfThePageIsWhatIsWrittenAndRead) {
  std::ifstream Page(VELKRUND_SOURCE_DIR "/docs/dictionary.md");
  std::string Shown;
  for (std::string Line; std::getline(Page, Line);) {
    if (Line.starts_with("     [TREE]"))
      Shown = " [TREE]\n";
    else if (!Shown.empty() && !Line.starts_with("    "))
      break;
    else if (!Shown.empty())
      Shown += Line.substr(4) + '\n';
  }
  WriteTree(Example(), Platform.Structures.Get("S", 12).Tree);
  std::string Written = Export(*EitherSection(false));
  std::erase(Written, '\r');
  ASSERT_EQ(Written.substr(Written.find(" [TREE]\n")), Shown);
  Platform.Structures.Stored.clear();
  Import(*EitherSection(false), Body(Shown.substr(8)));
  EXPECT_TRUE(ReadTable(Platform.Structures.Get("S", 12).Tree) == Example());
}

}  // namespace
}  // namespace velkrund::tests

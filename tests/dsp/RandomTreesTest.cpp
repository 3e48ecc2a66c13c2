#include <gtest/gtest.h>

#include <random>

#include "tests/dsp/StructureFixture.h"

namespace velkrund::tests {
namespace {

using T = TDSPValueType;

/// Trees whose names and texts are made of what lines cannot hold, or hold in more than one way.
class TRandomTrees {
 public:
  explicit TRandomTrees(unsigned Seed) : FRandom(Seed) {}

  void Fill(TDSPNode& Parent, int Depth) {
    for (int Count = Below(4); Count >= 0; --Count) {
      TDSPNode& Node = Parent.AddNode(Odd(5));
      switch (Below(6)) {
        case 0:
          Set(Node, T::String, Text(Odd(8)));
          break;
        case 1:
          Set(Node, T::AnsiString, AnsiText(Odd(8)));
          break;
        case 2:
          Set(Node, T::Variant, Below(2) ? Text(Odd(8)) : AnsiText(Odd(8)));
          break;
        default:
          break;
      }
      if (Depth > 0 && Below(2)) Fill(Node, Depth - 1);
    }
    Parent.Sort();
  }
  std::string Odd(int Length) {
    static const char* const Pieces[] = {"a",           "B",
                                         "b",           "Ж",
                                         "日",          "😀",
                                         " ",           "#",
                                         "@",           "=",
                                         "'",           ")",
                                         "\\",          "[END]",
                                         "\t",          "\r",
                                         "\n",          "\x7F",
                                         "00",          "41",
                                         "\xC2\x85",    "\xC2\x98",
                                         "\xC2\xA0",    "\xFF",
                                         ":",           "\xED\xA0\x80",
                                         "\xED\xB0\x80"};
    std::string Result;
    // Mostly harmless ones, so that many trees go through.
    for (int Count = Below(Length) + 1; Count > 0; --Count)
      Result += Pieces[Below(12) ? Below(3) : Below(static_cast<int>(std::size(Pieces)))];
    return Result;
  }

 private:
  static void Set(TDSPNode& Node, T Type, TKvVariant Value) {
    Node.SetValueType(Type);
    Node.SetValue(std::move(Value));
  }
  int Below(int Limit) { return static_cast<int>(FRandom() % static_cast<unsigned>(Limit)); }

  std::mt19937 FRandom;
};

/// Names and texts, types apart: version 100 has fewer.
std::string Shown(const TDSPNode& Node) {
  std::string Result = "(" + Node.Name();
  if (Node.HasValue()) Result += "=" + Node.GetAsString();
  for (int Index = 0; Index < Node.GetCount(); ++Index) Result += Shown(Node.GetNodes(Index));
  return Result + ")";
}

TEST_F(Structure, WhatATreeDoesNotBringBackIsAnErrorOrCounted) {
  TEIFile File(Platform.MemoryFiles);
  int Same = 0, Refused = 0, Counted = 0;
  for (unsigned Seed = 0; Seed < 6000; ++Seed) {
    const bool Old = Seed % 2, Strict = Seed / 2 % 2;
    const TKvEncoding Encoding = Seed / 4 % 2 ? TKvEncoding::Utf8 : TKvEncoding::Ansi;
    Platform.Structures.Stored.clear();
    TRandomTrees Random(Seed);
    auto& Stored = Platform.Structures.Get("S", 12);
    Random.Fill(Stored.Tree, 2);
    const auto Out = EitherSection(Old);
    if (Seed % 3 == 0) Out->Item.Remarks = Random.Odd(6);
    TMemoryStream Memory;
    TTextLosses Lost;
    TEIStream Writing(Memory, -1, &Lost);
    Writing.SetEncoding(Encoding);
    Writing.SetStrictText(Strict);
    const std::string Error = ErrorOf([&] { Out->ExportData(Writing); });
    if (Error != "no error") {
      ++Refused;
      EXPECT_TRUE(Strict || Error.find("Invalid name of node for export: ") != std::string::npos) << Error;
      continue;
    }
    EXPECT_FALSE(Strict && Lost.Any());
    const std::string Before = Shown(Stored.Tree) + Out->Item.Remarks;
    Platform.Structures.Stored.clear();
    const auto In = EitherSection(Old);
    const std::string Reading = ErrorOf([&] { Import(*In, Memory.Memory(), Encoding); });
    auto& Read = Platform.Structures.Get("S", 12);
    const bool IsSame = Reading == "no error" && Shown(Read.Tree) + Read.Item.Remarks == Before;
    ++(IsSame ? Same : Counted);
    EXPECT_TRUE(IsSame || Lost.Any()) << Seed << " " << Old << " " << Reading << "\n"
                                      << Before << "\n"
                                      << Shown(Read.Tree) + Read.Item.Remarks << "\n"
                                      << Memory.Memory();
  }
  EXPECT_GT(Same, 1000);
  EXPECT_GT(Refused, 1000);
  EXPECT_GT(Counted, 500);
}

// The error names the structure and the node, and what else there is to do.
TEST_F(Structure, ARefusedNameSaysWhereItStands) {
  TDSPNode& Parent = Add(Platform.Structures.Get("F", 12).Tree, "a");
  const struct {
    const char* Name;
    std::string Error;
  } Cases[] = {{"x#", "Readers of the file would take the name of a node"},
               {"x:", "Invalid name of node for export: x:"}};
  for (const auto& [Name, Expected] : Cases) {
    Parent.Clear();
    Add(Parent, Name);
    const auto Out = Section<TEIDSPStructure>();
    Out->Item.ObjectName = "F";
    TMemoryStream Memory;
    TEIStream Writing(Memory);
    Writing.SetStrictText(true);
    try {
      Out->ExportData(Writing);
      FAIL() << Name;
    } catch (const Exception& Error) {
      EXPECT_TRUE(std::string(Error.what()).starts_with(Expected)) << Error.what();
      EXPECT_EQ(Error.Info().Structure, "F (12)");
      EXPECT_EQ(Error.Info().Node, std::string("a\\") + Name);
    }
  }
}

}  // namespace
}  // namespace velkrund::tests

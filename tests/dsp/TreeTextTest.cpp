#include <gtest/gtest.h>

#include "tests/dsp/DSPFixture.h"
#include "tests/support/StructureSamples.h"

namespace velkrund::tests {
namespace {

using T = TDSPValueType;

constexpr TKvEncoding Utf8 = TKvEncoding::Utf8, Ansi = TKvEncoding::Ansi;

class TreeText : public testing::Test {
 protected:
  TDSPNode& Stored() { return Platform.Structures.Get("S", 12).Tree; }

  /// The tree lines of what is stored.
  template <typename T>
  std::string Lines(TKvEncoding Encoding = Utf8) {
    const std::string Body = Export(*Section<T>(), Encoding);
    return Body.substr(Body.find(" [TREE]\r\n") + 9);
  }
  /// Reads tree lines into an empty store and gives their first node.
  template <typename T>
  const TDSPNode& Read(const std::string& Lines, TKvEncoding Encoding = Utf8) {
    Import(*Section<T>(), " [REMARKS]\r\n  \r\n [TREE]\r\n" + Lines, Encoding);
    return Stored().GetNodes(0);
  }

  TDSPPlatform Platform;
};

TEST_F(TreeText, EveryTypeOfVersion200ComesBack) {
  for (const TNodeSample& Case : NodeSamples()) {
    Stored().Clear();
    Add(Stored(), "n", Case.Type, Case.Value);
    TDSPNode Before;
    Before.Assign(Stored());
    const std::string Written = Lines<TEIDSPStructure>();
    EXPECT_EQ(Written, "  n" + Case.Text + "\r\n");
    Read<TEIDSPStructure>(Written);
    EXPECT_TRUE(Stored() == Before) << Case.Text;
  }
}

TEST_F(TreeText, Version100HasSixTypesAndTheCodePage) {
  const struct {
    TDSPValueType Type;
    TKvVariant Value;
    std::string Text;
    TDSPValueType ReadType;
    TKvVariant ReadValue;
  } Cases[] = {
      {T::String, Text("Ж#\n|\x7F"), ":string = '\xC6#23#0A|\x7F'", T::String, Text("Ж#\n|\x7F")},
      {T::Char, Text("Ж", TKvKind::Char), ":string = '\xC6'", T::String, Text("Ж")},
      {T::AnsiString, AnsiText("#\xC6\x98"), ":string = '#23\xC6\x98'", T::String, Text("#Ж\xC2\x98")},
      {T::UInt32, Int(4294967295, TKvKind::LongWord), ":integer = 4294967295", T::Int64,
       Int(4294967295, TKvKind::Int64)},
      {T::UInt64, Unsigned(UINT64_MAX), ":integer = 18446744073709551615", T::UInt64, Unsigned(UINT64_MAX)},
      {T::SysTime, TimeOfDay("12:00:00"), ":double = 0.5", T::Double, Real(0.5)},
      {T::DateTime, Moment("1899-12-29 06:00:00"), ":double = -1.25", T::Double, Real(-1.25)},
      {T::Variant, Int(-5, TKvKind::SmallInt), ":variant = SMALLINT(-5)", T::Variant, Int(-5, TKvKind::SmallInt)},
      {T::Variant, Int(5, TKvKind::Word), ":variant = INTEGER(5)", T::Variant, Int(5)},
      {T::Variant, Unsigned(1ull << 63), ":variant = DOUBLE(9223372036854775808.0)", T::Variant, Real(0x1p63)},
      {T::Variant, Currency(INT64_MAX), ":variant = CURRENCY(922337203685477.5807)", T::Variant, Currency(INT64_MAX)},
      {T::Variant, TimeOfDay("06:00:00"), ":variant = DATE(0.25)", T::Variant, Moment("1899-12-30 06:00:00")},
      {T::Variant, Text("Ж\r)"), ":variant = OLESTR(\xC6#0D))", T::Variant, Text("Ж\r)")},
      {T::Variant, AnsiText("\xC6"), ":variant = STRING(\xC6)", T::Variant, AnsiText("\xC6")},
  };
  for (const auto& Case : Cases) {
    Stored().Clear();
    Add(Stored(), "n", Case.Type, Case.Value);
    const std::string Written = Lines<TEIDSPStructureOld>(Ansi);
    EXPECT_EQ(Written, "  n" + Case.Text + "\r\n");
    const TDSPNode& Node = Read<TEIDSPStructureOld>(Written, Ansi);
    EXPECT_EQ(Node.ValueType(), Case.ReadType) << Written;
    EXPECT_EQ(Node.Value(), Case.ReadValue) << Written;
    EXPECT_EQ(Lines<TEIDSPStructureOld>(Ansi), Written);
  }
  EXPECT_EQ(Read<TEIDSPStructureOld>("  n:variant = single(1.5)").Value(), Real(1.5));
}

TEST_F(TreeText, AWholeStructureKeepsItsBytes) {
  const auto Fill = [](TDSPNode& Parent) {
    int Number = 0;
    for (const TNodeSample& Case : NodeSamples()) {
      TDSPNode& Node = Add(Parent, Format("n%d", ++Number), Case.Type, Case.Value);
      // Version 100 has no form for some variants.
      const TKvKind Kind = Case.Value.Kind();
      if (Case.Type == T::Variant && (Kind == TKvKind::Bytes || Kind == TKvKind::Int64 || Kind == TKvKind::UInt64))
        Node.SetValueType(T::Variant);
    }
  };
  TDSPNode Tree;
  for (const char* Name : {"a b ", "Ёж = 1", "=", "a@b", "x\\y", "'", "1"}) Fill(Add(Tree, Name, T::Word));
  TDSPNode& Level = Add(Tree, "level");
  for (const char* Name : {"A", "a", "a"}) Fill(Add(Level, Name));
  for (const char* Remarks : {"", " one\r\ntwo\r\n\r\n[TREE]\r\n", "\nlone feeds\n\r\n [TREE]"}) {
    for (const bool Old : {false, true}) {
      Stored().Assign(Tree);
      const TKvEncoding Encoding = Old ? Ansi : Utf8;
      const auto Out = EitherSection(Old);
      Out->Item.Remarks = Remarks;
      const std::string First = Export(*Out, Encoding);
      Platform.Structures.Stored.clear();
      const auto In = EitherSection(Old);
      Import(*In, First, Encoding);
      EXPECT_EQ(Platform.Structures.Get("S", 12).Item.Remarks, Remarks);
      EXPECT_EQ(Export(*In, Encoding), First);
    }
  }
}

TEST_F(TreeText, WhatComesBackAsSomethingElse) {
  const struct {
    const char* Name;
    TDSPValueType Type;
    TKvVariant Value;
    const char* Line;
    const char* ReadName;
    const char* ReadText;
  } Cases[] = {
      // Names are written with two digits and read with four.
      {"a#b", T::None, {}, "a#23b", "a", ""},
      {"a#00b", T::None, {}, "a#2300b", "a⌀b", ""},
      {"a\tbcd", T::None, {}, "a#09bcd", "a\u09BCd", ""},
      {"n\xC2\x85", T::None, {}, "n#85", "n", ""},
      // 8-bit texts leave "#" as it is, and readers take it for an escape.
      {"n", T::AnsiString, AnsiText("#41"), "n:ANSIString = '#41'", "n", "A"},
      {"n", T::AnsiString, AnsiText("x#4"), "n:ANSIString = 'x#4'", "n", "x"},
      {"n", T::Variant, AnsiText("#D0"), "n:variant = ANSISTRING(#D0)", "n", "Р"},
  };
  for (const auto& Case : Cases) {
    Stored().Clear();
    Add(Stored(), Case.Name, Case.Type, Case.Value);
    EXPECT_EQ(Lines<TEIDSPStructure>(), std::string("  ") + Case.Line + "\r\n");
    const TDSPNode& Node = Read<TEIDSPStructure>(Lines<TEIDSPStructure>());
    EXPECT_EQ(Node.Name(), Case.ReadName);
    EXPECT_EQ(Node.GetAsString(), Case.ReadText);
  }
}

TEST_F(TreeText, ReadersForgive) {
  const struct {
    const char* Line;
    const char* Text;
  } Cases[] = {
      {"n:  ", ""},
      {"n : string  =\t'x' ", "x"},
      {"n:string = '#0041#12'", "A"},
      {"n:variant = null", ""},
      {"n:variant = integer(+5)", "5"},
      {"n:binary = 41-42ж43", "ABC"},
      {"n:ANSIString = 'ж☃'", "6\x03"},
  };
  for (const auto& Case : Cases)
    EXPECT_EQ(Read<TEIDSPStructure>(std::string("  ") + Case.Line).GetAsString(), Case.Text) << Case.Line;
}

TEST_F(TreeText, LongLinesAreCut) {
  const struct {
    std::string Unit;
    std::size_t Count, Lines;
  } Cases[] = {{"x", 99'975, 1},  {"x", 99'976, 2}, {"x", 250'000, 3},
               {"@", 199'980, 3}, {"😀", 49'988, 2}, {"Ж", 100'000, 2}};
  for (const auto& Case : Cases) {
    std::string Value;
    for (std::size_t Index = 0; Index < Case.Count; ++Index) Value += Case.Unit;
    Stored().Clear();
    Add(Stored(), "n", T::String, Text(Value));
    const std::string Written = Lines<TEIDSPStructure>();
    std::size_t Count = 0;
    for (std::size_t At = 0, Next; (Next = Written.find("\r\n", At)) != std::string::npos; At = Next + 2, ++Count) {
      const std::string_view Line(Written.data() + At, Next - At);
      EXPECT_LE(Utf16Length(Line), 99'992u);
      EXPECT_EQ(Line.front(), Count ? '@' : ' ');
      EXPECT_EQ(Line.back(), Next + 2 == Written.size() ? '\'' : '@');
    }
    EXPECT_EQ(Count, Case.Lines) << Case.Unit << Case.Count;
    EXPECT_EQ(Read<TEIDSPStructure>(Written).GetAsString(), Value);
  }
  Stored().Clear();
  Add(Stored(), "n@");
  Add(Stored(), "o");
  EXPECT_EQ(Lines<TEIDSPStructure>(), "  n@:\r\n  o\r\n") << "the mark of a piece that goes on";
  EXPECT_EQ(Read<TEIDSPStructure>(Lines<TEIDSPStructure>()).Name(), "n@");
  EXPECT_EQ(Read<TEIDSPStructure>("  a@\r\n@@\r\n@b").Name(), "ab") << "a piece of nothing";
}

TEST_F(TreeText, ProgramsAreCutAtTheirLineBreaks) {
  auto& Tree = Platform.Structures.Get("S", 73).Tree;
  const std::string Long(99'980, 'x');
  Add(Tree, "a", T::String, Text("\r\none\r\n\r\ntwo\rthree\n"));
  Add(Tree, "b", T::AnsiString, AnsiText("one\r\ntwo"));
  Add(Tree, "c", T::Variant, Text("one\r\ntwo"));
  Add(Tree, "d", T::String, Text(Long + "\r\nx"));
  const auto Program = Section<TEIDSPStructure>(73);
  const std::string Written = Export(*Program);
  EXPECT_EQ(Written.substr(0, Written.find("  d")),
            Body("  a:string = '@\n@#000D#000Aone@\n@#000D#000A@\n@#000D#000Atwo#000Dthree#000A'\n"
                 "  b:ANSIString = 'one@\n@#0D#0Atwo'\n"
                 "  c:variant = STRING(one#000D#000Atwo)\n"));
  // The break of d begins behind the 99990th character: that is where the piece ends, within the break or not.
  EXPECT_EQ(Written.substr(Written.find("  d")),
            "  d:string = '" + Long.substr(0, 99'976) + "@\r\n@xxxx@\r\n@#000D#000Ax'\r\n");
  TDSPNode Kept;
  Kept.Assign(Tree);
  Import(*Program, Written);
  EXPECT_TRUE(Platform.Structures.Get("S", 73).Tree == Kept);
  Tree.GetNodes(3).SetValueType(T::None);
  EXPECT_EQ(Export(*Section<TEIDSPStructureOld>(73), Ansi).find('@'), std::string::npos) << "not in version 100";
}

TEST_F(TreeText, LostCharactersAreCountedOrRefused) {
  Add(Add(Stored(), "a"), "b", T::String, Text("Ж日\xFF"));
  for (const bool Strict : {false, true}) {
    Platform.WorkSettings.StrictText = Strict;
    const std::string Old =
        ErrorOf([&] { EXPECT_EQ(Lines<TEIDSPStructureOld>(Ansi).substr(5), "    b:string = '\xC6?\?'\r\n"); });
    EXPECT_EQ(Lines<TEIDSPStructure>().substr(5), "    b:string = 'Ж日#DCFF'\r\n") << "nothing is lost";
    EXPECT_EQ(Old.substr(0, Old.find('.')),
              Strict ? "EDSPUtilError: A text has characters that code page 1251 lacks (Node:'a\\b')" : "no error");
    const auto Remarked = Section<TEIDSPStructure>();
    Remarked->Item.Remarks = "r\xFF";
    const std::string OfRemarks = ErrorOf([&] { Export(*Remarked); });
    EXPECT_EQ(OfRemarks.substr(0, OfRemarks.find(" (")),
              Strict ? "EEIError: The text '  r\uFFFD' is not valid UTF-8" : "no error");
  }
}

}  // namespace
}  // namespace velkrund::tests

#include "bench/TreeReading.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "velkrund/dsp/TreeReader.h"
#include "velkrund/dsp/TreeWriter.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::bench {

namespace {

/// Trees, their lines one behind the other.
struct TTreeLines {
  TMemoryStream Memory;
  std::vector<std::int64_t> Sizes;  // of each tree's lines
  std::int64_t Nodes = 0;
};

/// A value of one of the types that trees mostly consist of; returns the type.
TDSPValueType MakeValue(int Number, TKvVariant& Value) {
  switch (Number % 10) {
    case 0:
      return Value.SetInteger(Number, TKvKind::Integer), TDSPValueType::Integer;
    case 1:
      return Value.SetBoolean(true), TDSPValueType::Boolean;
    case 2:
      return Value.SetReal(Number / 7.0), TDSPValueType::Double;
    case 3:
      return Value.SetDateTime({Number * 61'000'000LL}), TDSPValueType::DateTime;
    case 4:
      return Value.SetBytes("\x01\x02\xFE\xFF"), TDSPValueType::Binary;
    case 5:
      return Value.SetInteger(Number), TDSPValueType::Variant;
    case 6:
      return Value.SetText("Москва"), TDSPValueType::String;
    default:
      return Value.SetText(Format("Client %d", Number)), TDSPValueType::String;
  }
}

void FillNode(TDSPNode& Node, int Number) {
  TKvVariant Value;
  Node.SetValueType(MakeValue(Number, Value));
  Node.SetValue(std::move(Value));
}

void AppendTree(TTreeLines& Lines, int Groups, int Leaves) {
  TDSPNode Tree;
  int Number = static_cast<int>(Lines.Nodes);
  for (int Group = 0; Group < Groups; ++Group) {
    TDSPNode& Above = Tree.AddNode(Format("Group %d", Group));
    for (int Leaf = 0; Leaf < Leaves; ++Leaf) FillNode(Above.AddNode(Format("Property%d", Leaf)), Number++);
  }
  Lines.Nodes += Groups * (Leaves + 1);
  const std::int64_t Before = Lines.Memory.Size();
  TEIStream Stream(Lines.Memory);
  Stream.SetEncoding(TKvEncoding::Utf8);
  TDSPTreeWriter(Stream, TCurrentNodeTexts(), false).Write(Tree, false);
  Lines.Sizes.push_back(Lines.Memory.Size() - Before);
}

/// Reads one tree after the other into Tree.
void ReadTrees(TTreeLines& Lines, TDSPNode& Tree) {
  Lines.Memory.SetPosition(0);
  for (const std::int64_t Size : Lines.Sizes) {
    Tree.Clear();
    TEIStream Stream(Lines.Memory, Size);
    Stream.SetEncoding(TKvEncoding::Utf8);
    TDSPTreeReader(Stream, TCurrentNodeTexts()).Read(Tree, {});
  }
}

void Measure(benchmark::State& State, TTreeLines& Lines, bool Afresh) {
  TDSPNode Tree;
  // Nothing is handed back to the system by itself, so that it is known which memory is fresh.
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  const auto Drop = [&] {
    Tree.Clear();
    if (Afresh) malloc_trim(0);
  };
  ReadTrees(Lines, Tree);
  Drop();
  for (auto _ : State) {
    ReadTrees(Lines, Tree);
    State.PauseTiming();
    Drop();
    State.ResumeTiming();
  }
  State.SetBytesProcessed(State.iterations() * Lines.Memory.Size());
  State.counters["bytes/node"] = static_cast<double>(Lines.Memory.Size()) / static_cast<double>(Lines.Nodes);
}

/// Trees of the same size, made when they are read for the first time.
void Register(const char* Name, int Trees, int Groups, int Leaves, bool Afresh) {
  benchmark::RegisterBenchmark(Name, [=](benchmark::State& State) {
    TTreeLines Lines;
    for (int Tree = 0; Tree < Trees; ++Tree) AppendTree(Lines, Groups, Leaves);
    Measure(State, Lines, Afresh);
  })->Unit(benchmark::kMillisecond);
}

}  // namespace

void RegisterTreeReading() {
  Register("small trees", 10'000, 10, 9, false);
  Register("large tree first", 1, 1'000, 999, true);
  Register("large tree again", 1, 1'000, 999, false);
}

}  // namespace velkrund::bench

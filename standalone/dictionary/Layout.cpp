#include "standalone/dictionary/Layout.h"

#include <array>
#include <optional>
#include <string_view>
#include <type_traits>

#include "standalone/dictionary/DescriptionReader.h"
#include "standalone/dictionary/DescriptionWords.h"
#include "standalone/dictionary/DescriptionWriter.h"

// Every walk takes a writer or a reader, and what it writes or reads, constant for a writer.

namespace velkrund {
namespace {

constexpr int Layout = 1;

constexpr std::string_view Lines = "Lines";
constexpr std::string_view Enumeration = "Enum";

template <typename TWalk, typename TCounter>
void WalkCounter(TWalk& Walk, TCounter& Counter) {
  Walk.Text("Start", Counter.Start);
  Walk.Text("Step", Counter.Step);
  Walk.Text("Min", Counter.Min);
  Walk.Text("Max", Counter.Max);
  Walk.Flag("Cycle", Counter.Cycle);
}

template <typename TWalk, typename TField>
void WalkType(TWalk& Walk, TField& Field) {
  Walk.template Word<TDicFieldType>("Type", Field.Type, FieldTypeWords, std::nullopt);
  Walk.Number("Size", Field.Size);
  Walk.Number("Scale", Field.Scale);
}

template <typename TWalk, typename TField>
void WalkField(TWalk& Walk, TField& Field) {
  Walk.Own(Field.Name);
  WalkType(Walk, Field);
  Walk.Flag("NotNull", Field.NotNull);
  Walk.Text("Comment", Field.Comment);
  Walk.Text("Default", Field.Default);
  const bool Counts = Field.Auto != TDicAutoKey::None || Field.Counter != TDicCounter() || !Field.Owned.empty();
  Walk.template Below<TDicAutoKey>("Auto", Field.Auto, AutoKeyWords, Counts, [&](auto& Below) {
    WalkCounter(Below, Field.Counter);
    Below.Text("Owned", Field.Owned);
  });
  Walk.Text("Computed", Field.Computed);
  Walk.Flag("Stored", Field.Stored);
  Walk.EngineWords(Field.Words, Enumeration);
}

template <typename TWalk, typename TColumns>
void WalkColumns(TWalk& Walk, TColumns& Columns) {
  Walk.List("Columns", "Column", Columns, [](auto& Item, auto& Column) {
    Item.Own(Column.Name);
    Item.Flag("Expression", Column.Expression);
    Item.Flag("Descending", Column.Descending);
  });
}

std::string_view NameOf(const TDicKey& Key) { return Key.Primary ? "Primary" : "Unique"; }

template <typename TWalk, typename TKeys>
void WalkKeys(TWalk& Walk, TKeys& Keys) {
  Walk.Lists("Keys", {"Primary", "Unique"}, Keys, NameOf, [](auto& Item, auto& Key) {
    if constexpr (std::remove_reference_t<decltype(Item)>::Reads) Key.Primary = Item.IsOf("Primary");
    Item.Own(Key.Name);
    WalkColumns(Item, Key.Columns);
    Item.template Word<TDicDeferrable>("Deferrable", Key.Deferrable, DeferrableWords, TDicDeferrable::No);
    Item.EngineWords(Key.Words, Lines);
  });
}

template <typename TWalk, typename TIndexes>
void WalkIndexes(TWalk& Walk, TIndexes& Indexes) {
  Walk.List("Indexes", "Index", Indexes, [](auto& Item, auto& Index) {
    Item.Own(Index.Name);
    Item.Flag("Unique", Index.Unique);
    WalkColumns(Item, Index.Columns);
    Item.EngineWords(Index.Words, Lines);
  });
}

template <typename TWalk, typename TKey>
void WalkForeignKey(TWalk& Walk, TKey& Key) {
  Walk.Own(Key.Name);
  Walk.Name("Table", Key.Table);
  Walk.Text("Schema", Key.Schema);
  Walk.List("Columns", "Column", Key.Columns, [](auto& Item, auto& Pair) {
    Item.Own(Pair.Column);
    Item.Text("To", Pair.To);
  });
  Walk.template Word<TDicKeyAction>("OnDelete", Key.OnDelete, KeyActionWords, TDicKeyAction::NoAction);
  Walk.template Word<TDicKeyAction>("OnUpdate", Key.OnUpdate, KeyActionWords, TDicKeyAction::NoAction);
  Walk.template Word<bool>("Match", Key.MatchFull, MatchWords, false);
  Walk.template Word<TDicDeferrable>("Deferrable", Key.Deferrable, DeferrableWords, TDicDeferrable::No);
  Walk.Flag("NotChecked", Key.NotChecked);
  Walk.EngineWords(Key.Words, Lines);
}

template <typename TWalk, typename TTriggers>
void WalkTriggers(TWalk& Walk, TTriggers& Triggers) {
  Walk.List("Triggers", "Trigger", Triggers, [](auto& Item, auto& Trigger) {
    Item.Own(Trigger.Name);
    Item.Text("Enabled", Trigger.Enabled);
    Item.EngineLines(Trigger.Words);
  });
}

template <typename TWalk, typename TObject>
void WalkObject(TWalk& Walk, TObject& Object) {
  Walk.Layout(Layout);
  Walk.Name("Name", Object.Name);
  Walk.Text("Schema", Object.Schema);
  Walk.Text("Comment", Object.Comment);
}

template <typename TWalk, typename TTable>
void WalkTable(TWalk& Walk, TTable& Table) {
  WalkObject(Walk, Table);
  Walk.List("Fields", "Field", Table.Fields, [](auto& Item, auto& Field) { WalkField(Item, Field); });
  WalkKeys(Walk, Table.Keys);
  WalkIndexes(Walk, Table.Indexes);
  Walk.List("ForeignKeys", "ForeignKey", Table.ForeignKeys, [](auto& Item, auto& Key) { WalkForeignKey(Item, Key); });
  Walk.List("Checks", "Check", Table.Checks, [](auto& Item, auto& Check) {
    Item.Own(Check.Name);
    Item.Text("Text", Check.Text);
    Item.EngineWords(Check.Words, Lines);
  });
  WalkTriggers(Walk, Table.Triggers);
  Walk.EngineWords(Table.Words, Lines);
}

template <typename TWalk, typename TView>
void WalkView(TWalk& Walk, TView& View) {
  WalkObject(Walk, View);
  Walk.List("Columns", "Column", View.Columns, [](auto& Item, auto& Column) { Item.Own(Column); });
  Walk.Flag("Materialized", View.Materialized);
  WalkIndexes(Walk, View.Indexes);
  WalkTriggers(Walk, View.Triggers);
  Walk.EngineLines(View.Words);
}

template <typename TWalk, typename TParameter>
void WalkParameter(TWalk& Walk, TParameter& Parameter) {
  Walk.Own(Parameter.Name);
  Walk.template Word<TDicParameterMode>("Mode", Parameter.Mode, ParameterModeWords, TDicParameterMode::In);
  WalkType(Walk, Parameter);
  Walk.Text("Default", Parameter.Default);
  Walk.EngineWords(Parameter.Words, Enumeration);
}

template <typename TWalk, typename TProcedure>
void WalkProcedure(TWalk& Walk, TProcedure& Procedure) {
  WalkObject(Walk, Procedure);
  Walk.Text("Language", Procedure.Language);
  const auto Each = [](auto& Item, auto& Parameter) { WalkParameter(Item, Parameter); };
  Walk.List("Params", "Param", Procedure.Parameters, Each);
  Walk.List("Result", "Column", Procedure.Result, Each);
  Walk.EngineLines(Procedure.Words);
}

template <typename TWalk, typename TGenerator>
void WalkGenerator(TWalk& Walk, TGenerator& Generator) {
  WalkObject(Walk, Generator);
  WalkCounter(Walk, Generator.Counter);
  Walk.Text("Cache", Generator.Cache);
  Walk.EngineWords(Generator.Words, Lines);
}

template <typename T, typename TWalker>
void Write(const T& Description, TDSPNode& Root, TWalker Walk) {
  Root.Clear();
  TDescriptionWriter Writer(Root);
  Walk(Writer, Description);
}

template <typename T, typename TWalker>
T Read(const TDSPNode& Root, TWalker Walk) {
  T Description;
  TDescriptionReader Reader(Root);
  Walk(Reader, Description);
  Reader.Finish();
  return Description;
}

constexpr auto AsTable = [](auto& Walk, auto& Table) { WalkTable(Walk, Table); };
constexpr auto AsView = [](auto& Walk, auto& View) { WalkView(Walk, View); };
constexpr auto AsProcedure = [](auto& Walk, auto& Procedure) { WalkProcedure(Walk, Procedure); };
constexpr auto AsGenerator = [](auto& Walk, auto& Generator) { WalkGenerator(Walk, Generator); };

}  // namespace

void WriteTree(const TDicTableDescription& Table, TDSPNode& Root) { Write(Table, Root, AsTable); }
void WriteTree(const TDicViewDescription& View, TDSPNode& Root) { Write(View, Root, AsView); }
void WriteTree(const TDicProcedureDescription& Procedure, TDSPNode& Root) { Write(Procedure, Root, AsProcedure); }
void WriteTree(const TDicGeneratorDescription& Generator, TDSPNode& Root) { Write(Generator, Root, AsGenerator); }

TDicTableDescription ReadTable(const TDSPNode& Root) { return Read<TDicTableDescription>(Root, AsTable); }
TDicViewDescription ReadView(const TDSPNode& Root) { return Read<TDicViewDescription>(Root, AsView); }

TDicProcedureDescription ReadProcedure(const TDSPNode& Root, bool Selects) {
  auto Procedure = Read<TDicProcedureDescription>(Root, AsProcedure);
  Procedure.Selects = Selects;
  return Procedure;
}

TDicGeneratorDescription ReadGenerator(const TDSPNode& Root) {
  return Read<TDicGeneratorDescription>(Root, AsGenerator);
}

}  // namespace velkrund

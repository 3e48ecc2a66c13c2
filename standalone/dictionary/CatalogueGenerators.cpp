#include "standalone/dictionary/CatalogueGenerators.h"

#include "standalone/catalogue/Catalogue.h"
#include "standalone/catalogue/CatalogueCells.h"
#include "standalone/drivers/GeneratorRange.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

const TCatalogueTable& Kept() {
  // What a description leaves out is NULL, so that it comes back as it was.
  static const TCatalogueTable Table{"velkrund_generators",
                                     {{"name_key", TKvKind::String, false},  // the name in lower case
                                      {"name", TKvKind::String, false},
                                      {"start_value", TKvKind::Int64},
                                      {"step", TKvKind::Int64},
                                      {"min_value", TKvKind::Int64},
                                      {"max_value", TKvKind::Int64},
                                      {"cycle", TKvKind::Int64, false},
                                      {"last_value", TKvKind::Int64}},  // NULL: it was never asked
                                     "name_key"};
  return Table;
}

constexpr const char* DescriptionColumns = "name, start_value, step, min_value, max_value, cycle";

std::optional<std::string> TakeDecimal(TCursor& Rows, int Column) {
  const std::optional<std::int64_t> Number = TakeNumber(Rows, Column);
  return Number ? std::optional(std::to_string(*Number)) : std::nullopt;
}

TDicGeneratorDescription TakeDescription(TCursor& Rows) {
  TDicGeneratorDescription Result;
  Result.Name = TakeText(Rows, 0);
  Result.Counter = {TakeDecimal(Rows, 1), TakeDecimal(Rows, 2), TakeDecimal(Rows, 3), TakeDecimal(Rows, 4),
                    TakeNumber(Rows, 5).value_or(0) != 0};
  return Result;
}

/// Number: as the range has it, where Text says one.
TKvVariant CellOf(const std::optional<std::string>& Text, std::int64_t Number) {
  return Text ? NumberCell(Number) : TKvVariant();
}

/// Of one that gives out Start next.
std::int64_t ValueBefore(const std::string& Name, std::int64_t Start, const TGeneratorRange& Range) {
  if (!Range.Takes(Start))
    throw EDatabaseError(
        Format("The generator '%s' cannot go on with %d: it counts from %d to %d", Name, Start, Range.Min, Range.Max));
  return Before(Name, Start, Range.Step);
}

}  // namespace

std::unique_ptr<TCursor> TCatalogueGenerators::Select(const char* Columns, const std::string* Key) {
  if (!TCatalogue(FConnection).Has(Kept())) return nullptr;
  const std::string Statement = Format("SELECT %s FROM %s", Columns, Kept().Name);
  if (!Key) return FConnection.Query(Statement + " ORDER BY name_key");
  const TKvVariant Identity = TextCell(*Key);
  return FConnection.Query(Statement + " WHERE name_key = " + FConnection.Dialect().ParameterMark(1), {&Identity, 1});
}

std::vector<TDicGeneratorDescription> TCatalogueGenerators::List() {
  std::vector<TDicGeneratorDescription> Result;
  const auto Rows = Select(DescriptionColumns, nullptr);
  while (Rows && Rows->Next()) Result.push_back(TakeDescription(*Rows));
  return Result;
}

std::optional<TDicGeneratorDescription> TCatalogueGenerators::Find(const std::string& Name) {
  const std::string Key = LowerCase(Name);
  const auto Rows = Select(DescriptionColumns, &Key);
  return Rows && Rows->Next() ? std::optional(TakeDescription(*Rows)) : std::nullopt;
}

void TCatalogueGenerators::Create(const TDicGeneratorDescription& Generator, std::optional<std::int64_t> Start) {
  const std::string Name = Generator.FullName(), Key = LowerCase(Name);
  const TDicCounter& Counter = Generator.Counter;
  const TGeneratorRange Range = RangeOf(Name, Counter);
  TCatalogue(FConnection).Make(Kept());
  const TKvVariant Cells[] = {TextCell(Key),
                              TextCell(Name),
                              CellOf(Counter.Start, Range.Start),
                              CellOf(Counter.Step, Range.Step),
                              CellOf(Counter.Min, Range.Min),
                              CellOf(Counter.Max, Range.Max),
                              NumberCell(std::int64_t{Range.Cycle})};
  std::string Marks;
  for (int Number = 1; Number <= static_cast<int>(std::size(Cells)); ++Number)
    Marks += FConnection.Dialect().ParameterMark(Number) + ", ";
  FConnection.Execute(
      Format("INSERT INTO %s (name_key, %s, last_value) VALUES (%sNULL)", Kept().Name, DescriptionColumns, Marks),
      Cells);
  // What it counts from stays as described; a later start is where it stands.
  if (Start) SetValue(Generator, ValueBefore(Name, *Start, Range));
}

void TCatalogueGenerators::Alter(const TDicGeneratorDescription& There, const TDicGeneratorDescription& Generator,
                                 std::optional<std::int64_t> Start) {
  const std::string Name = Generator.FullName(), Key = LowerCase(Name);
  const TDicCounter& Counter = Generator.Counter;
  const TGeneratorRange Range = RangeOf(Name, Counter);
  const TKvVariant Cells[] = {CellOf(Counter.Start, Range.Start),    CellOf(Counter.Step, Range.Step),
                              CellOf(Counter.Min, Range.Min),        CellOf(Counter.Max, Range.Max),
                              NumberCell(std::int64_t{Range.Cycle}), TextCell(Key)};
  const TDialect& Dialect = FConnection.Dialect();
  FConnection.Execute(
      Format(
          "UPDATE %s SET start_value = %s, step = %s, min_value = %s, max_value = %s, cycle = %s WHERE name_key = %s",
          Kept().Name, Dialect.ParameterMark(1), Dialect.ParameterMark(2), Dialect.ParameterMark(3),
          Dialect.ParameterMark(4), Dialect.ParameterMark(5), Dialect.ParameterMark(6)),
      Cells);
  if (Start) return SetValue(Generator, ValueBefore(Name, *Start, Range));
  // Refused where it cannot stand there any more.
  if (const std::optional<std::int64_t> Last = LastValue(Generator)) return SetValue(Generator, *Last);
  const std::int64_t First = RangeOf(Name, There.Counter).Start;
  if (Range.Step > 0 ? First > Range.Start : First < Range.Start) SetValue(Generator, Before(Name, First, Range.Step));
}

std::optional<std::int64_t> TCatalogueGenerators::LastValue(const TDicGeneratorDescription& Generator) {
  const std::string Name = Generator.FullName(), Key = LowerCase(Name);
  const auto Rows = Select("last_value", &Key);
  if (!Rows || !Rows->Next()) throw EDatabaseError(Format("There is no generator '%s' in the database", Name));
  return TakeNumber(*Rows, 0);
}

std::int64_t TCatalogueGenerators::Value(const TDicGeneratorDescription& Generator) {
  if (const std::optional<std::int64_t> Last = LastValue(Generator)) return *Last;
  const std::string Name = Generator.FullName();
  const TGeneratorRange Range = RangeOf(Name, Generator.Counter);
  return Before(Name, Range.Start, Range.Step);
}

void TCatalogueGenerators::SetValue(const TDicGeneratorDescription& Generator, std::int64_t Value) {
  const std::string Name = Generator.FullName(), Key = LowerCase(Name);
  const TGeneratorRange Range = RangeOf(Name, Generator.Counter);
  if (!Range.Takes(Value))
    throw EDatabaseError(
        Format("The generator '%s' cannot stand at %d: it counts from %d to %d", Name, Value, Range.Min, Range.Max));
  const TKvVariant Cells[] = {NumberCell(Value), TextCell(Key)};
  const TDialect& Dialect = FConnection.Dialect();
  FConnection.Execute(Format("UPDATE %s SET last_value = %s WHERE name_key = %s", Kept().Name, Dialect.ParameterMark(1),
                             Dialect.ParameterMark(2)),
                      Cells);
}

std::int64_t TCatalogueGenerators::Next(const TDicGeneratorDescription& Generator) {
  const std::string Name = Generator.FullName();
  const std::optional<std::int64_t> Next = RangeOf(Name, Generator.Counter).After(LastValue(Generator));
  if (!Next) throw EDatabaseError(Format("The generator '%s' has given all its numbers out", Name));
  SetValue(Generator, *Next);
  return *Next;
}

void TCatalogueGenerators::Drop(const TDicGeneratorDescription& Generator) {
  const std::string Key = LowerCase(Generator.FullName());
  const TKvVariant Identity = TextCell(Key);
  FConnection.Execute(Format("DELETE FROM %s WHERE name_key = %s", Kept().Name, FConnection.Dialect().ParameterMark(1)),
                      {&Identity, 1});
}

}  // namespace velkrund

#include "standalone/drivers/sqlite/SQLiteRowCopy.h"

#include <algorithm>

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/sqlite/SQLiteTokenReader.h"
#include "standalone/drivers/sqlite/SQLiteTypes.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

const TColumnInfo& ColumnAt(const TTableDescription& Table, int Index) {
  return Table.Columns[static_cast<std::size_t>(Index)];
}

/// What a column holds has been through its affinity already: the same one leaves it as it is, and so does none. The
/// engine stores by integers and by numbers alike.
bool StoresTheSame(TAffinity From, TAffinity To) {
  const auto Stored = [](TAffinity Affinity) { return Affinity == TAffinity::Numeric ? TAffinity::Integer : Affinity; };
  return To == TAffinity::None || Stored(From) == Stored(To);
}

/// The name of the row number that no column takes for itself; empty: none is left, or rows have no number.
std::string RowNumberName(const TSQLiteCopiedTable& Table) {
  if (Table.Description.Table.Kind != TTableKind::Table || Table.WithoutRowId) return {};
  for (const char* Name : {"rowid", "_rowid_", "oid"}) {
    const auto IsIt = [&](const TColumnInfo& Column) { return SameSQLiteName(Column.Name, Name); };
    if (std::none_of(Table.Description.Columns.begin(), Table.Description.Columns.end(), IsIt)) return Name;
  }
  return {};
}

}  // namespace

bool SQLiteCopiesExactly(const TSQLiteCopiedTable& Source, const TSQLiteCopiedTable& Target,
                         std::span<const TColumnPair> Pairs) {
  const auto IsExact = [&](const TColumnPair& Pair) {
    const TColumnInfo& From = ColumnAt(Source.Description, Pair.From);
    const TColumnInfo& To = ColumnAt(Target.Description, Pair.To);
    // The engine would number rows in the place of NULL.
    const bool MayBeNumbered =
        Pair.To == Target.RowNumberColumn && Pair.From != Source.RowNumberColumn && From.Nullable;
    return !To.Generated && !MayBeNumbered &&
           StoresTheSame(AffinityOf(From.DeclaredType, Source.Strict), AffinityOf(To.DeclaredType, Target.Strict));
  };
  return !Pairs.empty() && std::all_of(Pairs.begin(), Pairs.end(), IsExact);
}

bool SQLiteCopiesWhole(const TSQLiteCopiedTable& Source, const TSQLiteCopiedTable& Target,
                       std::span<const TColumnPair> Pairs) {
  const auto HasGenerated = [](const TTableDescription& Table) {
    return std::any_of(Table.Columns.begin(), Table.Columns.end(),
                       [](const TColumnInfo& Column) { return Column.Generated; });
  };
  const std::size_t Count = Pairs.size();
  if (Count != Source.Description.Columns.size() || Count != Target.Description.Columns.size()) return false;
  return std::all_of(Pairs.begin(), Pairs.end(), [](const TColumnPair& Pair) { return Pair.From == Pair.To; }) &&
         Source.WithoutRowId == Target.WithoutRowId && Source.RowNumberColumn == Target.RowNumberColumn &&
         !HasGenerated(Source.Description) && !HasGenerated(Target.Description);
}

std::string SQLiteWholeCopyStatement(const TSQLiteCopiedTable& Source, const TSQLiteCopiedTable& Target) {
  return Format("INSERT OR ABORT INTO main.%s SELECT * FROM %s.%s", QuoteStandardName(Target.Description.Table.Name),
                Source.Database, QuoteStandardName(Source.Description.Table.Name));
}

std::string SQLiteCopyStatement(const TSQLiteCopiedTable& Source, const TSQLiteCopiedTable& Target,
                                std::span<const TColumnPair> Pairs, bool KeepsNumbers) {
  std::string Names, Values;
  const auto Add = [&](const std::string& To, const std::string& From) {
    const char* const Separator = Names.empty() ? "" : ", ";
    Names += Separator + To;
    // Without the alias the engine would take a quoted name that has vanished for a text between quotes.
    Values += std::string(Separator) + "S." + From;
  };
  const std::string From = RowNumberName(Source), To = RowNumberName(Target);
  const bool AreHidden = Source.RowNumberColumn < 0 && Target.RowNumberColumn < 0;
  if (KeepsNumbers && AreHidden && !From.empty() && !To.empty()) Add(To, From);
  for (const TColumnPair& Pair : Pairs)
    Add(QuoteStandardName(ColumnAt(Target.Description, Pair.To).Name),
        QuoteStandardName(ColumnAt(Source.Description, Pair.From).Name));
  // ABORT, so that no conflict clause of the table drops or replaces rows without a word. An index that holds all
  // columns would be walked in its own order.
  const TTableInfo& Read = Source.Description.Table;
  return Format("INSERT OR ABORT INTO main.%s (%s) SELECT %s FROM %s.%s AS S%s%s",
                QuoteStandardName(Target.Description.Table.Name), Names, Values, Source.Database,
                QuoteStandardName(Read.Name), Read.Kind == TTableKind::Table ? " NOT INDEXED" : "",
                From.empty() ? "" : " ORDER BY S." + From);
}

}  // namespace velkrund

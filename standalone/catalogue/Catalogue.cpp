#include "standalone/catalogue/Catalogue.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

/// Grows with every change of a catalogue table that older programs would misread.
constexpr std::int64_t CurrentVersion = 1;

const TCatalogueTable& VersionTable() {
  static const TCatalogueTable Table{"velkrund_catalogue", {{"version", TKvKind::Int64, false}}, "version"};
  return Table;
}

std::string MakeFailed(const TCatalogueTable& Table) {
  return Format("Cannot make the table %s, in which this program keeps what is its own", Table.Name);
}

}  // namespace

std::optional<std::int64_t> TCatalogue::Version() {
  if (!FConnection.Schema().HasCatalogueTable(VersionTable().Name)) return std::nullopt;
  const auto Rows = FConnection.Query(Format("SELECT version FROM %s", VersionTable().Name));
  if (!Rows->Next()) return std::nullopt;
  TKvVariant Version;
  Rows->Read(0, Version);
  return Version.AsInteger();
}

void TCatalogue::CheckVersion() {
  const std::optional<std::int64_t> Found = Version();
  if (!Found) throw EDatabaseError(Format("The table %s of the database has lost its row", VersionTable().Name));
  if (*Found != CurrentVersion)
    throw EDatabaseError(
        Format("The tables velkrund_... of the database have the layout %d, which another version of this program has "
               "made; this one knows the layout %d alone",
               *Found, CurrentVersion));
}

bool TCatalogue::Has(const TCatalogueTable& Table) {
  if (!FConnection.Schema().HasCatalogueTable(Table.Name)) return false;
  CheckVersion();
  return true;
}

void TCatalogue::Make(const TCatalogueTable& Table) {
  if (Has(Table)) return;
  // Of two who need it at once, one makes it and the other finds it.
  FConnection.LockName("catalogue", MakeFailed(Table));
  if (Has(Table)) return;
  if (FConnection.Schema().HasCatalogueTable(VersionTable().Name)) {
    CheckVersion();
  } else {
    Create(VersionTable());
    TKvVariant Version;
    Version.SetInteger(CurrentVersion);
    FConnection.Execute(
        Format("INSERT INTO %s (version) VALUES (%s)", VersionTable().Name, FConnection.Dialect().ParameterMark(1)),
        {&Version, 1});
  }
  Create(Table);
}

void TCatalogue::Create(const TCatalogueTable& Table) {
  const TDialect& Dialect = FConnection.Dialect();
  std::string Statement = Format("CREATE TABLE %s (", Table.Name);
  for (const TCatalogueTable::TColumn& Column : Table.Columns)
    Statement += Format("%s %s%s%s, ", Column.Name, Dialect.ColumnType(Column.Kind),
                        Column.ByBytes ? Dialect.ByteOrder() : "", Column.Nullable ? "" : " NOT NULL");
  try {
    FConnection.Execute(Statement +
                        Format("PRIMARY KEY (%s))%s", Table.Key, Table.Clustered ? Dialect.Clustered() : ""));
    for (const TCatalogueTable::TIndex& Index : Table.Indexes)
      FConnection.Execute(
          Format("CREATE %sINDEX %s ON %s (%s)", Index.Unique ? "UNIQUE " : "", Index.Name, Table.Name, Index.Columns));
  } catch (const EDatabaseError& Error) {
    const bool MayHelp = Error.Info().Code == TErrorCode::Database || Error.Info().Code == TErrorCode::RowRefused;
    throw EDatabaseError(Format("%s: %s%s", MakeFailed(Table), Error.what(),
                                MayHelp ? ". Should another one have made it at the same moment, try again" : ""),
                         Error.Info());
  }
}

}  // namespace velkrund

#include "standalone/dictionary/UnfinishedTables.h"

#include "standalone/catalogue/Catalogue.h"
#include "standalone/catalogue/CatalogueCells.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

const TCatalogueTable& Unfinished() {
  static const TCatalogueTable Table{"velkrund_unfinished",
                                     {{"name_key", TKvKind::String, false},  // the full name in lower case
                                      {"stage", TKvKind::Int64, false}},
                                     "name_key"};
  return Table;
}

}  // namespace

TTableStage TUnfinishedTables::StageOf(const std::string& Table) {
  if (!TCatalogue(FConnection).Has(Unfinished())) return TTableStage::Complete;
  const std::string Key = LowerCase(Table);
  const TKvVariant Cell = TextCell(Key);
  const auto Rows = FConnection.Query(
      Format("SELECT stage FROM %s WHERE name_key = %s", Unfinished().Name, FConnection.Dialect().ParameterMark(1)),
      {&Cell, 1});
  if (!Rows->Next()) return TTableStage::Complete;
  return TakeNumber(*Rows, 0) == static_cast<int>(TTableStage::Indexed) ? TTableStage::Indexed : TTableStage::Made;
}

void TUnfinishedTables::SetStage(const std::string& Table, TTableStage Stage) {
  TCatalogue Catalogue(FConnection);
  if (Stage == TTableStage::Complete && !Catalogue.Has(Unfinished())) return;
  Catalogue.Make(Unfinished());
  const std::string Key = LowerCase(Table);
  const TKvVariant Cells[] = {TextCell(Key), NumberCell(static_cast<int>(Stage))};
  const std::string First = FConnection.Dialect().ParameterMark(1), Second = FConnection.Dialect().ParameterMark(2);
  FConnection.Execute(Format("DELETE FROM %s WHERE name_key = %s", Unfinished().Name, First), {Cells, 1});
  if (Stage != TTableStage::Complete)
    FConnection.Execute(Format("INSERT INTO %s (name_key, stage) VALUES (%s, %s)", Unfinished().Name, First, Second),
                        Cells);
}

}  // namespace velkrund

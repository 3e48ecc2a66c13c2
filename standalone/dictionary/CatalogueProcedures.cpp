#include "standalone/dictionary/CatalogueProcedures.h"

#include <algorithm>

#include "standalone/catalogue/Catalogue.h"
#include "standalone/catalogue/CatalogueCells.h"
#include "standalone/dictionary/ForeignText.h"
#include "standalone/dictionary/ParameterLines.h"
#include "standalone/drivers/TextLines.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

namespace {

const TCatalogueTable& Kept() {
  static const TCatalogueTable Table{"velkrund_procedures",
                                     {{"name_key", TKvKind::String, false},  // the name in lower case
                                      {"name", TKvKind::String, false},
                                      {"kind", TKvKind::Int64, false},  // the object type of its structure
                                      {"parameters", TKvKind::String, false},
                                      {"body", TKvKind::String, false}},
                                     "name_key"};
  return Table;
}

constexpr const char* DescriptionColumns = "name, kind, parameters, body";

}  // namespace

std::unique_ptr<TCursor> TCatalogueProcedures::Select(const std::string* Key) {
  if (!TCatalogue(FConnection).Has(Kept())) return nullptr;
  const std::string Statement = Format("SELECT %s FROM %s", DescriptionColumns, Kept().Name);
  if (!Key) return FConnection.Query(Statement + " ORDER BY name_key");
  const TKvVariant Identity = TextCell(*Key);
  return FConnection.Query(Statement + " WHERE name_key = " + FConnection.Dialect().ParameterMark(1), {&Identity, 1});
}

TDicProcedureDescription TCatalogueProcedures::TakeDescription(TCursor& Rows) const {
  TDicProcedureDescription Result;
  Result.Name = TakeText(Rows, 0);
  Result.Selects = TakeNumber(Rows, 1) == SelectStoredProcObjectType;
  Result.Parameters = ParametersOf(TakeText(Rows, 2));
  Result.Words[std::string(FConnection.Scripts().Engine())].Lines = SplitLines(TakeText(Rows, 3));
  return Result;
}

std::vector<TDicProcedureDescription> TCatalogueProcedures::List() {
  std::vector<TDicProcedureDescription> Result;
  const auto Rows = Select(nullptr);
  while (Rows && Rows->Next()) Result.push_back(TakeDescription(*Rows));
  return Result;
}

std::optional<TDicProcedureDescription> TCatalogueProcedures::Find(const std::string& Name) {
  const std::string Key = LowerCase(Name);
  const auto Rows = Select(&Key);
  return Rows && Rows->Next() ? std::optional(TakeDescription(*Rows)) : std::nullopt;
}

void TCatalogueProcedures::CheckParameters(const TDicProcedureDescription& Procedure, const std::string& Body) {
  for (const std::string& Used : FConnection.CheckScript(Body)) {
    const bool IsKnown = std::any_of(Procedure.Parameters.begin(), Procedure.Parameters.end(),
                                     [&](const TDicParameter& Parameter) { return Parameter.Name == Used; });
    if (!IsKnown)
      throw EDatabaseError(
          Format("The procedure '%s' has no parameter '%s', which a statement of it uses", Procedure.FullName(), Used));
  }
}

void TCatalogueProcedures::Create(const TDicProcedureDescription& Procedure) {
  const std::string Name = Procedure.FullName(), Key = LowerCase(Name);
  const std::string Body = TextOf(Procedure.Words, FConnection.Scripts().Engine());
  CheckParameters(Procedure, Body);
  TCatalogue(FConnection).Make(Kept());
  const std::string Parameters = LinesOfParameters(Procedure.Parameters);
  const TKvVariant Cells[] = {
      TextCell(Key), TextCell(Name),
      NumberCell(std::int64_t{Procedure.Selects ? SelectStoredProcObjectType : ExecStoredProcObjectType}),
      TextCell(Parameters), TextCell(Body)};
  std::vector<std::string> Marks;
  for (int Number = 1; Number <= static_cast<int>(std::size(Cells)); ++Number)
    Marks.push_back(FConnection.Dialect().ParameterMark(Number));
  FConnection.Execute(
      Format("INSERT INTO %s (name_key, %s) VALUES (%s)", Kept().Name, DescriptionColumns, Joined(Marks)), Cells);
}

void TCatalogueProcedures::Redefine(const TDicProcedureDescription& Procedure) {
  Drop(Procedure);
  Create(Procedure);
}

void TCatalogueProcedures::Drop(const TDicProcedureDescription& Procedure) {
  const std::string Key = LowerCase(Procedure.FullName());
  const TKvVariant Identity = TextCell(Key);
  FConnection.Execute(Format("DELETE FROM %s WHERE name_key = %s", Kept().Name, FConnection.Dialect().ParameterMark(1)),
                      {&Identity, 1});
}

}  // namespace velkrund

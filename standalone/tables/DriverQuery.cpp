#include "standalone/tables/DriverQuery.h"

#include <algorithm>

#include "standalone/drivers/ahead/ReadAhead.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

TDriverQuery::TDriverQuery(TConnection& Connection, const std::string& Text) : FConnection(Connection) { SetSQL(Text); }

TDriverQuery::~TDriverQuery() = default;

void TDriverQuery::SetSQL(const std::string& Text) {
  Close();
  FText = TQueryText(Text, FConnection.Dialect().QuerySyntax());
  FParameters.clear();
  for (const std::string& Name : FText.Parameters()) FParameters.push_back({Name});
}

/// The parameters of the text in its order, all of which need a value.
std::vector<TQueryParameter> TDriverQuery::Given() const {
  std::vector<TQueryParameter> Result;
  std::vector<std::string> Missing;
  for (const std::string& Name : FText.Parameters()) {
    const auto Found = std::find_if(FParameters.begin(), FParameters.end(),
                                    [&](const TQueryParameter& One) { return SameText(One.Name, Name); });
    const bool HasValue = Found != FParameters.end() && (Found->DataType != TKvKind::Null || !Found->Value.IsNull());
    if (HasValue)
      Result.push_back(*Found);
    else
      Missing.push_back(Name);
  }
  if (!Missing.empty())
    throw EDatabaseError(Format("%s: no value is given for %s; its parameters are %s", FText.Failed(), Joined(Missing),
                                Joined(FText.Parameters())));
  return Result;
}

void TDriverQuery::Open() {
  Close();
  Run();
  FIsOpen = true;
}

void TDriverQuery::Close() {
  FRecord->Move(nullptr);
  FCursor.reset();
  FIsOpen = false;
}

void TDriverQuery::Run() {
  FText.Check();
  FRecord->Move(nullptr);
  FCursor.reset();
  TQueryRows Rows = FConnection.OpenQuery(FText, Given());
  Take(Rows.Columns);
  FCursor = std::move(Rows.Cursor);
  if (TConnectionTurn* const Turn = FConnection.Turn())
    FCursor = std::make_unique<TReadAheadCursor>(std::move(FCursor), Rows.Columns.size(), Turn);
  FHasMoved = false;
}

/// Fields stay the same as long as the columns do, so that whoever has found them may run the query again.
void TDriverQuery::Take(const std::vector<TColumnInfo>& Columns) {
  const auto& Fields = FRecord->All();
  const auto IsSame = [](const std::unique_ptr<TField>& Field, const TColumnInfo& Column) {
    return Field->Name() == Column.Name && Field->Kind() == Column.Kind;
  };
  if (std::equal(Fields.begin(), Fields.end(), Columns.begin(), Columns.end(), IsSame)) return;
  if (FIsOpen) throw EDatabaseError(FText.Failed() + " again: its columns are others now; open it anew");
  FRecord = std::make_unique<TCursorRecord>("the query", Columns);
}

bool TDriverQuery::First() {
  if (!FIsOpen) Open();
  if (!FCursor || FHasMoved) Run();
  return Next();
}

bool TDriverQuery::Next() {
  if (!FCursor) return false;
  FHasMoved = true;
  FRecord->Move(FCursor.get());
  if (FCursor->Next()) {
    FRecord->Move(FCursor.get(), FCursor->Decoded());
    return true;
  }
  // Closed at once, so that the engine lets go of what was read.
  FRecord->Move(nullptr);
  FCursor.reset();
  return false;
}

}  // namespace velkrund

#include "jobs/tables/CopyPlan.h"

#include <set>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

TCopyPlan::TCopyPlan(TStandaloneManager& Manager, TEnd Source, TEnd Target, const TStringPairs& Mapping, bool Update)
    : FManager(Manager),
      FSource(std::move(Source)),
      FTarget(std::move(Target)),
      FUpdate(Update),
      FMapping(Mapping, FTarget.DatabaseName) {}

TPlannedCopy TCopyPlan::Plan(const std::string& Table, const std::string& Into) {
  TPlannedCopy Result{Described(FSource, Table), {}};
  Result.Target = Described(FTarget, Into.empty() ? Result.From() : Into);
  RefuseItself(Result);
  RefuseKinds(Result);
  FMapping.Take({Result.From(), Result.Into(), FieldNames(Result.Source), FieldNames(Result.Target)}, Result.Fields,
                Result.Inside);
  RefuseDoubled(Result.Fields, Result.Into());
  CheckFields(Result);
  if (FUpdate) CheckKey(Result);
  return Result;
}

TTableDescription TCopyPlan::Described(const TEnd& End, const std::string& Name) const {
  TSchemaReader& Schema = FManager.Databases().Connection(End.DatabaseName).Schema();
  const std::optional<TTableInfo> Found = Schema.FindTable(Name);
  if (!Found) TTableSearch(FManager, End.DatabaseName, End.DatabaseText).Missing(Name);
  return Schema.Describe(*Found);
}

void TCopyPlan::RefuseItself(const TPlannedCopy& Copy) const {
  if (FManager.IsSameDatabase(FSource.DatabaseName, FTarget.DatabaseName) && Copy.From() == Copy.Into())
    throw EDatabaseError(Format("The table '%s' cannot be copied onto itself: name another table or another database "
                                "that it goes into",
                                Copy.From()),
                         {.Table = Copy.From(), .Database = FTarget.DatabaseText});
}

void TCopyPlan::RefuseDoubled(const TStringPairs& Fields, const std::string& Into) {
  if (const auto Doubled = DoubledTarget(Fields))
    throw ESettingsError(Format("%s fills the field '%s' of table '%s' twice", Setting("Mapping"), *Doubled, Into));
}

/// The fields of the source that go nowhere; an error when none goes anywhere.
void TCopyPlan::CheckFields(TPlannedCopy& Copy) const {
  std::set<int> Taken;
  for (const TColumnInfo& Column : Copy.Target.Columns) {
    const int From = IndexInAnyCase(Copy.Source, OldNameFor(Copy.Fields, Column.Name));
    // What the engine computes takes no value; where both are computed there is none to take.
    const bool IsTaken =
        From >= 0 && (!Column.Generated || Copy.Source.Columns[static_cast<std::size_t>(From)].Generated);
    if (IsTaken) Taken.insert(From);
  }
  for (std::size_t Index = 0; Index < Copy.Source.Columns.size(); ++Index)
    if (!Taken.contains(static_cast<int>(Index))) Copy.Skipped.push_back(Copy.Source.Columns[Index].Name);
  if (Copy.Skipped.size() < Copy.Source.Columns.size() || Copy.Source.Columns.empty()) return;
  throw EDatabaseError(Format("The table '%s' has none of the fields of '%s': %s", Copy.Into(), Copy.From(),
                              JoinedInShort(Copy.Skipped)),
                       {.Code = TErrorCode::FieldMissing, .Table = Copy.Into(), .Database = FTarget.DatabaseText});
}

/// A view shows rows of tables, and takes none; indexes of words have no rows of their own.
void TCopyPlan::RefuseKinds(const TPlannedCopy& Copy) const {
  TTableSearch(FManager, FSource.DatabaseName, FSource.DatabaseText).RefuseIndex(Copy.Source.Table);
  TTableSearch(FManager, FTarget.DatabaseName, FTarget.DatabaseText).RefuseIndex(Copy.Target.Table);
  if (Copy.Target.Table.Kind == TTableKind::View)
    throw EDatabaseError(Format("'%s' is a view: name the table that the rows go into", Copy.Into()),
                         {.Table = Copy.Into(), .Database = FTarget.DatabaseText});
}

/// Rows are found by the whole key, which has to come from somewhere.
void TCopyPlan::CheckKey(const TPlannedCopy& Copy) const {
  bool HasKey = false;
  const std::vector<std::string> From = FieldNames(Copy.Source);
  for (const TColumnInfo& Column : Copy.Target.Columns) {
    if (Column.KeyPosition == 0) continue;
    HasKey = true;
    if (HasName(From, OldNameFor(Copy.Fields, Column.Name))) continue;
    throw EDatabaseError(
        Format("The rows of table '%s' cannot be updated: '%s' has no field for '%s' of its primary key", Copy.Into(),
               Copy.From(), Column.Name),
        {.Table = Copy.Into(), .Column = Column.Name, .Database = FTarget.DatabaseText});
  }
  if (!HasKey)
    throw EDatabaseError(
        Format("The rows of table '%s' cannot be updated: it has no primary key to find them by", Copy.Into()),
        {.Table = Copy.Into(), .Database = FTarget.DatabaseText});
}

}  // namespace velkrund

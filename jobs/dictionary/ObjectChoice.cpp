#include "jobs/dictionary/ObjectChoice.h"

#include <algorithm>

#include "standalone/dictionary/Describer.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

/// A section's header is made of lines, whose ends are trimmed.
bool FitsHeader(const std::string& Name) {
  const auto IsControl = [](char C) { return static_cast<unsigned char>(C) < ' '; };
  return !Name.empty() && Trim(Name) == Name && std::none_of(Name.begin(), Name.end(), IsControl);
}

/// Those of that name.
void AddNamed(std::vector<TDefinedObject>& Chosen, const std::vector<TDefinedObject>& All, const std::string& Name) {
  const auto Add = [&](auto IsIt) {
    const std::size_t Before = Chosen.size();
    std::copy_if(All.begin(), All.end(), std::back_inserter(Chosen), IsIt);
    return Chosen.size() > Before;
  };
  if (Add([&](const TDefinedObject& Object) { return FullName(Object.Table) == Name; })) return;
  if (Add([&](const TDefinedObject& Object) { return HasExactName(Object.Table, Name); })) return;
  Add([&](const TDefinedObject& Object) { return SameText(FullName(Object.Table), Name); });
}

}  // namespace

void RefuseNames(const std::vector<TDefinedObject>& Objects) {
  if (std::vector<std::string> Meeting = MeetingNames(Objects); !Meeting.empty())
    throw EDatabaseError(
        Format("Structures do not tell names apart that differ in case only, or in where a dot belongs: %s. Name one "
               "of them, or rename it",
               JoinedInShort(std::move(Meeting))));
  std::vector<std::string> Unfit;
  for (const TDefinedObject& Object : Objects)
    if (!FitsHeader(FullName(Object.Table))) Unfit.push_back(Format("'%s'", FullName(Object.Table)));
  if (!Unfit.empty())
    throw EDatabaseError(
        Format("Names that the header of a section cannot hold, for blanks at their ends or control "
               "characters: %s. Name the others, or rename them",
               JoinedInShort(std::move(Unfit))));
}

std::vector<TDefinedObject> ChosenObjects(std::vector<TDefinedObject> All, const std::vector<std::string>& Names,
                                          const std::string& Database) {
  if (Names.empty()) {
    RefuseNames(All);
    return All;
  }
  std::vector<TDefinedObject> Result;
  for (const std::string& Name : Names) {
    const std::size_t Before = Result.size();
    AddNamed(Result, All, Name);
    if (Result.size() > Before) continue;
    std::vector<std::string> Known;
    for (const TDefinedObject& Object : All) Known.push_back(FullName(Object.Table));
    throw EDatabaseError(Format("There is no table, view, generator or procedure '%s' in the database %s%s", Name,
                                Database, Known.empty() ? "" : ContentHint(Name, Known, ": it has ")),
                         {.Code = TErrorCode::TableMissing, .Table = Name, .Database = Database});
  }
  RefuseNames(Result);
  return Result;
}

void RefuseInsides(TSchemaReader& Schema, const std::vector<TDefinedObject>& Objects,
                   const std::vector<TDefinedObject>& All) {
  for (const TDefinedObject& Object : Objects) {
    const std::string Name = FullName(Object.Table);
    const std::size_t Dot = Name.rfind('.');
    if (Object.Kind != TDefinedKind::Table || Dot == std::string::npos) continue;
    const auto Outer = std::find_if(All.begin(), All.end(), [&](const TDefinedObject& Other) {
      return Other.Kind == TDefinedKind::Table && SameText(FullName(Other.Table), Name.substr(0, Dot));
    });
    if (Outer == All.end()) continue;
    for (const TColumnInfo& Column : Schema.Describe(Outer->Table).Columns)
      if (Column.Kind == TKvKind::Bytes && SameText(Column.Name, Name.substr(Dot + 1)))
        throw EDatabaseError(
            Format("The structure of table '%s' would be taken for what the field '%s' of table '%s' holds inside. "
                   "Rename one of them, or name other tables",
                   Name, Column.Name, FullName(Outer->Table)),
            {.Table = Name, .Column = Column.Name});
  }
}

std::string_view KindText(TDefinedKind Kind) {
  switch (Kind) {
    case TDefinedKind::Table:
      return "table";
    case TDefinedKind::View:
      return "view";
    case TDefinedKind::Generator:
      return "generator";
    case TDefinedKind::ExecProcedure:
    case TDefinedKind::SelectProcedure:
      break;
  }
  return "procedure";
}

}  // namespace velkrund

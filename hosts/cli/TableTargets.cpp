#include "hosts/cli/TableTargets.h"

#include <algorithm>

#include "hosts/cli/render/Texts.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

std::string RowsText(const TTableTarget& Target) {
  return Format("Table '%s' has %s", Target.Table, Counted(Target.Rows, "row"));
}

}  // namespace

std::vector<TOption> TTableOptions::Options() {
  return {
      NotWith(Switch("--replace", "delete the rows that are there first", Replace), {"--append"}),
      Switch("--append", "keep the rows that are there", Append),
      Choice<bool>("--missing-fields",
                   "fields of the file that the table lacks: pass over them, the report names them, or refuse the "
                   "section (default: skip)",
                   {{"skip", true}, {"error", false}}, SkipMissing),
      Switch("--lenient",
             "values that can not be read become NULL, the report counts them. Without it they are an error", Lenient),
      Switch("--create", "make the database when it does not exist", Create)};
}

void TTableOptions::ApplyTo(TApplicationOptions& Application) const {
  Application.Lenient = Lenient;
  Application.CreateDatabases = Create;
}

std::string TTableTarget::Note() const { return Format("the table keeps its %s", Counted(Rows, "row")); }

std::size_t TTableTargets::Add(TTable& Table) {
  TTableTarget Target{Table.TableName()};
  const auto Same = [&](const TTableTarget& Earlier) { return Earlier.Table == Target.Table; };
  const bool Joins = std::any_of(FTargets.begin(), FTargets.end(), Same);
  if (!FOptions.Replace && !FOptions.Append && !Joins) Target.Rows = Table.RecordCount();
  Target.Append = !FOptions.Replace;
  FTargets.push_back(std::move(Target));
  return FTargets.size() - 1;
}

std::vector<std::string> TTableTargets::Loaded() const {
  std::vector<std::string> Result;
  for (const TTableTarget& Target : FTargets)
    if (!Target.LeaveOut) Result.push_back(Target.Table);
  return Result;
}

bool TTableTargets::Empties(const std::string& Table) const {
  return std::any_of(FTargets.begin(), FTargets.end(), [&](const TTableTarget& Target) {
    return Target.Table == Table && !Target.LeaveOut && !Target.Append;
  });
}

void TTableTargets::Settle(const TSession& Session) {
  const std::string Options = "--replace to delete them first, or --append to keep them";
  std::vector<std::string> Met;
  for (const TTableTarget& Target : FTargets)
    if (Target.Rows > 0) Met.push_back(RowsText(Target));
  if (!Met.empty() && !Session.Answers.CanAsk()) Session.Answers.Ask({Joined(Met) + ".", {}, Options});
  TRepeatedQuestion Question(Session.Answers);
  for (auto Target = FTargets.begin(); Target != FTargets.end(); ++Target) {
    const auto First = std::find_if(FTargets.begin(), Target,
                                    [&](const TTableTarget& Earlier) { return Earlier.Table == Target->Table; });
    if (First != Target) {
      *Target = *First;
      continue;
    }
    if (Target->Rows == 0) continue;
    const TAnswer Answer =
        Question.Ask({Format("%s. Delete them and put the file's in their place?", RowsText(*Target)),
                      {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::None, TAnswer::Append, TAnswer::Cancel},
                      Options});
    Target->Append = Answer != TAnswer::Yes;
    Target->LeaveOut = Answer == TAnswer::No;
  }
}

}  // namespace velkrund

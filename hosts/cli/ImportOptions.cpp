#include "hosts/cli/ImportOptions.h"

namespace velkrund {

std::vector<TOptionGroup> ImportRowsOptions(TSharedOptions& Shared, TImportRowsJob& Job, TOption Target) {
  std::vector<TOption> Result = {
      Shared.DatabaseOption(),
      Required(Text("-i,--input", "FILE", "the file to read; - is standard input", Job.FileName)),
      std::move(Target),
      Pairs("--map", "FILEFIELD=TABLEFIELD",
            "the field TABLEFIELD of the table takes the values of the file's FILEFIELD", Job.Mapping),
      List("--section", "NAME|INDEX", "the section to load; a number is an index as file list shows it", Job.Sections),
      CommaList("--fields", "A,B", "only these fields, as the file has them", Job.Fields)};
  for (TOption& Option : TSharedOptions::LoadingOptions(Job.Policies, Job.CreateDatabase))
    Result.push_back(std::move(Option));
  Result.push_back(TSharedOptions::DryRunOption(Job.Policies));
  Result.push_back(TSharedOptions::AllowLossOption(Job.Policies));
  Result.push_back(TSharedOptions::OnErrorOption(Job.Policies));
  Result.push_back(TSharedOptions::UnfinishedOption(Job.Policies));
  return {{"Options", Result}, Shared.General()};
}

}  // namespace velkrund

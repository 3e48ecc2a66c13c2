#include "hosts/cli/ExportOptions.h"

#include "hosts/cli/line/SharedOptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

TOption OutputOption(TExportJob& Job) {
  return Required(Text("-o,--output", "FILE", "the file to add to; - is standard output", Job.FileName));
}

TOption NotRequired(TOption Option) {
  Option.Required = false;
  return Option;
}

void TakeExportSettings(TExportToFolder& Job, const TExportJob& Said) {
  Job.Policies = Said.Policies;
  Job.Policies.ExistingFiles = Said.Policies.ExistingSections;
  Job.Policies.ExistingSections = TExisting::Ask;
  Job.ReleaseVersion = Said.ReleaseVersion;
  Job.Encoding = Said.Encoding;
}

TOption SectionOption(TExportJob& Job, const std::string& Default) {
  return Text("--section", "NAME", Format("the section's name (default: %s)", Default), Job.SectionName);
}

std::vector<TOption> OtherExportOptions(TExportJob& Job, const std::string& What) {
  TPolicies& Policies = Job.Policies;
  return {
      Choice<std::optional<TKvEncoding>>("--encoding", "of the sections (default: utf8, with rv17 ansi)",
                                         {{"utf8", TKvEncoding::Utf8}, {"ansi", TKvEncoding::Ansi}}, Job.Encoding),
      Choice<TExportReleaseVersion>("--release", "whose readers the file has to suit (default: rv20)",
                                    {{"rv20", TExportReleaseVersion::rv20}, {"rv17", TExportReleaseVersion::rv17}},
                                    Job.ReleaseVersion),
      Choice<TExisting>(
          "--overwrite",
          Format("a section of that name that is there: replace it, or leave it and skip the %s (default: ask)", What),
          {{"ask", TExisting::Ask}, {"yes", TExisting::Replace}, {"no", TExisting::Skip}}, Policies.ExistingSections),
      NotWith(Assigning("--add", "keep a section of that name that is there beside the new one",
                        Policies.ExistingSections, TExisting::Add),
              {"--overwrite"}),
      NotWith(Switch("--new",
                     "make the file afresh: what was there is replaced in one step at the end, and stays if anything "
                     "fails",
                     Job.NewFile),
              {"--overwrite", "--add"}),
      Choice<TMissingSourcePolicy>(
          "--missing",
          Format("a %s that is named and not there: ask, leave it out, which the report says, or stop before anything "
                 "is written (default: stop)",
                 What),
          {{"ask", TMissingSourcePolicy::Ask},
           {"skip", TMissingSourcePolicy::Skip},
           {"stop", TMissingSourcePolicy::Stop}},
          Policies.MissingSources),
      TSharedOptions::DryRunOption(Policies),
      TSharedOptions::AllowLossOption(Policies),
      TSharedOptions::OnErrorOption(Policies)};
}

}  // namespace velkrund

#pragma once

#include <string>

#include "hosts/cli/line/Option.h"
#include "hosts/cli/render/Progress.h"
#include "jobs/application/Application.h"
#include "jobs/policies/Policies.h"

namespace velkrund {

/// Options that mean the same in every command that has them, in groups that commands put together.
struct TSharedOptions {
  std::string ConfigFile;
  std::string Database;
  bool Json = false;
  bool Verbose = false;
  bool Yes = false;
  TProgressStyle Progress = TProgressStyle::Auto;

  TOption DatabaseOption();
  /// --allow-loss, for commands that decode or encode texts.
  static TOption AllowLossOption(TPolicies& Policies);
  /// --on-error, for commands that do several things.
  static TOption OnErrorOption(TPolicies& Policies);
  /// --unfinished, for commands that load all of a file.
  static TOption UnfinishedOption(TPolicies& Policies);
  /// What commands that load tables let one say about rows, fields and values, and about the database.
  static TOption CommitOption(TPolicies& Policies);
  /// What: that has the fields, "the file".
  static std::vector<TOption> FillingOptions(TPolicies& Policies, std::string_view What);
  static std::vector<TOption> LoadingOptions(TPolicies& Policies, bool& CreateDatabase);
  /// For commands that describe tables.
  static TOption ColumnsOption(TPolicies& Policies);
  /// For commands that make tables: whether they may, and what may be left out.
  static std::vector<TOption> CreatingOptions(TPolicies& Policies);
  /// --overwrite, for what is made anew; and what else one can say of it.
  static TOption OverwriteObjectsOption(TPolicies& Policies);
  static TOption LongNamesOption(TPolicies& Policies, std::string_view What);
  static TOption AllowMissingOption(TPolicies& Policies);
  /// For commands that move generators.
  static TOption SetGeneratorsOption(bool& Backwards);
  static TOption DryRunOption(TPolicies& Policies);
  /// --overwrite, for structures that are there.
  static TOption OverwriteStructuresOption(TPolicies& Policies);
  /// --overwrite, for localized texts and languages that are there.
  static TOption OverwriteTextsOption(TPolicies& Policies);
  /// --overwrite, for files that are made afresh.
  static TOption OverwriteFilesOption(TPolicies& Policies);
  static TOption MissingOption(TPolicies& Policies, std::string_view What);
  /// For commands about localized texts.
  static TOption AddLanguagesOption(bool& Add);
  static TOption LanguagesOption(std::vector<std::string>& Languages, std::string_view Whose);
  /// --section-id and --section-ids, which are the same.
  static std::vector<TOption> SectionIDsOptions(std::vector<std::string>& SectionIDs);
  /// --type and --name, for commands about stored structures.
  static TOption TypeOption(std::int32_t& Type) { return Number("--type", "T", "the object type, a number", Type); }
  static TOption NameOption(std::string& Name) {
    return Text("--name", "NAME", "the structure's name, in any case", Name);
  }
  /// Those of a command about one stored structure, all in all.
  std::vector<TOptionGroup> OfOneStructure(std::int32_t& Type, std::string& Name);
  /// What every command has.
  TOptionGroup General();

  TApplicationOptions ApplicationOptions() const;
};

}  // namespace velkrund

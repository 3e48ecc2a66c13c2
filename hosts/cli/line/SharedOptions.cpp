#include "hosts/cli/line/SharedOptions.h"

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

TOption TSharedOptions::DatabaseOption() {
  return Text("-d,--database", "DB",
              "the database: a name of the configuration, or an address such as sqlite:shop.db or "
              "postgresql://user@host/shop; without it the configuration's default database",
              Database);
}

TOption TSharedOptions::AllowLossOption(TPolicies& Policies) {
  return Switch(
      "--allow-loss",
      "go on where characters cannot be kept, because the code page lacks them or the text is malformed, and "
      "where a value of a table, or a name or text of a structure, would come back as another one; the report "
      "counts them. Without it they are an error",
      Policies.AllowLoss);
}

TOption TSharedOptions::OnErrorOption(TPolicies& Policies) {
  return Choice<TOnError>("--on-error", "after a failure: go on with the next one or not (default: ask)",
                          {{"ask", TOnError::Ask}, {"continue", TOnError::Continue}, {"stop", TOnError::Stop}},
                          Policies.OnError);
}

TOption TSharedOptions::UnfinishedOption(TPolicies& Policies) {
  return Choice<TUnfinishedPolicy>("--unfinished",
                                   "a section at the end of the file that is not whole, when all of the file is "
                                   "loaded: refuse the file, or load the "
                                   "sections before it, which the report says (default: error)",
                                   {{"skip", TUnfinishedPolicy::Skip}, {"error", TUnfinishedPolicy::Refuse}},
                                   Policies.Unfinished);
}

std::vector<TOption> TSharedOptions::FillingOptions(TPolicies& Policies, std::string_view What) {
  TExisting& Rows = Policies.ExistingRows;
  return {
      NotWith(Assigning("--replace", "delete the rows that are there first", Rows, TExisting::Replace), {"--append"}),
      Assigning("--append", "keep the rows that are there", Rows, TExisting::Add),
      Choice<TMissingFields>("--missing-fields",
                             Format("fields of %s that the table lacks: refuse them, or pass over them, which the "
                                    "report names (default: error)",
                                    What),
                             {{"skip", TMissingFields::Skip}, {"error", TMissingFields::Refuse}},
                             Policies.MissingFields),
      Choice<TTriggers>("--triggers",
                        "triggers of the tables that are loaded: let them fire, as with every other insert, or switch "
                        "them off for the load; the report names them (default: fire)",
                        {{"fire", TTriggers::Fire}, {"off", TTriggers::Off}}, Policies.Triggers),
      Choice<TIndexPolicy>("--indexes",
                           "indexes of the tables that are loaded, but for unique ones: kept up row by row, or dropped "
                           "and made again behind the rows (default: the latter where many rows come into an empty "
                           "table)",
                           {{"keep", TIndexPolicy::Keep}, {"rebuild", TIndexPolicy::Rebuild}}, Policies.TableIndexes),
      Choice<TBrokenReferencePolicy>(
          "--broken-references",
          "rows that refer to rows which are nowhere: refuse them, or let them in; the "
          "report counts them (default: refuse)",
          {{"refuse", TBrokenReferencePolicy::Refuse}, {"allow", TBrokenReferencePolicy::Allow}},
          Policies.BrokenReferences),
      CommitOption(Policies)};
}

std::vector<TOption> TSharedOptions::LoadingOptions(TPolicies& Policies, bool& CreateDatabase) {
  std::vector<TOption> Result = FillingOptions(Policies, "the file");
  Result.push_back(Choice<TRepeatedTables>(
      "--repeated-tables",
      "several sections for one table, with --replace: refuse them, or load the rows of all (default: error)",
      {{"join", TRepeatedTables::Join}, {"error", TRepeatedTables::Refuse}}, Policies.RepeatedTables));
  Result.push_back(Switch("--lenient",
                          "values that cannot be read become NULL, the report counts them. Without it they are an "
                          "error",
                          Policies.Lenient));
  Result.push_back(Switch("--create", "make the database when it does not exist", CreateDatabase));
  return Result;
}

TOption TSharedOptions::CommitOption(TPolicies& Policies) {
  return Choice<TCommit>("--commit",
                         "what stays together: the whole run, or each section by itself, tables that hang together as "
                         "one (default: run)",
                         {{"run", TCommit::Run}, {"each", TCommit::Each}}, Policies.Commit);
}

TOption TSharedOptions::ColumnsOption(TPolicies& Policies) {
  return Choice<TColumnTypes>("--columns",
                              "the type of a column of SQLite, whose cells may be of another: as declared, or the "
                              "narrowest that holds every cell (default: declared)",
                              {{"declared", TColumnTypes::Declared}, {"scanned", TColumnTypes::Scanned}},
                              Policies.Columns);
}

std::vector<TOption> TSharedOptions::CreatingOptions(TPolicies& Policies) {
  return {Choice<TCreateTables>("--create-tables",
                                "tables that structures describe and the database lacks: make them, or leave their "
                                "rows out (default: ask)",
                                {{"ask", TCreateTables::Ask}, {"yes", TCreateTables::Yes}, {"no", TCreateTables::No}},
                                Policies.CreateTables),
          LongNamesOption(Policies, "tables to be made"),
          Choice<TMadeNames>("--names",
                             "of tables that are made, their fields, keys and indexes: as they are described, or in "
                             "lower case (default: keep)",
                             {{"keep", TMadeNames::Keep}, {"lower", TMadeNames::Lower}}, Policies.Names),
          AllowMissingOption(Policies)};
}

TOption TSharedOptions::LongNamesOption(TPolicies& Policies, std::string_view What) {
  return Choice<TLongNamePolicy>(
      "--long-names",
      Format("%s whose names some databases do not take, beyond 30 characters, or 22 with an automatic key: ask, keep "
             "the name, which the report counts, or do not make them (default: keep)",
             What),
      {{"ask", TLongNamePolicy::Ask}, {"keep", TLongNamePolicy::Keep}, {"cancel", TLongNamePolicy::Cancel}},
      Policies.LongNames);
}

TOption TSharedOptions::AllowMissingOption(TPolicies& Policies) {
  return CommaList("--allow-missing", "KIND,...",
                   "what may be left out where the engine has no words for it, and the report names: checks, "
                   "collations, computed, defaults, generators, indexes, keys, options, procedures, references, "
                   "schemas, triggers, types, views",
                   Policies.AllowMissing);
}

TOption TSharedOptions::OverwriteObjectsOption(TPolicies& Policies) {
  return Choice<TExisting>("--overwrite", "what is there already: make it anew, or leave it as it is (default: ask)",
                           {{"ask", TExisting::Ask}, {"yes", TExisting::Replace}, {"no", TExisting::Skip}},
                           Policies.ExistingObjects);
}

TOption TSharedOptions::SetGeneratorsOption(bool& Backwards) {
  return Switch(
      "--set-generators",
      "move generators to where the file says that they stood, be it backwards; numbers may then be given out "
      "again. Without it one that stands further stays there",
      Backwards);
}

TOption TSharedOptions::DryRunOption(TPolicies& Policies) {
  return Switch("--dry-run", "show what would be done, with the statements in order, and change nothing",
                Policies.DryRun);
}

TOption TSharedOptions::OverwriteStructuresOption(TPolicies& Policies) {
  return Choice<TExisting>("--overwrite", "a structure that is there: replace it, or leave it as it is (default: ask)",
                           {{"ask", TExisting::Ask}, {"yes", TExisting::Replace}, {"no", TExisting::Skip}},
                           Policies.ExistingStructures);
}

TOption TSharedOptions::OverwriteTextsOption(TPolicies& Policies) {
  return Choice<TExisting>(
      "--overwrite", "a text, or a language of other names, that is there: replace it, or keep it (default: ask)",
      {{"ask", TExisting::Ask}, {"yes", TExisting::Replace}, {"no", TExisting::Skip}}, Policies.ExistingTexts);
}

TOption TSharedOptions::OverwriteFilesOption(TPolicies& Policies) {
  return Choice<TExisting>("--overwrite", "a file that is there: replace it, or leave it as it is (default: ask)",
                           {{"ask", TExisting::Ask}, {"yes", TExisting::Replace}, {"no", TExisting::Skip}},
                           Policies.ExistingFiles);
}

TOption TSharedOptions::MissingOption(TPolicies& Policies, std::string_view What) {
  return Choice<TMissingSourcePolicy>(
      "--missing",
      Format("a %s that is named and not there: ask, leave it out, which the report says, or stop before anything is "
             "changed (default: stop)",
             What),
      {{"ask", TMissingSourcePolicy::Ask}, {"skip", TMissingSourcePolicy::Skip}, {"stop", TMissingSourcePolicy::Stop}},
      Policies.MissingSources);
}

TOption TSharedOptions::AddLanguagesOption(bool& Add) {
  return Switch("--add-languages", "add languages that the database lacks; without it they are an error", Add);
}

TOption TSharedOptions::LanguagesOption(std::vector<std::string>& Languages, std::string_view Whose) {
  return CommaList("--languages", "A,B", Format("only these languages (default: all of %s)", Whose), Languages);
}

std::vector<TOption> TSharedOptions::SectionIDsOptions(std::vector<std::string>& SectionIDs) {
  return {List("--section-id", "ID", "a resource, that is a section of strings, in any case", SectionIDs),
          CommaList("--section-ids", "S,T", "several of them", SectionIDs)};
}

std::vector<TOptionGroup> TSharedOptions::OfOneStructure(std::int32_t& Type, std::string& Name) {
  return {{"Options", {DatabaseOption(), TypeOption(Type), Required(NameOption(Name))}}, General()};
}

TOptionGroup TSharedOptions::General() {
  return {
      "General options, anywhere on the line",
      {Text("--config", "FILE",
            "the configuration; without it $VELKRUND_CONFIG, ./velkrund.toml, then the one in the user's "
            "configuration folder",
            ConfigFile),
       Switch("--json", "print the result as one JSON document", Json),
       Choice<TProgressStyle>("--progress",
                              "how progress is shown (default: auto, a bar on a terminal); json: standard error "
                              "carries events for programs and nothing else",
                              {{"auto", TProgressStyle::Auto},
                               {"bar", TProgressStyle::Bar},
                               {"plain", TProgressStyle::Plain},
                               {"none", TProgressStyle::None},
                               {"json", TProgressStyle::Json}},
                              Progress),
       Switch("-y,--yes", "answer yes to questions that have no option of their own", Yes),
       Switch(
           "-v,--verbose",
           "trace what is done to standard error, or to the configuration's trace file; errors come with their class, "
           "code and causes",
           Verbose)},
      true};
}

TApplicationOptions TSharedOptions::ApplicationOptions() const {
  TApplicationOptions Result;
  Result.ConfigFile = ConfigFile;
  Result.Trace = Verbose;
  Result.KeepsStandardError = Progress == TProgressStyle::Json;
  return Result;
}

}  // namespace velkrund

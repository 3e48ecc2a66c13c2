#pragma once

#include "jobs/policies/Policies.h"
#include "velkrund/operations/PropertyAccess.h"

namespace velkrund {

/// The rows of property tables for policies, which every job that obeys one has in the same words. Record: the member
/// of the operation that holds them.
template <auto Record>
struct TPolicyProperties {
  static constexpr std::string_view RowChoices[] = {"ask", "skip", "replace", "append"};
  static constexpr std::string_view SectionChoices[] = {"ask", "skip", "replace", "add"};
  static constexpr std::string_view StructureChoices[] = {"ask", "skip", "replace", "update"};
  static constexpr std::string_view ObjectChoices[] = {"ask", "skip", "replace"};
  static constexpr std::string_view ErrorChoices[] = {"ask", "continue", "stop"};
  static constexpr std::string_view FieldChoices[] = {"skip", "refuse"};
  static constexpr std::string_view CommitChoices[] = {"run", "each"};
  static constexpr std::string_view TriggerChoices[] = {"fire", "off"};
  static constexpr std::string_view IndexChoices[] = {"auto", "keep", "rebuild"};
  static constexpr std::string_view ReferenceChoices[] = {"refuse", "allow"};
  static constexpr std::string_view LongNameChoices[] = {"ask", "keep", "cancel"};
  static constexpr std::string_view SourceChoices[] = {"ask", "skip", "stop"};
  static constexpr std::string_view RepeatChoices[] = {"refuse", "join"};
  static constexpr std::string_view UnfinishedChoices[] = {"refuse", "skip"};
  static constexpr std::string_view ColumnChoices[] = {"declared", "scanned"};
  static constexpr std::string_view NameChoices[] = {"keep", "lower"};
  static constexpr std::string_view CreateChoices[] = {"ask", "yes", "no"};

  static constexpr TProperty ExistingRows = ChoiceOf<Record, &TPolicies::ExistingRows>(
      "ExistingRows", "rows that are in a table already: ask, leave the table out, delete them first, keep them",
      RowChoices);
  static constexpr TProperty ExistingSections = ChoiceOf<Record, &TPolicies::ExistingSections>(
      "ExistingSections", "a section of the same name in the file: ask, leave out, take its place, stand beside it",
      SectionChoices);
  static constexpr TProperty ExistingStructures = ChoiceOf<Record, &TPolicies::ExistingStructures>(
      "ExistingStructures", "a structure that is stored already: ask, leave it as it is, replace it, update it",
      StructureChoices);
  static constexpr TProperty ExistingObjects = ChoiceOf<Record, &TPolicies::ExistingObjects>(
      "ExistingObjects", "what is in the database already: ask, leave it as it is, make it anew", ObjectChoices);
  static constexpr TProperty ExistingTexts = ChoiceOf<Record, &TPolicies::ExistingTexts>(
      "ExistingTexts", "a localized text, or a language of other names, that is there: ask, keep it, replace it",
      ObjectChoices);
  static constexpr TProperty ExistingFiles = ChoiceOf<Record, &TPolicies::ExistingFiles>(
      "ExistingFiles", "a file that is there and would be made afresh: ask, leave it as it is, replace it",
      ObjectChoices);
  static constexpr TProperty OnError = ChoiceOf<Record, &TPolicies::OnError>(
      "OnError", "after something failed: ask, go on with the next one, stop", ErrorChoices);
  static constexpr TProperty MissingFields = ChoiceOf<Record, &TPolicies::MissingFields>(
      "MissingFields", "fields of the file that the table lacks: pass over them, refuse the section", FieldChoices);
  static constexpr TProperty RepeatedTables = ChoiceOf<Record, &TPolicies::RepeatedTables>(
      "RepeatedTables", "several sections for one table that is replaced: refuse them, load the rows of all",
      RepeatChoices);
  static constexpr TProperty Unfinished = ChoiceOf<Record, &TPolicies::Unfinished>(
      "Unfinished", "unfinished sections at the end of a file, when none are named: refuse the file, pass over them",
      UnfinishedChoices);
  static constexpr TProperty Commit = ChoiceOf<Record, &TPolicies::Commit>(
      "Commit", "what stays together: the whole run, or tables that hang together by themselves", CommitChoices);
  static constexpr TProperty Triggers = ChoiceOf<Record, &TPolicies::Triggers>(
      "Triggers", "of the tables that are loaded: they fire, or are switched off meanwhile", TriggerChoices);
  static constexpr TProperty TableIndexes =
      ChoiceOf<Record, &TPolicies::TableIndexes>("TableIndexes",
                                                 "that are there for queries alone: made again behind many rows for an "
                                                 "empty table, kept up row by row, made again",
                                                 IndexChoices);
  static constexpr TProperty BrokenReferences = ChoiceOf<Record, &TPolicies::BrokenReferences>(
      "BrokenReferences", "rows that refer to rows which are nowhere: refuse them, let them in; counted",
      ReferenceChoices);
  static constexpr TProperty CreateTables = ChoiceOf<Record, &TPolicies::CreateTables>(
      "CreateTables", "tables that structures describe and the database lacks: ask, make them, leave them out",
      CreateChoices);
  static constexpr TProperty MadeNames = ChoiceOf<Record, &TPolicies::Names>(
      "MadeNames", "of tables that are made: as they are described, in lower case", NameChoices);
  static constexpr TProperty AllowMissing = PropertyOf<Record, &TPolicies::AllowMissing>(
      "AllowMissing", "kinds of things that may be left out where the engine has no words for them: checks, triggers");
  static constexpr TProperty DryRun = PropertyOf<Record, &TPolicies::DryRun>(
      "DryRun", "show what would be done, and the statements, and change nothing");
  static constexpr TProperty Columns = ChoiceOf<Record, &TPolicies::Columns>(
      "Columns", "a column's type where its cells may be of another: as declared, or the narrowest that holds them all",
      ColumnChoices);
  static constexpr TProperty LongNames = ChoiceOf<Record, &TPolicies::LongNames>(
      "LongNames",
      "names of new tables and views that some databases do not take: ask, keep, do not make them; counted",
      LongNameChoices);
  static constexpr TProperty MissingSources = ChoiceOf<Record, &TPolicies::MissingSources>(
      "MissingSources", "what is to be exported and not there: ask, leave it out, stop", SourceChoices);
  static constexpr TProperty AllowLoss = PropertyOf<Record, &TPolicies::AllowLoss>(
      "AllowLoss", "go on where characters or values cannot be kept; counted");
  static constexpr TProperty Lenient =
      PropertyOf<Record, &TPolicies::Lenient>("Lenient", "values that cannot be read become NULL; counted");
  static constexpr TProperty Yes =
      PropertyOf<Record, &TPolicies::Yes>("Yes", "answer to questions that have no policy of their own");
};

}  // namespace velkrund

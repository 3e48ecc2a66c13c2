#include "jobs/run/JobInterface.h"

namespace velkrund {

namespace {

constexpr std::string_view RowChoices[] = {"ask", "skip", "replace", "append"};
constexpr std::string_view SectionChoices[] = {"ask", "skip", "replace", "add"};
constexpr std::string_view StructureChoices[] = {"ask", "skip", "replace", "update"};
constexpr std::string_view ErrorChoices[] = {"ask", "continue", "stop"};
constexpr std::string_view FieldChoices[] = {"skip", "refuse"};

constexpr TProperty Base[] = {
    ReadOnlyOf<&TJob::Report>("Report", "the JSON document about the last run; empty before the first"),
};

constexpr TProperty Policies[] = {
    ChoiceOf<&TPolicyJob::Policies, &TPolicies::ExistingRows>(
        "ExistingRows", "rows that are in a table already: ask, leave the table out, delete them first, keep them",
        RowChoices),
    ChoiceOf<&TPolicyJob::Policies, &TPolicies::ExistingSections>(
        "ExistingSections", "a section of the same name in the file: ask, leave out, take its place, stand beside it",
        SectionChoices),
    ChoiceOf<&TPolicyJob::Policies, &TPolicies::ExistingStructures>(
        "ExistingStructures", "a structure that is stored already: ask, leave it as it is, replace it, update it",
        StructureChoices),
    ChoiceOf<&TPolicyJob::Policies, &TPolicies::OnError>(
        "OnError", "after something failed: ask, go on with the next one, stop", ErrorChoices),
    ChoiceOf<&TPolicyJob::Policies, &TPolicies::MissingFields>(
        "MissingFields", "fields of the file that the table lacks: pass over them, refuse the section", FieldChoices),
    PropertyOf<&TPolicyJob::Policies, &TPolicies::AllowLoss>("AllowLoss",
                                                             "go on where characters can not be kept; counted"),
    PropertyOf<&TPolicyJob::Policies, &TPolicies::Lenient>("Lenient",
                                                           "values that can not be read become NULL; counted"),
    PropertyOf<&TPolicyJob::Policies, &TPolicies::Yes>("Yes", "answer to questions that have no policy of their own"),
};

using TCounted = TSectionsJob;

constexpr TProperty Counts[] = {
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Count(TItemState::Done); }>(
        "SectionsDone", "sections that were moved in the last run"),
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Count(TItemState::LeftOut); }>(
        "SectionsLeftOut", "sections that an answer left out"),
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Count(TItemState::Failed); }>("SectionsFailed",
                                                                                            "sections that failed"),
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Totals().Rows.value_or(0); }>(
        "Rows", "rows of the sections that were moved"),
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Totals().NullsMade; }>(
        "NullsMade", "values that could not be read and became NULL"),
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Totals().Losses.Unrepresentable; }>(
        "CharactersLost", "characters that the code page lacks"),
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Totals().Losses.Malformed; }>(
        "MalformedCharacters", "malformed characters that were replaced"),
};

}  // namespace

constinit const TPropertyTable JobProperties{&TUtilOperationInterface::Descriptor.Properties, Base};
constinit const TPropertyTable PolicyJobProperties{&JobProperties, Policies};
constinit const TPropertyTable SectionsJobProperties{&PolicyJobProperties, Counts};

}  // namespace velkrund

#include "jobs/run/JobInterface.h"

namespace velkrund {

namespace {

constexpr TProperty Base[] = {
    ReadOnlyOf<&TJob::Report>("Report", "the JSON document about the last run; empty before the first"),
};

using TCounted = TSectionsJob;

template <TItemState State>
constexpr TProperty CountOf(std::string_view Name, std::string_view Help) {
  return ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Count(State); }>(Name, Help);
}

constexpr TProperty Counts[] = {
    CountOf<TItemState::Done>("SectionsDone", "sections that were moved in the last run"),
    CountOf<TItemState::LeftOut>("SectionsLeftOut", "sections that an answer left out"),
    CountOf<TItemState::Failed>("SectionsFailed", "sections that failed"),
    CountOf<TItemState::Cancelled>("SectionsCancelled", "sections during which the run was cancelled"),
    CountOf<TItemState::NotReached>("SectionsNotReached", "sections that the run did not come to"),
    CountOf<TItemState::TakenBack>("SectionsTakenBack", "sections that were undone when the rest failed"),
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Totals().Rows.value_or(0); }>(
        "Rows", "rows of the sections that were moved"),
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Totals().Bytes; }>(
        "Bytes", "bytes of the sections that were moved"),
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Totals().NullsMade; }>(
        "NullsMade", "values that could not be read and became NULL"),
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Totals().ValuesChanged; }>(
        "ValuesChanged", "values that the file or the table cannot hold as they are"),
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Totals().Losses.Unrepresentable; }>(
        "CharactersLost", "characters that the code page lacks"),
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Totals().Losses.Malformed; }>(
        "MalformedCharacters", "malformed characters that were replaced"),
    ReadOnlyOf<[](const TCounted& Job) { return Job.Outcome().Totals().Losses.Altered; }>(
        "TextsAltered", "names and texts of structures that will be read as others than they are"),
};

}  // namespace

constinit const TPropertyTable JobProperties{&TUtilOperationInterface::Descriptor.Properties, Base};
constinit const TPropertyTable SectionsJobProperties{&JobProperties, Counts};

}  // namespace velkrund

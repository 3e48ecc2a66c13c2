#include "hosts/cli/line/Command.h"

#include <algorithm>
#include <map>

namespace velkrund {

namespace {

/// What people give where a job has a setting.
const std::map<std::string_view, std::string_view> OptionNames = {
    {"AllowLoss", "--allow-loss"},
    {"ClearRoot", "--no-clear-root"},
    {"AllowMissing", "--allow-missing"},
    {"CreateDatabase", "--create"},
    {"CreateTables", "--create-tables"},
    {"DatabaseName", "--database"},
    {"Columns", "--columns"},
    {"DropData", "--drop-data"},
    {"Encoding", "--encoding"},
    {"Engine", "--engine"},
    {"ExcludedBLOBFields", "--exclude-blobs"},
    {"ExistingSections", "--overwrite"},
    {"ExistingObjects", "--overwrite"},
    {"ExistingStructures", "--overwrite yes"},
    {"Fields", "--fields"},
    {"GeneratorNames", "--name"},
    {"FileNames", "--input"},
    {"Indexes", "INDEX"},
    {"Lenient", "--lenient"},
    {"LongNames", "--long-names"},
    {"Mapping", "--map"},
    {"Merge", "--merge"},
    {"MissingFields", "--missing-fields"},
    {"MissingSources", "--missing"},
    {"Commit", "--commit"},
    {"Triggers", "--triggers"},
    {"BrokenReferences", "--broken-references"},
    {"MadeNames", "--names"},
    {"Names", "--name"},
    {"NewFile", "--new"},
    {"ObjectName", "--name"},
    {"ObjectNames", "NAME"},
    {"ObjectType", "--type"},
    {"Parameters", "--param"},
    {"ProcedureName", "NAME"},
    {"Query", "--sql"},
    {"QueryTarget", "--target"},
    {"ReleaseVersion", "--release"},
    {"RepeatedTables", "--repeated-tables"},
    {"RootNode", "--root"},
    {"Selection", "--where"},
    {"SetGenerators", "--set-generators"},
    {"SourceDatabaseName", "--from"},
    {"Structures", "--structures"},
    {"SectionName", "--section"},
    {"Sections", "--section"},
    {"StartValue", "--start-value"},
    {"TableName", "--table"},
    {"TargetTableName", "--to-table"},
    {"Update", "--update"},
};

}  // namespace

std::string_view TCommand::Remedy(TPolicy Policy) const {
  switch (Policy) {
    case TPolicy::ExistingRows:
      return "--replace to delete them first, or --append to keep them";
    case TPolicy::ExistingSections:
      return "--overwrite yes to replace, --overwrite no to leave it out, or --add to keep both";
    case TPolicy::ExistingStructures:
      return "--overwrite yes to replace them, or --overwrite no to leave them out";
    case TPolicy::ExistingObjects:
      return "--overwrite yes to make them anew, or --overwrite no to leave them as they are";
    case TPolicy::OnError:
      return "--on-error continue or --on-error stop";
    case TPolicy::CreateTables:
      return "--create-tables yes to make them, or --create-tables no to leave them out";
    case TPolicy::LongNames:
      return "--long-names keep or --long-names cancel";
    case TPolicy::MissingSources:
      return "--missing skip or --missing stop";
    case TPolicy::QueryTarget:
      return "--target TABLE, with --map FILEFIELD=TABLEFIELD for fields of other names";
    case TPolicy::Yes:
      break;
  }
  return "--yes";
}

const TOptionGroup& GeneralOptions(const std::vector<TDeclaredCommand>& Commands) {
  const std::vector<TOptionGroup>& Groups = Commands.front().Groups;
  return *std::find_if(Groups.begin(), Groups.end(), [](const TOptionGroup& Group) { return Group.IsGeneral; });
}

std::string TCommand::OptionOf(std::string_view Property) const {
  const auto Option = OptionNames.find(Property);
  return std::string(Option == OptionNames.end() ? Property : Option->second);
}

}  // namespace velkrund

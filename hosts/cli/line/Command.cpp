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
    {"AddLanguages", "--add-languages"},
    {"ExistingObjects", "--overwrite"},
    {"ExistingFiles", "--overwrite"},
    {"ExistingTexts", "--overwrite"},
    {"ExistingStructures", "--overwrite yes"},
    {"Fields", "--fields"},
    {"GeneratorNames", "--name"},
    {"FileNames", "--input"},
    {"Folder", "--folder"},
    {"FuzzyEntries", "--fuzzy"},
    {"Language", "--language"},
    {"LanguageName", "NAME"},
    {"Languages", "--languages"},
    {"Indexes", "INDEX"},
    {"Lenient", "--lenient"},
    {"LongNames", "--long-names"},
    {"Mapping", "--map"},
    {"Merge", "--merge"},
    {"MissingFields", "--missing-fields"},
    {"MissingSources", "--missing"},
    {"Commit", "--commit"},
    {"Triggers", "--triggers"},
    {"TableIndexes", "--indexes"},
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
    {"SourceLanguage", "--source-language"},
    {"Structures", "--structures"},
    {"SectionID", "--section-id"},
    {"SectionIDs", "--section-ids"},
    {"SectionName", "--section"},
    {"Sections", "--section"},
    {"StartValue", "--start-value"},
    {"StringID", "STRING-ID"},
    {"StringIDs", "ID"},
    {"TableName", "--table"},
    {"TargetSectionID", "--to-section-id"},
    {"TargetTableName", "--to-table"},
    {"Unfinished", "--unfinished"},
    {"Update", "--update"},
};

}  // namespace

TLText TCommand::Remedy(TPolicy Policy) const {
  switch (Policy) {
    case TPolicy::ExistingRows:
      return LText("M_Velkrund_Cli_GiveReplaceOrAppend");
    case TPolicy::ExistingSections:
      return LText("M_Velkrund_Cli_GiveOverwriteOrAdd");
    case TPolicy::ExistingStructures:
      return LText("M_Velkrund_Cli_GiveOverwriteThem");
    case TPolicy::ExistingObjects:
      return LText("M_Velkrund_Cli_GiveMakeAnew");
    case TPolicy::ExistingTexts:
      return LText("M_Velkrund_Cli_GiveReplaceTexts");
    case TPolicy::ExistingFiles:
      return LText("M_Velkrund_Cli_GiveReplaceFile");
    case TPolicy::OnError:
      return LText("M_Velkrund_Cli_GiveOnError");
    case TPolicy::CreateTables:
      return LText("M_Velkrund_Cli_GiveCreateTables");
    case TPolicy::LongNames:
      return LText("M_Velkrund_Cli_GiveLongNames");
    case TPolicy::MissingSources:
      return LText("M_Velkrund_Cli_GiveMissing");
    case TPolicy::QueryTarget:
      return LText("M_Velkrund_Cli_GiveTarget");
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

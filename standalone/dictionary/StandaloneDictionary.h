#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "standalone/databases/StandaloneManager.h"
#include "standalone/dictionary/ScriptRun.h"
#include "velkrund/platform/dictionary/Dictionary.h"

namespace velkrund {

/// The data dictionary over the installed structures of databases: tables are made by what the engine's own words say,
/// and their structures then learn the words that the engine has for what was made. Used by one thread at a time.
class TStandaloneDictionary final : public TDictionary {
 public:
  /// Manager: borrowed; the installed application manager.
  explicit TStandaloneDictionary(TStandaloneManager& Manager);
  ~TStandaloneDictionary() override;

  TDicTable& GetDicTable(const std::string& DatabaseName) override;
  std::string GetPatternName(const std::string& TableName, const std::string& DatabaseName) override;
  std::string GetCreateTablePatternString(const std::string& PatternName, const std::string& DatabaseName) override;
  void CreateTableByDef(const std::string& DatabaseName, const TDicTableDescription& Description,
                        const std::string& Pattern, TTableScriptPart Part, bool Replace) override;
  void StoreWords(const std::string& DatabaseName, const std::vector<std::string>& TableNames) override;
  void CreateIndexesByDef(const std::string& DatabaseName, const TDicTableDescription& Description) override;
  TTableStage StageOf(const std::string& DatabaseName, const std::string& TableName) override;
  void SetStage(const std::string& DatabaseName, const std::string& TableName, TTableStage Stage) override;
  void DropTable(const std::string& DatabaseName, const TDicTableDescription& Description) override;

  // For hosts.
  /// What engines had no words for.
  TGapBook& Gaps() { return FGaps; }
  /// What CreateTableByDef runs, without its gaps being allowed.
  TScript Script(const std::string& DatabaseName, const TDicTableDescription& Description, const std::string& Pattern,
                 TTableScriptPart Part);
  /// The same of CreateIndexesByDef.
  TScript IndexScript(const std::string& DatabaseName, const TDicTableDescription& Description);

 private:
  class TStoredTables;

  std::optional<TTableInfo> FindLinks(const std::string& DatabaseName);

  TStandaloneManager& FManager;
  TGapBook FGaps;
  // By the name of the database that was asked for.
  std::map<std::string, std::unique_ptr<TStoredTables>> FTables;
  std::map<std::string, std::int64_t> FWithoutLinks;  // the transaction that has found no links to patterns
};

}  // namespace velkrund

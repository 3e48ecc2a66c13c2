#pragma once

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "jobs/dictionary/ScriptOrder.h"
#include "jobs/report/StructureId.h"
#include "jobs/run/JobInterface.h"
#include "standalone/drivers/ScriptWriter.h"

namespace velkrund {

/// Shows the statements that would make what the stored structures of a database describe, in an order in which they
/// can be run: generators, tables with the types that they need, procedures and views, and of all tables the indexes,
/// foreign keys, triggers and comments. Runs none of them.
class TJobScriptObjects final : public TJob {
 public:
  std::vector<std::string> Names;  // of structures, in any case; none: all that describe objects
  std::string Engine;              // "sqlite", "postgresql"; empty: the database's own

  /// What the last run made. Gaps: what the engine has no words for, which a run of the statements leaves out.
  const TScript& Script() const { return FScript; }
  /// The statements as the engine's shell takes them, with the gaps as comments.
  std::string Text() const { return FText; }
  std::string CommandName() const override { return "dictionary script"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override {
    FScript = {};
    FOnce.clear();
    FText.clear();
  }
  std::string_view Schema() const override { return "script"; }
  void Describe(TDocument& Document) const override;

 private:
  std::vector<TStructureId> Chosen() const;
  const TScriptWriter& Writer() const;
  void Add(TScript Script);
  void AddAll(std::vector<TObjectScript> Scripts);
  using TTables = std::vector<std::pair<TDicTableDescription, std::string>>;  // with the patterns they are made by
  TTables TablesOf(const std::vector<TStructureId>& Structures, const TScriptWriter& Writer);
  std::vector<TObjectScript> PartsOf(TTables& Tables, bool TTableParts::*Part, const TScriptWriter& Writer);
  /// Of what is no table.
  void ScriptOf(const TStructureId& Structure, const TScriptWriter& Writer, std::vector<TObjectScript>& Result);

  std::set<std::string> FOnce;  // what is in the script and needs to be there once
  TScript FScript;
  std::string FText;
};

using TJobScriptObjectsInterface = TJobInterface<TJobScriptObjects>;

}  // namespace velkrund

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jobs/report/StructureId.h"
#include "jobs/run/JobInterface.h"
#include "standalone/drivers/ScriptWriter.h"

namespace velkrund {

/// Shows the statements that would make what the stored structures of a database describe, in an order in which they
/// can be run: generators, tables, their indexes, foreign keys, triggers and comments, views, procedures. Runs none of
/// them.
class TJobScriptObjects final : public TJob {
 public:
  std::vector<std::string> Names;  // of structures, in any case; none: all that describe objects
  std::string Engine;              // "sqlite", "postgresql"; empty: the database's own

  /// What the last run made. Gaps: what the engine has no words for, which a run of the statements leaves out.
  const TScript& Script() const { return FScript; }
  /// The statements as the engine's shell takes them, with the gaps as comments.
  std::string Text() const;
  std::string CommandName() const override { return "dictionary script"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override { FScript = {}; }
  std::string_view Schema() const override { return "script"; }
  void Describe(TDocument& Document) const override;

 private:
  std::vector<TStructureId> Chosen() const;
  const TScriptWriter& Writer() const;
  void Add(TScript Script);
  void AddTables(const std::vector<TStructureId>& Structures, const TScriptWriter& Writer);
  void AddOthers(const std::vector<TStructureId>& Structures, int ObjectType, const TScriptWriter& Writer);

  TScript FScript;
};

using TJobScriptObjectsInterface = TJobInterface<TJobScriptObjects>;

}  // namespace velkrund

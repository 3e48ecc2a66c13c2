#pragma once

#include "standalone/drivers/ScriptWriter.h"

namespace velkrund {

class TPostgreSQLScriptWriter final : public TScriptWriter {
 public:
  std::string_view Engine() const override { return "postgresql"; }
  std::string TablePattern() const override;
  TScript Table(const TDicTableDescription& Table, const TTableParts& Parts, const std::string& Pattern) const override;
  TScript View(const TDicViewDescription& View, bool Replace) const override;
  TScript Generator(const TDicGeneratorDescription& Generator, std::optional<std::int64_t> Start) const override;
  TScript AlterGenerator(const TDicGeneratorDescription& Generator, std::optional<std::int64_t> Start) const override;
  TScript SetGenerator(const TDicGeneratorDescription& Generator, std::int64_t Value) const override;
  TScript Procedure(const TDicProcedureDescription& Procedure, bool Replace) const override;
  std::string ShellText(const TScriptStatement& Statement) const override;
  std::string DropTable(const TDicObjectDescription& Table) const override;
  std::string DropView(const TDicViewDescription& View) const override;
  std::string DropGenerator(const TDicObjectDescription& Generator) const override;
  std::string DropProcedure(const TDicProcedureDescription& Procedure) const override;
};

}  // namespace velkrund

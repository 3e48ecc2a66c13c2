#pragma once

#include "standalone/drivers/Definitions.h"

namespace velkrund {

class TPostgreSQLSession;

class TPostgreSQLDefinitionReader final : public TDefinitionReader {
 public:
  explicit TPostgreSQLDefinitionReader(TPostgreSQLSession& Session) : FSession(Session) {}

  std::vector<TDefinedObject> Objects() override;
  TDicTableDescription Table(const TTableInfo& Table, const TDescribeOptions& Options) override;
  TDicViewDescription View(const TTableInfo& View) override;
  TDicGeneratorDescription Generator(const TTableInfo& Generator) override;
  TDicProcedureDescription Procedure(const TTableInfo& Procedure) override;
  std::int64_t GeneratorValue(const TTableInfo& Generator) override;
  std::vector<std::string> LeftBehind() override;

 private:
  TPostgreSQLSession& FSession;
};

}  // namespace velkrund

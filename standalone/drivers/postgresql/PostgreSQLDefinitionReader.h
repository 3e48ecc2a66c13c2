#pragma once

#include "standalone/drivers/Definitions.h"

namespace velkrund {

class TPostgreSQLSession;

/// Names of the current schema, as it was when the connection was made, stand without a schema in what is described.
class TPostgreSQLDefinitionReader final : public TDefinitionReader {
 public:
  /// Session: borrowed.
  explicit TPostgreSQLDefinitionReader(TPostgreSQLSession& Session) : FSession(Session) {}

  std::vector<TDefinedObject> Objects() override;
  TDicTableDescription Table(const TTableInfo& Table, const TDescribeOptions& Options) override;
  std::vector<TDicTableDescription> Tables(const std::vector<TTableInfo>& Tables,
                                           const TDescribeOptions& Options) override;
  TDicViewDescription View(const TTableInfo& View) override;
  TDicGeneratorDescription Generator(const TTableInfo& Generator) override;
  TDicProcedureDescription Procedure(const TTableInfo& Procedure) override;
  /// Also of a sequence that a column owns.
  std::int64_t GeneratorValue(const TTableInfo& Generator) override;
  std::vector<std::string> LeftBehind() override;

 private:
  std::vector<TDicTableDescription> DescribeAll(const std::vector<TTableInfo>& Tables);

  TPostgreSQLSession& FSession;
};

}  // namespace velkrund

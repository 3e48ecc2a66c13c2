#pragma once

#include "standalone/drivers/Definitions.h"

struct sqlite3;

namespace velkrund {

class TSQLiteDefinitionReader final : public TDefinitionReader {
 public:
  explicit TSQLiteDefinitionReader(sqlite3* Database) : FDatabase(Database) {}

  std::vector<TDefinedObject> Objects() override;
  TDicTableDescription Table(const TTableInfo& Table, const TDescribeOptions& Options) override;
  TDicViewDescription View(const TTableInfo& View) override;
  TDicGeneratorDescription Generator(const TTableInfo& Generator) override;
  TDicProcedureDescription Procedure(const TTableInfo& Procedure) override;
  std::int64_t GeneratorValue(const TTableInfo& Generator) override;
  std::vector<std::string> LeftBehind() override;

 private:
  sqlite3* const FDatabase;
};

}  // namespace velkrund

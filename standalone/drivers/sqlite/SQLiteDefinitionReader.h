#pragma once

#include "standalone/drivers/Definitions.h"
#include "standalone/drivers/sqlite/SQLiteDatabase.h"
#include "standalone/drivers/sqlite/SQLiteSchemaReader.h"

namespace velkrund {

/// The engine has neither generators nor procedures.
class TSQLiteDefinitionReader final : public TDefinitionReader {
 public:
  /// Both outlive it.
  TSQLiteDefinitionReader(TSQLiteDatabase& Database, TSQLiteSchemaReader& Schema)
      : FDatabase(Database), FSchema(Schema) {}

  /// A text index comes behind its table.
  std::vector<TDefinedObject> Objects() override;
  TDicTableDescription Table(const TTableInfo& Table, const TDescribeOptions& Options) override;
  TDicViewDescription View(const TTableInfo& View) override;
  TDicGeneratorDescription Generator(const TTableInfo& Generator) override;
  TDicProcedureDescription Procedure(const TTableInfo& Procedure) override;
  std::int64_t GeneratorValue(const TTableInfo& Generator) override;
  std::vector<std::string> LeftBehind() override;

 private:
  bool KeyIsRowNumber(const TTableDescription& Table);
  void ResolveReferences(TDicTableDescription& Table);

  TSQLiteDatabase& FDatabase;
  TSQLiteSchemaReader& FSchema;
};

}  // namespace velkrund

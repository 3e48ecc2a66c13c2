#include "standalone/structures/StructureStore.h"

#include "standalone/structures/StoredTree.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund {

namespace {

class TStoredForm final : public TDSPFormManager {
 public:
  explicit TStoredForm(TStructureTable& Table) : FTable(Table) {}

  bool LoadPureStructure() override {
    const std::optional<std::string> Bytes = FTable.ReadTree(ObjectName, ObjectType);
    if (!Bytes) {
      Root().Clear();
      return true;
    }
    try {
      ReadStoredTree(*Bytes, Root());
    } catch (const EDSPError& Error) {
      throw EDSPError(
          Format("The stored tree of the structure '%s' (type %d) is damaged: %s. Drop the structure and load it from "
                 "a file again",
                 ObjectName, ObjectType, Error.what()));
    }
    return true;
  }

  bool SavePureStructure() override {
    std::string Bytes;
    AppendStoredTree(Bytes, Root());
    FTable.WriteTree(ObjectName, ObjectType, Bytes);
    return true;
  }

 private:
  TStructureTable& FTable;
};

}  // namespace

TStructureTable& TStructureStore::StructuresOf(const std::string& DatabaseName) {
  std::unique_ptr<TStructureTable>& Table = FTables[DatabaseName];
  if (!Table)
    Table = std::make_unique<TStructureTable>(
        DatabaseName, [this, DatabaseName]() -> TConnection& { return FDatabases.Connection(DatabaseName); },
        [this, DatabaseName] {
          return FDatabases.IsInTransaction(DatabaseName) ? FDatabases.TransactionMark(DatabaseName) : 0;
        });
  return *Table;
}

std::unique_ptr<TDSPFormManager> TStructureStore::CreateFormManager(const std::string& DatabaseName) {
  return std::make_unique<TStoredForm>(StructuresOf(DatabaseName));
}

}  // namespace velkrund

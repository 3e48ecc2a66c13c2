#include "velkrund/dictionary/CarriedBLOBTables.h"

#include <memory>

#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/platform/dictionary/Dictionary.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPContainer.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

void CarryBLOBTables(TTableRowCopy& Copy, TRecord& Fields, const std::string& TableName,
                     const std::string& DatabaseName, const TBLOBFieldMappingList& Mappings,
                     const TStringList& Excluded) {
  for (int Index = 0; Index < Fields.FieldCount(); ++Index) {
    const std::string& Field = Fields.Fields(Index).Name();
    const std::string Inside = Format("%s.%s", TableName, Field);
    const bool IsCarried = Copy.IsBLOB(Field) && HasDictionary() && Excluded.IndexOf(Field) < 0 &&
                           DSPContainer().Table(DatabaseName).DSPStructureExist(UpperCase(Inside), TableObjectType);
    if (!IsCarried) continue;
    TDicTableDescription Structure;
    if (!Dictionary().GetDicTable(DatabaseName).GetTableInfo(Inside, Structure))
      throw EDicUtilError(Format("Error getting BLOB table in field '%s' in the table '%s'", Field, TableName),
                          {.Table = TableName, .Column = Field});
    const TBLOBFieldMapping* const Mapping = Mappings.GetMappingByField(Field);
    Copy.CarryTables(Field, std::make_unique<TBLOBTableCopy>(TableName, Field, Structure,
                                                             Mapping ? Mapping->Mapping : TStringPairs()));
  }
}

}  // namespace velkrund

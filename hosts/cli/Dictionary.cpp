#include "hosts/cli/Dictionary.h"

namespace velkrund {

TJson PropertiesJson(const TDSPListItem& Item) {
  TJson Result;
  Result["type"] = Item.ObjectType;
  Result["name"] = Item.ObjectName;
  Result["tableName"] = Item.TableName;
  Result["parentObject"] = Item.ParentObject;
  Result["remarks"] = Item.Remarks;
  return Result;
}

}  // namespace velkrund

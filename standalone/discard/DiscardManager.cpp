#include "standalone/discard/DiscardManager.h"

#include "standalone/discard/DiscardTable.h"

namespace velkrund {

std::unique_ptr<TTable> TDiscardManager::GetUserTable(const std::string& TableName, const std::string&, bool) {
  return std::make_unique<TDiscardTable>(TableName, FFieldNames);
}

}  // namespace velkrund

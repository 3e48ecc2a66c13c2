#include "standalone/drivers/Selection.h"

#include "velkrund/platform/ormtools/ErrorInfo.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

std::string SelectionWords(std::string_view Condition) {
  return Condition.empty() ? std::string() : " WHERE (\n" + std::string(Condition) + "\n)";
}

std::string SelectionCheck(std::string_view Condition, std::string_view From) {
  return Format("SELECT CASE WHEN\n%s\nTHEN 1 END FROM %s LIMIT 0", Condition, From);
}

std::string SelectionFailed(std::string_view What, std::string_view Condition) {
  return Condition.empty() ? std::string(What) : Format("%s, selection '%s'", What, Shortened(Condition));
}

}  // namespace velkrund

#include "velkrund/operations/MissingTables.h"

namespace velkrund {
namespace {

TMissingTablesHook Installed;

}  // namespace

TMissingTablesHook SetMissingTablesHook(TMissingTablesHook Hook) { return std::exchange(Installed, std::move(Hook)); }

std::unique_ptr<TMissingTables> MissingTables(TUtilOperation& Operation, const std::string& DatabaseName) {
  return Installed ? Installed(Operation, DatabaseName) : nullptr;
}

}  // namespace velkrund

#pragma once

#include <cstdint>
#include <string_view>

#include "velkrund/operations/UtilOperation.h"

namespace velkrund {

/// The progress of one operation of a list, as a part of the list's own. List: borrowed by the result. Index: from 0.
inline TProgressCallback ProgressOfItem(const TUtilOperation& List, int Index, int Count) {
  return [&List, Index, Count](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    constexpr std::int32_t Thousandths = 1000;
    const std::int32_t Share = Total > 0 ? static_cast<std::int32_t>(std::int64_t{Current} * Thousandths / Total) : 0;
    List.ShowProgress(Index * Thousandths + Share, Count * Thousandths, Name);
  };
}

}  // namespace velkrund

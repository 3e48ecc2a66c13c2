#pragma once

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// Raises EDatabaseError for a description that contradicts itself: a key, index, reference or neutral expression that
/// names a field which is none, or names none at all; two fields of one name. Some engines would take an unknown name
/// for a text.
void CheckDescription(const TDicTableDescription& Table);

}  // namespace velkrund

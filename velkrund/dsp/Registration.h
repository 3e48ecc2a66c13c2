#pragma once

namespace velkrund {

/// Adds this folder's section classes to EITypeList, the oldest version first, and its operations' interface classes to
/// InterfaceClasses. The structures of generators are read as all others.
void RegisterDSPClasses();

}  // namespace velkrund

#pragma once

namespace velkrund {

/// Adds this folder's section classes to EITypeList, the oldest version of each first, and its operations' interface
/// classes to InterfaceClasses.
void RegisterResourceClasses();

}  // namespace velkrund

#pragma once

namespace velkrund {

/// Adds this folder's section classes to EITypeList, the oldest version of each first, its operations' interface
/// classes to InterfaceClasses, and who creates generators, views and procedures to RecreateOperations.
void RegisterDictionaryClasses();

}  // namespace velkrund

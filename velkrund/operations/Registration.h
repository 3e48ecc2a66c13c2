#pragma once

namespace velkrund {

/// Adds this folder's interface classes to InterfaceClasses.
void RegisterOperationClasses();

}  // namespace velkrund

#pragma once

namespace velkrund {

/// Registers the interface class of every job, beside those of the module, so that hosts can make jobs by name. Called
/// once, by the start of an application.
void RegisterJobClasses();

}  // namespace velkrund

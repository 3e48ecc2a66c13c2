#pragma once

namespace velkrund {

/// Registers every section and interface class of the module. To be called once by the host, before any file is opened;
/// further calls do nothing. Safe to call from several threads.
void StartModule();

}  // namespace velkrund

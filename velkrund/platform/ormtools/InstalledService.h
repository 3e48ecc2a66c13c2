#pragma once

#include <string>
#include <utility>

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// The place of one service of the platform, for the whole process: empty until somebody installs one. The folder that
/// declares a service keeps its place and declares beside the service, for an interface TService,
///     TService* InstallService(TService* Service);
/// which installs it, or nothing when it is null, and returns what was installed before. The service is borrowed and
/// outlives every use. To be called while no operation runs.
template <typename TService>
class TInstalledService {
 public:
  /// Name: for the error about a service that is missing; outlives the place.
  explicit constexpr TInstalledService(const char* Name) : FName(Name) {}

  TService* Install(TService* Service) { return std::exchange(FService, Service); }
  /// Null while none is installed.
  TService* Get() const { return FService; }
  /// Raises EAccessViolation that names what is missing.
  TService& Required() const {
    if (!FService) throw EAccessViolation(std::string("No ") + FName + " is installed");
    return *FService;
  }

 private:
  TService* FService = nullptr;
  const char* FName;
};

/// Installs one service for the guard's lifetime, then the one before again.
template <typename TService>
class TServiceGuard {
 public:
  explicit TServiceGuard(TService* Service) : FBefore(InstallService(Service)) {}
  TServiceGuard(const TServiceGuard&) = delete;
  TServiceGuard& operator=(const TServiceGuard&) = delete;
  ~TServiceGuard() { InstallService(FBefore); }

 private:
  TService* FBefore;
};

}  // namespace velkrund

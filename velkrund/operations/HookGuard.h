#pragma once

#include <utility>

namespace velkrund {

/// Installs a hook for the guard's lifetime, then the one before again. Exchange: installs one and returns the one
/// before. To be made and freed while no operation runs.
template <typename THook, THook (*Exchange)(THook)>
class THookGuard {
 public:
  explicit THookGuard(THook Hook) : FBefore(Exchange(std::move(Hook))) {}
  THookGuard(const THookGuard&) = delete;
  THookGuard& operator=(const THookGuard&) = delete;
  ~THookGuard() { Exchange(std::move(FBefore)); }

 private:
  THook FBefore;
};

}  // namespace velkrund

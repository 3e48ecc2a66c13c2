#pragma once

namespace velkrund::tests {

// Whether this build checks every access to memory, which takes many times as long: tests that repeat one thing with
// other numbers then repeat it less often.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool ChecksAddresses = true;
#elif defined(__has_feature)
inline constexpr bool ChecksAddresses = __has_feature(address_sanitizer);
#else
inline constexpr bool ChecksAddresses = false;
#endif

}  // namespace velkrund::tests

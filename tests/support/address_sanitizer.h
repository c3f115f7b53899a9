#pragma once

namespace vela_test {

/// Whether AddressSanitizer watches this build; the two compilers tell it in two ways.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool has_address_sanitizer = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool has_address_sanitizer = true;
#else
constexpr bool has_address_sanitizer = false;
#endif
#else
constexpr bool has_address_sanitizer = false;
#endif

} // namespace vela_test

/// For programs whose tests show that nothing recurses by the depth of its data.
#pragma once

#include "support/address_sanitizer.h"

#include <cstddef>
#include <stdexcept>
#include <sys/resource.h>

namespace vela_test {

/// Leaves the program 1 MiB of stack, before its first test.
inline bool take_away_stack()
{
    struct rlimit limit = {};
    if (getrlimit(RLIMIT_STACK, &limit) != 0)
        throw std::runtime_error("cannot ask for the stack");
    limit.rlim_cur = 1 << 20;
    if (setrlimit(RLIMIT_STACK, &limit) != 0)
        throw std::runtime_error("cannot limit the stack");
    return true;
}

inline const bool has_little_stack = take_away_stack();

/// Levels that no recursion survives on that stack: 20000 leave 52 bytes for each, less than a few calls take. They are
/// enough where a sanitizer makes each level dear; more show that time does not grow faster than the depth.
constexpr std::size_t depth_beyond_stack = has_address_sanitizer ? 20000 : 100000;

} // namespace vela_test

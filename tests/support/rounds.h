/// How often a random test goes round.
#pragma once

#include "support/address_sanitizer.h"

#include <cstddef>

namespace vela_test {

/// A fifth of them where a sanitizer watches: every round takes many times as long there, and what the sanitizer looks
/// for shows in any round. The values are compared in all rounds by the build without it.
constexpr std::size_t rounds(std::size_t all)
{
    return has_address_sanitizer ? all / 5 : all;
}

} // namespace vela_test

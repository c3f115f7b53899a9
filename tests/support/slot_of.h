/// The place of a virtual operation in its table, which other compiled code counts on.
#pragma once

#if defined(__x86_64__) && defined(__GXX_ABI_VERSION)

#include <bit>
#include <cstddef>

#define VELA_TEST_HAS_SLOTS 1

/// Slot of a virtual function in the virtual table, from its member pointer (Itanium C++ ABI, 2.3).
template <class Function>
std::ptrdiff_t slot_of(Function function)
{
    struct MemberPointer
    {
        std::ptrdiff_t one_above_offset;
        std::ptrdiff_t adjustment;
    };
    return (std::bit_cast<MemberPointer>(function).one_above_offset - 1) / 8;
}

#endif

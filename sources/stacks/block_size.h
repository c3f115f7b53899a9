/// How many bytes stand behind a stack.
#pragma once

#include <VelaStacks/VStack.h>

#include <cstdint>

namespace Vela::detail {

/// The bytes from `get_data_ptr` on. A stack in memory that gives its own block knows how large that is, which may be
/// less than its description says; other implementations, and classes that derive from it and give other bytes, are
/// believed.
inline std::uint64_t block_size(const VStackInterface& stack)
{
    const unsigned char* const bytes = stack.get_data_ptr();
    const auto* const in_memory = dynamic_cast<const VStackImp*>(&stack);
    if (in_memory != nullptr && bytes == in_memory->VStackImp::get_data_ptr())
        return in_memory->get_block_size();
    return bytes == nullptr ? 0 : stack.get_size(vela_dt_none);
}

} // namespace Vela::detail

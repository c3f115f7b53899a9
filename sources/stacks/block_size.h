/// How many bytes stand behind a stack.
#pragma once

#include <VelaStacks/VStack.h>

#include <cstdint>

namespace Vela::detail {

/// The bytes from `get_data_ptr` on. A stack in memory knows its block, which may be smaller than its description says;
/// other implementations are believed.
inline std::uint64_t block_size(const VStackInterface& stack)
{
    if (const auto* const in_memory = dynamic_cast<const VStackImp*>(&stack))
        return in_memory->get_block_size();
    return stack.get_data_ptr() == nullptr ? 0 : stack.get_size(vela_dt_none);
}

} // namespace Vela::detail

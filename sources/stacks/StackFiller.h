/// Stacks in memory whose samples come from somewhere else.
#pragma once

#include <VelaStacks/VStack.h>

#include "sources/stacks/SampleBlock.h"

namespace Vela {
VELA_ABI_NAMESPACE_BEGIN

class StackFiller
{
public:
    /// Makes of a stack that has no samples yet what `info` describes, in the type `dt` or with 0 in that of `info`.
    /// `fill()` then has to write all samples, which are not set before. A failure leaves the stack without samples.
    template <class Fill>
    static void create(VStackImp& stack, const VStackInfoInterface* info, vela_dt dt, Fill fill)
    {
        SampleBlock::Overwriting overwriting(stack.data.private_block());
        try
        {
            stack.create(info, dt);
            fill();
        }
        catch (...)
        {
            stack.destroy(); // or what is not set would be, and that may be more memory than there is
            throw;
        }
        overwriting.written(stack.get_data_ptr(), stack.get_block_size());
    }
};

VELA_ABI_NAMESPACE_END
}

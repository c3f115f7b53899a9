#include <vela.h>

#include <iostream>

int main(int argc, char** argv)
{
    VFile file(VPropstring(argc > 1 ? argv[1] : "", VPropstring::enc_utf8), VFile::read_mode);
    for (const VBFChainEntry& stack : scan_chain(file).stacks)
    {
        std::cout << stack.name << ": " << vela_dt_get_name(stack.header.data_type);
        for (std::uint32_t axis = 0; axis < stack.header.rank; ++axis)
            std::cout << (axis == 0 ? ' ' : 'x') << stack.header.dimension_sizes[axis];
        std::cout << '\n';
    }
}

#include <vela.h>

#include <iostream>

int main(int argc, char** argv)
{
    VBFFile file(VPropstring(argc > 1 ? argv[1] : "", VPropstring::enc_utf8), VFile::read_mode);
    for (std::uint64_t i = 0; i < file->number_of_stacks(); ++i)
    {
        const boost::shared_ptr<VBFStackInterface> stack = file->get_stack(i);
        std::cout << stack->get_name() << ": " << vela_dt_get_name(stack->get_dt());
        for (std::uint64_t axis = 0; axis < stack->get_rank(); ++axis)
            std::cout << (axis == 0 ? ' ' : 'x') << stack->get_dimension_size(axis);
        std::cout << '\n';
    }
}

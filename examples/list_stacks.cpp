// Lists the stacks of a VBF file: list_stacks FILE
#include <VelaBase/VelaError.h>
#include <VelaBase/vela_dt.h>
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

#include <iostream>

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    try
    {
        VFile file(VPropstring(argv[1], VPropstring::enc_utf8), VFile::read_mode);
        const VBFChain chain = scan_chain(file);
        std::cout << chain.file.description << "\n";
        for (const VBFChainEntry& stack : chain.stacks)
        {
            std::cout << stack.name << ":";
            for (std::uint32_t axis = 0; axis < stack.header.rank; ++axis)
                std::cout << (axis == 0 ? " " : " x ") << stack.header.dimension_sizes[axis];
            std::cout << " samples of " << vela_dt_get_name(stack.header.data_type) << "\n";
        }
    }
    catch (const VelaError& error)
    {
        std::cerr << error.get_msg() << "\n";
        return 1;
    }
}

// Prints the version of the library and how many stacks the file in the first argument holds, or
// why it cannot be read.
#include <vela.h>

#include <cstdio>

int main(int argc, char** argv)
{
    std::printf("vela %d.%d.%d\n", VELA_VERSION_MAJOR, VELA_VERSION_MINOR, VELA_VERSION_PATCH);
    if (argc != 2)
        return 2;
    try
    {
        VFile file(VPropstring(argv[1], VPropstring::enc_utf8), VFile::read_mode);
        const VBFChain chain = scan_chain(file);
        std::printf("%u stacks\n", static_cast<unsigned>(chain.stacks.size()));
        return 0;
    }
    catch (const VelaError& error)
    {
        std::printf("%s\n", error.get_msg().c_str());
        return 1;
    }
}

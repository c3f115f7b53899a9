// The other process of shared_stack_behaviour_test.cpp: VERB ID. It waits until its input ends, so nobody sleeps.
#include <VelaStacks/SharedMemory.h>
#include <VelaStacks/VStack.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>

namespace {

unsigned char* bytes_of(Vela::SharedMemory& memory)
{
    return static_cast<unsigned char*>(memory.data());
}

void print(Vela::SharedMemory& memory)
{
    std::printf("size %llu bytes ", static_cast<unsigned long long>(memory.size()));
    for (std::uint64_t i = 0; i < memory.size(); ++i)
        std::printf("%02x", static_cast<unsigned>(bytes_of(memory)[i]));
    std::printf("\n");
    std::fflush(stdout);
}

void wait_for_end_of_input()
{
    while (std::getchar() != EOF)
        ;
}

void increment(const std::string& id)
{
    Vela::SharedMemory memory(id);
    print(memory);
    for (std::uint64_t i = 0; i < memory.size(); ++i)
        ++bytes_of(memory)[i];
}

void keep(const std::string& id)
{
    Vela::SharedMemory memory(id);
    print(memory);
    wait_for_end_of_input();
    print(memory);
    try
    {
        const Vela::SharedMemory late(id);
        std::printf("still there\n");
    }
    catch (const std::exception&)
    {
        std::printf("no more\n");
    }
}

void share(bool die)
{
    VStackImp stack(Ome::Type::uint8, {4}, Ome::DimensionOrder::XYZTC);
    std::memcpy(stack.get_data_ptr(), "vela", 4);
    std::printf("%s\n", stack.share());
    std::fflush(stdout);
    wait_for_end_of_input();
    if (die)
        std::_Exit(3); // no destructor runs
}

int run(const std::string& verb, const std::string& id)
{
    if (verb == "increment")
        increment(id);
    else if (verb == "keep")
        keep(id);
    else if (verb == "share" || verb == "die")
        share(verb == "die");
    else
        return 2;
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        return argc == 3 ? run(argv[1], argv[2]) : 2;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}

// The other process of the tests of shared memory: obeys one line of its standard input after the other and answers each
// with one line.
//
//     make SIZE      the id
//     attach ID      the size, or "refused"
//     get POSITION   the byte there
//     put POSITION BYTE
//     leave

#include <VelaStacks/SharedMemory.h>

#include <boost/interprocess/exceptions.hpp>

#include <cstdint>
#include <iostream>
#include <memory>
#include <string>

using Vela::SharedMemory;

namespace {

std::unique_ptr<SharedMemory> memory;

std::string obey(const std::string& verb)
{
    if (verb == "make")
    {
        std::uint64_t size = 0;
        std::cin >> size;
        memory = std::make_unique<SharedMemory>(size);
        return memory->id();
    }
    if (verb == "attach")
    {
        std::string id;
        std::cin >> id;
        memory = std::make_unique<SharedMemory>(id);
        return std::to_string(memory->size());
    }
    if (verb == "leave")
    {
        memory.reset();
        return "left";
    }
    std::uint64_t position = 0;
    std::cin >> position;
    unsigned char& byte = static_cast<unsigned char*>(memory->data())[position];
    if (verb == "put")
    {
        int value = 0;
        std::cin >> value;
        byte = static_cast<unsigned char>(value);
    }
    return std::to_string(byte);
}

} // namespace

int main()
{
    std::string verb;
    while (std::cin >> verb)
    {
        try
        {
            std::cout << obey(verb) << std::endl;
        }
        catch (const boost::interprocess::interprocess_exception&)
        {
            std::cout << "refused" << std::endl;
        }
    }
    return 0;
}

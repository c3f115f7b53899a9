// Shares the samples of a stack, and attaches to them as another process would.
#include <VelaStacks/SharedMemory.h>
#include <VelaStacks/VStack.h>

#include <exception>
#include <iostream>
#include <string>

/// What the other process does: all that it needs is the id.
void brighten(const std::string& id)
{
    Vela::SharedMemory memory(id);
    auto* const samples = static_cast<unsigned char*>(memory.data());
    for (std::uint64_t i = 0; i < memory.size(); ++i)
        samples[i] = static_cast<unsigned char>(samples[i] + 10);
    std::cout << "attached to " << memory.size() << " bytes\n";
}

int main()
{
    std::string id;
    try
    {
        VStackImp stack(Ome::Type::uint8, {4, 3}, Ome::DimensionOrder::XYZTC);
        stack.get_data_ptr()[5] = 7;
        id = stack.share(); // pointers from before are void
        brighten(id);
        std::cout << "sample 5 is " << static_cast<int>(stack.get_data_ptr()[5]) << "\n";
        try
        {
            stack.create({4, 4}, vela_dt_uint8);
        }
        catch (const std::exception& error)
        {
            std::cout << error.what() << "\n";
        }
    } // the stack takes the id with it
    catch (const std::exception& error)
    {
        std::cout << error.what() << "\n";
    }
    try
    {
        brighten(id);
    }
    catch (const std::exception&)
    {
        std::cout << "nobody can attach any more\n";
    }
}

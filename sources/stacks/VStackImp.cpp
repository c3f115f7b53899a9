#include <Remote/Stack.h>
#include <VelaBase/VelaError.h>
#include <VelaStacks/VStack.h>
#include <VelaStacks/VStackRegion.h>

#include <limits>
#include <new>

VStackInterface::~VStackInterface() = default;

VStackImp::VStackImp(Ome::Type type, const std::vector<std::uint64_t>& new_sizes, Ome::DimensionOrder order)
    : VStackInfoImp(type, new_sizes, order)
{
    resize();
}

VStackImp::VStackImp(std::uint64_t rank) : VStackInfoImp(rank) {}

VStackImp::VStackImp(const Remote::Stack& stack) : VStackInfoImp(stack), data(stack.share())
{
    const std::uint64_t sample_size = vela_dt_get_size(static_cast<std::uint32_t>(get_dt()));
    if (sample_size != 0 && get_number_of_elements() > data.size() / sample_size)
        throw VelaError("VStackImp::VStackImp", __FILE__, __LINE__)("Shared memory smaller than the stack!");
}

VStackImp::VStackImp(const VStackImp& other) = default;

VStackImp::~VStackImp() = default;

void VStackImp::create(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt)
{
    VStackInfoImp::create(new_sizes, new_dt);
    resize();
}

// The forms on another stack come by the form above, so the block has its size already; in shared memory they fail there.

void VStackImp::create(const VStackInfoInterface* info, vela_dt new_dt)
{
    VStackInfoImp::create(info, new_dt);
    resize();
}

void VStackImp::create(const VStackInfoInterface* info, const VStackRegion& region)
{
    VStackInfoImp::create(info, region);
    resize();
}

void VStackImp::destroy()
{
    VStackInfoImp::create(std::vector<std::uint64_t>(), vela_dt_none);
    data.clear();
}

const unsigned char* VStackImp::get_data_ptr() const
{
    return data.data();
}

unsigned char* VStackImp::get_data_ptr()
{
    return data.data();
}

const char* VStackImp::share() const
{
    return data.share();
}

std::uint64_t VStackImp::get_block_size() const
{
    return data.size();
}

void VStackImp::resize()
{
    const std::uint64_t count = get_number_of_elements();
    const std::uint64_t sample_size = vela_dt_get_size(static_cast<std::uint32_t>(get_dt()));
    if (count != 0 && sample_size == 0)
        throw VelaError("VStackImp::resize", __FILE__, __LINE__)("Unknown type of elements");
    if (sample_size != 0 && count > std::numeric_limits<std::uint64_t>::max() / sample_size)
        throw VelaError("VStackImp::resize", __FILE__, __LINE__)("The size increases the maximum size");
    try
    {
        data.resize(count * sample_size);
    }
    catch (const std::bad_alloc&)
    {
        throw VelaError("VStackImp::resize", __FILE__, __LINE__)("Out of memory");
    }
}

#include "sources/binary_io/VBFStackImp.h"

#include <VelaBase/VelaError.h>

#include "sources/binary_io/VBFFileImp.h"
#include "sources/binary_io/size_of.h"
#include "sources/stacks/product.h"

#include <algorithm>

VBFStackInterface::~VBFStackInterface() = default;

VBFStackImp::VBFStackImp(VBFFileImp* in_file) : file(in_file) {}

VBFStackImp::VBFStackImp(const VBFStackImp& other) = default;

VBFStackImp::~VBFStackImp() = default;

void VBFStackImp::require_no_description() const
{
    if (state != -1)
        throw VelaError("VBFStackImp::create", __FILE__, __LINE__)("Cannot set data layout!")(-1);
}

void VBFStackImp::create(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt)
{
    require_no_description();
    VStackInfoImp::create(new_sizes, new_dt);
    const std::vector<std::uint64_t>& described = get_sizes();
    variable = !described.empty() && described.back() == 0;
    samples_per_step =
        variable ? Vela::detail::get_product(std::vector<std::uint64_t>(described.begin(), described.end() - 1)) : 1;
    state = 1;
}

void VBFStackImp::create(const VStackInfoInterface* info, vela_dt new_dt)
{
    create_fixed([&] { VStackInfoImp::create(info, new_dt); });
}

void VBFStackImp::create(const VStackInfoInterface* info, const VStackRegion& region)
{
    create_fixed([&] { VStackInfoImp::create(info, region); });
}

/// `create_base` comes by the form on sizes, which takes a last size of 0 for that of a stack that grows. What fails
/// behind it leaves no description.
template <class CreateBase>
void VBFStackImp::create_fixed(CreateBase create_base)
{
    require_no_description();
    try
    {
        create_base();
    }
    catch (...)
    {
        state = -1;
        throw;
    }
    variable = false;
    samples_per_step = 1;
    state = 1;
}

void VBFStackImp::set_compression(int type, int level)
{
    if (state != -1 && state != 1)
        throw VelaError("VBFStackImp::set_compression", __FILE__, __LINE__)("Cannot change compression mode!")(-1);
    compression_type = type;
    compression_level = level;
}

void VBFStackImp::get_compression(int& type, int& level) const
{
    type = compression_type;
    level = compression_level;
}

void VBFStackImp::set_flush_block_size(std::uint64_t size_bytes)
{
    if (state != 1)
        throw VelaError("VBFStackImp::set_flush_block_size", __FILE__,
                        __LINE__)("Flush block size can only be set before starting to write!");
    flush_block_size = size_bytes;
}

int VBFStackImp::get_state() const
{
    return state;
}

/// Room for `count` samples of the stack, which are at most a chunk. It grows by doubling, or a caller who takes a few
/// more samples each time would pay for it each time.
unsigned char* VBFStackImp::get_scratch(std::uint64_t count)
{
    const std::uint64_t sample_size = Vela::detail::size_of(get_dt());
    const std::uint64_t chunk_bytes = std::max<std::uint64_t>(file->get_chunk_size(), sample_size);
    return scratch.get(count * sample_size, chunk_bytes);
}

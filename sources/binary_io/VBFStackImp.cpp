#include "sources/binary_io/VBFStackImp.h"

#include <VelaBase/VelaError.h>

#include "sources/stacks/product.h"

VBFStackInterface::~VBFStackInterface() = default;

VBFStackImp::VBFStackImp(VBFFileImp* in_file) : file(in_file) {}

VBFStackImp::VBFStackImp(const VBFStackImp& other)
    : VStackInfoInterface(other), VBFStackInterface(other), VStackInfoImp(other), tags(other.tags), file(other.file),
      empty(other.empty), compression_type(other.compression_type), compression_level(other.compression_level),
      state(other.state), footer_written(other.footer_written), has_own_ome_record(other.has_own_ome_record),
      data_pos(other.data_pos), data_length(other.data_length), header_pos(other.header_pos),
      stack_end_pos(other.stack_end_pos), samples_per_step(other.samples_per_step), samples_left(other.samples_left),
      samples_written(other.samples_written), read_pos(other.read_pos), variable(other.variable),
      flush_block_size(other.flush_block_size), flush_positions(other.flush_positions)
{
}

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

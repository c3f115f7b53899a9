#include <VelaBase/VelaError.h>
#include <VelaStacks/VStackRegion.h>
#include <VelaStacks/iterators.h>

#include "sources/stacks/block_size.h"

#include <algorithm>
#include <vector>

namespace {

[[noreturn]] void fail_outside(int line)
{
    throw VelaError("VStackInterface::iterator_base::iterator_base", __FILE__,
                    line)("Cannot create iterator over region exceeding the stack!")(-15);
}

/// Elements from one pixel to the next along each axis.
std::vector<std::uint64_t> element_strides(const std::vector<std::uint64_t>& sizes)
{
    std::vector<std::uint64_t> strides(sizes.size(), 1);
    for (std::size_t axis = 1; axis < sizes.size(); ++axis)
        strides[axis] = strides[axis - 1] * sizes[axis - 1];
    return strides;
}

}

VStackInterface::iterator_base::iterator_base(const VStackInterface* stack, const VStackRegion& region)
    : iterator_base()
{
    const std::uint64_t offset = start(stack, region);
    if (!is_at_end)
        data = const_cast<unsigned char*>(stack->get_data_ptr()) + offset;
}

VStackInterface::iterator_base::iterator_base(VStackInterface* stack, const VStackRegion& region) : iterator_base()
{
    const std::uint64_t offset = start(stack, region);
    if (!is_at_end)
        data = stack->get_data_ptr() + offset;
}

VStackInterface::iterator_base::~iterator_base()
{
    delete[] sizes;
}

/// Lays out the walk and gives the offset of its first sample in bytes.
std::uint64_t VStackInterface::iterator_base::start(const VStackInterface* stack, const VStackRegion& region)
{
    is_at_end = region.is_empty();
    if (is_at_end)
        return 0;
    bool exact = false;
    VStackRegion box;
    VStackRegion output;
    const std::vector<std::uint64_t> extents = region.validate(stack, exact, box, output);
    if (!exact)
        fail_outside(__LINE__);
    is_at_end = std::ranges::count(extents, 0u) != 0;
    if (is_at_end)
        return 0;
    if (box.is_empty()) // the slice along an axis that is not walked
        fail_outside(__LINE__);

    const std::vector<std::uint64_t> elements = element_strides(stack->get_sizes());
    const std::uint64_t sample_size = vela_dt_get_size(static_cast<std::uint32_t>(stack->get_dt()));
    std::uint64_t offset = 0;
    std::uint64_t last = 0;
    for (std::size_t axis = 0; axis < elements.size(); ++axis)
    {
        offset += static_cast<std::uint64_t>(box.begin[axis]) * elements[axis] * sample_size;
        last += static_cast<std::uint64_t>(box.end[axis] - 1) * elements[axis] * sample_size;
    }
    if (last + sample_size > Vela::detail::block_size(*stack))
        fail_outside(__LINE__);

    const std::size_t count = extents.size();
    sizes = new std::uint64_t[3 * count];
    position = sizes + count;
    strides = position + count;
    rank = count;
    std::ranges::copy(extents, sizes);
    std::fill_n(position, count, 0);
    for (std::size_t i = 0; i < count; ++i)
        strides[i] = elements[region.permutation[i]] * sample_size;
    return offset;
}

void VStackInterface::iterator_base::carry()
{
    std::uint64_t axis = 0;
    while (axis < rank && position[axis] + 1 >= sizes[axis])
        ++axis;
    if (axis == rank)
    {
        is_at_end = rank != 0 || is_at_end;
        return;
    }
    for (std::uint64_t lower = 0; lower < axis; ++lower)
    {
        data -= strides[lower] * position[lower];
        position[lower] = 0;
    }
    data += strides[axis];
    ++position[axis];
}

void VStackInterface::iterator_base::check_type(const VStackInterface* stack, vela_dt expected, const char* func,
                                                int line)
{
    if (stack->get_dt() != expected)
        throw VelaError(func, __FILE__, line)("Invalid iterator type!");
}

#include <VelaBase/VelaError.h>
#include <VelaStacks/VStackRegion.h>
#include <VelaStacks/iterators.h>

#include "sources/stacks/block_size.h"
#include "sources/stacks/saturating.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

using Vela::detail::saturating_add;
using Vela::detail::saturating_multiply;

[[noreturn]] void fail_outside(int line)
{
    throw VelaError("VStackInterface::iterator_base::iterator_base", __FILE__,
                    line)("Cannot create iterator over region exceeding the stack!")(-15);
}

/// Bytes from one pixel to the next along each axis.
std::vector<std::uint64_t> byte_strides(const VStackInterface& stack)
{
    std::vector<std::uint64_t> strides = stack.get_sizes();
    std::uint64_t next = vela_dt_get_size(static_cast<std::uint32_t>(stack.get_dt()));
    for (std::uint64_t& stride : strides)
        next = saturating_multiply(std::exchange(stride, next), next);
    return strides;
}

/// The offset of a pixel of the stack.
std::uint64_t offset_of(const std::vector<std::int64_t>& pixel, const std::vector<std::uint64_t>& strides)
{
    std::uint64_t offset = 0;
    for (std::size_t axis = 0; axis < strides.size(); ++axis)
        offset = saturating_add(offset, saturating_multiply(static_cast<std::uint64_t>(pixel[axis]), strides[axis]));
    return offset;
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

    const std::vector<std::uint64_t> steps = byte_strides(*stack);
    std::vector<std::int64_t> last_pixel = box.end;
    for (std::int64_t& end : last_pixel)
        --end;
    const std::uint64_t sample_size = vela_dt_get_size(static_cast<std::uint32_t>(stack->get_dt()));
    if (saturating_add(offset_of(last_pixel, steps), sample_size) > Vela::detail::block_size(*stack))
        fail_outside(__LINE__);

    const std::size_t count = extents.size();
    sizes = new std::uint64_t[3 * count];
    position = sizes + count;
    strides = position + count;
    rank = count;
    std::ranges::copy(extents, sizes);
    std::fill_n(position, count, 0);
    for (std::size_t i = 0; i < count; ++i)
        strides[i] = steps[region.permutation[i]];
    return offset_of(box.begin, steps);
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

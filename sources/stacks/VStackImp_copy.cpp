// Copies between stacks: first the description, then the samples, of which as much at once as can be.
#include <VelaBase/VelaError.h>
#include <VelaBase/vela_dt_convert.h>
#include <VelaStacks/VStack.h>
#include <VelaStacks/VStackRegion.h>

#include "sources/stacks/SampleBlock.h"
#include "sources/stacks/block_size.h"
#include "sources/stacks/sample_copy.h"
#include "sources/stacks/sample_types.h"
#include "sources/stacks/saturating.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <vector>

namespace {

using Vela::detail::saturating_add;
using Vela::detail::saturating_multiply;

std::uint64_t sample_size(vela_dt dt)
{
    return vela_dt_get_size(static_cast<std::uint32_t>(dt));
}

/// A stack that is copied from, as it was when the copy began: what the target is about to change is kept here.
class CopySource
{
public:
    CopySource(const VStackInterface& stack, const VStackImp& target)
        : described(&stack), first(stack.get_data_ptr()), block_bytes(Vela::detail::block_size(stack))
    {
        if (described == static_cast<const VStackInfoInterface*>(&target))
            described = &own_description.emplace(target);
        // The block that is written, whatever a derived class gives for its own.
        if (overlaps(target.VStackImp::get_data_ptr(), target.get_block_size()))
            keep_bytes();
    }

    const VStackInfoInterface* info() const { return described; }
    const unsigned char* data() const { return first; }
    std::uint64_t size_bytes() const { return block_bytes; }
    vela_dt dt() const { return described->get_dt(); }

private:
    bool overlaps(const unsigned char* other, std::uint64_t other_bytes) const
    {
        const std::less<const unsigned char*> before;
        return block_bytes != 0 && other_bytes != 0 && before(first, other + other_bytes) &&
               before(other, first + block_bytes);
    }

    void keep_bytes()
    {
        try
        {
            own_bytes = std::make_unique_for_overwrite<unsigned char[]>(block_bytes);
        }
        catch (const std::bad_alloc&)
        {
            throw VelaError("VStackImp::copy", __FILE__, __LINE__)("Out of memory");
        }
        std::memcpy(own_bytes.get(), first, block_bytes);
        first = own_bytes.get();
    }

    const VStackInfoInterface* described;
    const unsigned char* first;
    std::uint64_t block_bytes;
    std::optional<VStackInfoImp> own_description;
    std::unique_ptr<unsigned char[]> own_bytes;
};

/// How the samples of a region lie in the stack that they come from.
struct Order
{
    Order(const VStackInfoInterface& target, const VStackInfoInterface& source, const VStackRegion& region)
        : same_shape(target.get_rank() == source.get_rank())
    {
        const std::uint64_t count = std::min<std::uint64_t>(source.get_rank(), region.permutation.size());
        for (std::uint64_t axis = 0; axis < count; ++axis)
        {
            same_shape = same_shape && region.begin[axis] == 0 &&
                         target.get_dimension_size(axis) == source.get_dimension_size(axis);
            identity = identity && region.permutation[axis] == axis;
        }
    }

    bool same_shape;
    bool identity = true;
};

using Overwriting = Vela::SampleBlock::Overwriting;

void copy_whole(const CopySource& source, const VStackImp& target, unsigned char* data, Overwriting& overwriting)
{
    const std::uint64_t source_sample = sample_size(source.dt());
    const std::uint64_t target_sample = sample_size(target.get_dt());
    if (source_sample == 0 || target_sample == 0)
        return;
    const std::uint64_t count =
        std::min({source.info()->get_number_of_elements(), target.get_number_of_elements(),
                  source.size_bytes() / source_sample, target.get_block_size() / target_sample});
    if (count == 0)
        return;
    if (source.dt() == target.get_dt())
        std::memcpy(data, source.data(), count * target_sample);
    else if (vela_dt_convert(static_cast<std::uint32_t>(source.dt()), static_cast<std::uint32_t>(target.get_dt()),
                             source.data(), data, count, nullptr, nullptr) != 0)
        return; // such types leave the block as it was
    overwriting.written(data, count * target_sample);
}

void fill_with_zeros(unsigned char* bytes, std::uint64_t count, Overwriting& overwriting)
{
    if (count == 0)
        return;
    std::memset(bytes, 0, count);
    overwriting.written(bytes, count);
}

/// A box of a stack: the offset of its first sample and its strides, in bytes.
struct Box
{
    Box(const VStackInfoInterface& info, const VStackRegion& box)
    {
        std::uint64_t stride = sample_size(info.get_dt());
        for (std::uint64_t axis = 0; axis < box.begin.size(); ++axis)
        {
            strides.push_back(stride);
            const auto begin = static_cast<std::uint64_t>(box.begin[axis]);
            first = saturating_add(first, saturating_multiply(begin, stride));
            stride = saturating_multiply(stride, info.get_dimension_size(axis));
        }
    }

    std::uint64_t first = 0;
    std::vector<std::uint64_t> strides;
};

/// Two boxes that meet along their permutations. Axes that only one of them has are of one sample.
std::vector<Vela::detail::CopyAxis> paired_axes(const VStackRegion& source_box, const Box& from,
                                                const VStackRegion& target_box, const Box& to)
{
    std::vector<Vela::detail::CopyAxis> axes;
    const std::size_t count = std::min(source_box.permutation.size(), target_box.permutation.size());
    for (std::size_t k = 0; k < count; ++k)
    {
        const std::uint64_t axis = source_box.permutation[k];
        axes.push_back({static_cast<std::uint64_t>(source_box.end[axis] - source_box.begin[axis]), from.strides[axis],
                        to.strides[target_box.permutation[k]]});
    }
    return axes;
}

/// `is_all`: the target box is all of the target.
void copy_box(const CopySource& source, const VStackRegion& source_box, const VStackImp& target,
              const VStackRegion& target_box, unsigned char* data, bool is_all, Overwriting& overwriting)
{
    const Box from(*source.info(), source_box);
    const Box to(target, target_box);
    if (from.first >= source.size_bytes() || to.first >= target.get_block_size())
        return;
    const Vela::detail::SampleCopy copy = {paired_axes(source_box, from, target_box, to),
                                           source.data() + from.first,
                                           source.size_bytes() - from.first,
                                           source.dt(),
                                           data + to.first,
                                           target.get_block_size() - to.first,
                                           target.get_dt()};
    const bool writes_all = is_all && Vela::detail::is_inside(copy);
    if (!writes_all)
        overwriting.fill();
    Vela::detail::copy_samples(copy);
    if (writes_all) // of the description: a derived class may have made the block larger
        overwriting.written(data, target.get_size(vela_dt_none));
}

}

void VStackImp::copy(const VStackInterface* source, vela_dt new_dt)
{
    VStackRegion region;
    region.create(source, vela_dt_none);
    region.dt = new_dt;
    copy(source, region);
}

void VStackImp::copy(const VStackInterface* source, const VStackRegion& region)
{
    const CopySource from(*source, *this);
    Overwriting overwriting(data.private_block());
    VStackInfoImp::create(from.info(), region);
    const Order order(*this, *from.info(), region);
    if (order.identity && order.same_shape)
        return copy_whole(from, *this, data.data(), overwriting);

    VStackRegion source_box;
    VStackRegion target_box;
    bool exact = false;
    if (region.validate(from.info(), exact, source_box, target_box) != get_sizes())
        throw VelaError("VStackImp::copy", __FILE__, __LINE__)("Internal error!");
    if (source_box.is_empty() || target_box.is_empty())
        return;
    if (!exact)
        fill_with_zeros(data.data(), std::min(get_size(vela_dt_none), data.size()), overwriting);
    if (!Vela::detail::is_sample_type(get_dt()))
        return;
    if (!Vela::detail::is_sample_type(from.dt()))
        throw VelaError("VStackInterface::get_iterator", __FILE__, __LINE__)("Invalid type!");
    if (order.identity && exact && region.is_empty()) // only along an axis that is cut away: no walk over it begins
        return;
    copy_box(from, source_box, *this, target_box, data.data(), exact, overwriting);
}

#include <VelaBase/VelaError.h>
#include <VelaStacks/VStackInfo.h>
#include <VelaStacks/VStackPosition.h>

#include "sources/stacks/position_fits.h"

#include <cstddef>
#include <utility>

namespace {

template <class T>
VProparray<T> array_of(const std::vector<std::size_t>& sizes)
{
    VProparray<T> array;
    array.set_size(sizes, VProparrayBase::set_reset);
    return array;
}

/// Whether the array is a vector of `length`.
bool is_vector(const VProparrayBase& array, std::size_t length)
{
    return array.get_size(false).size() == 1 && array.count() == length;
}

}

VStackPosition::VStackPosition()
    : labels(array_of<VPropstring>({0})), origin(array_of<double>({0})), matrix(array_of<double>({0, 0}))
{
}

void VStackPosition::create(const std::vector<std::uint64_t>& sizes, std::uint64_t n)
{
    const std::size_t rank = sizes.size();
    const std::size_t count = n == 0 ? rank : n;
    if (rank > count)
        throw VelaError("VStackPosition::create", __FILE__,
                        __LINE__)("Rank cannot be larger than the number of global axes!");
    VStackPosition made;
    made.matrix = array_of<double>({count, rank});
    made.labels = array_of<VPropstring>({count});
    made.origin = array_of<double>({count});
    for (std::size_t axis = 0; axis < rank; ++axis)
        made.matrix[axis + axis * count] = 1.0;
    *this = std::move(made);
}

void VStackPosition::create(const VStackInfoInterface* info, std::uint64_t n)
{
    VStackPosition made;
    made.create(info->get_sizes(), n);
    for (std::uint64_t axis = 0; axis < info->get_rank(); ++axis)
        made.labels[axis] = info->get_label(axis);
    *this = std::move(made);
}

bool VStackPosition::is_valid_for(const VStackInfoInterface* info) const
{
    return Vela::detail::position_fits(*this, info->get_rank());
}

bool Vela::detail::position_fits(const VStackPosition& position, std::uint64_t rank)
{
    const std::size_t count = position.labels.count();
    return is_vector(position.labels, count) && is_vector(position.origin, count) &&
           position.matrix.get_size(false) == std::vector<std::size_t>{count, rank} &&
           position.matrix.count() == VProparrayBase::size({count, rank});
}

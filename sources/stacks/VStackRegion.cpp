#include <VelaBase/VelaError.h>
#include <VelaStacks/VStackInfo.h>
#include <VelaStacks/VStackRegion.h>

#include "sources/stacks/product.h"
#include "sources/stacks/signed_pixels.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

VStackRegion::VStackRegion() = default;

void VStackRegion::create(std::vector<std::uint64_t> sizes, vela_dt new_dt)
{
    dt = new_dt;
    begin.assign(sizes.size(), 0);
    end.resize(sizes.size());
    std::ranges::transform(sizes, end.begin(), Vela::detail::as_position);
    permutation = std::move(sizes);
    std::iota(permutation.begin(), permutation.end(), std::uint64_t{0});
}

void VStackRegion::create(const VStackInfoInterface* info, vela_dt new_dt)
{
    create(info->get_sizes(), new_dt == vela_dt_none ? info->get_dt() : new_dt);
}

bool VStackRegion::is_empty() const
{
    for (std::size_t axis = 0; axis < std::min(begin.size(), end.size()); ++axis)
        if (begin[axis] >= end[axis])
            return true;
    return false;
}

std::uint64_t VStackRegion::get_num_pixels() const
{
    std::vector<std::uint64_t> extents(std::min(begin.size(), end.size()));
    for (std::size_t axis = 0; axis < extents.size(); ++axis)
    {
        if (begin[axis] > end[axis])
            throw VelaError("VStackRegion::get_num_pixels", __FILE__, __LINE__)("Invalid region!");
        extents[axis] = Vela::detail::distance(begin[axis], end[axis]);
    }
    return Vela::detail::get_product(extents);
}

VStackPhysicalRegion::VStackPhysicalRegion(std::uint64_t rank)
{
    matrix.set_size({rank, rank}, VProparrayBase::set_reset);
    lower.resize(rank);
    upper.resize(rank);
    for (std::size_t axis = 0; axis < rank; ++axis)
        matrix[axis + axis * rank] = 1.0;
}

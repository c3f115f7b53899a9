/// Short forms for the tests of arrays.
#pragma once

#include <VelaProps/VProp.h>
#include <VelaProps/VProparray.h>
#include <VelaProps/VPropstruct.h>

#include <cstddef>
#include <vector>

namespace prop_test {

/// Extents or coordinates.
using Extents = std::vector<std::size_t>;

constexpr std::size_t absent = static_cast<std::size_t>(-1);

/// 0, 1, 2, ... with the sizes as they are given, whether they fit or not.
inline VProparray<int> counting(int count, const Extents& sizes)
{
    VProparray<int> made;
    for (int i = 0; i < count; ++i)
        made.push_back(i);
    made.set_size(sizes, VProparrayBase::set_only);
    return made;
}

}

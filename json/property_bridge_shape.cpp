#include "json/property_bridge_shape.h"

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

std::vector<std::size_t> detail::shape_of(const VProparrayBase& array)
{
    const std::size_t count = array.count();
    if (count == 0)
        return {};
    if (count == 1)
        return {1};
    std::vector<std::size_t> shape = array.get_size(true);
    std::erase(shape, 1U);
    return shape;
}

VELA_ABI_NAMESPACE_END
}

#include <Ome/enums.h>

#include "ome/pixel_types.h"

#include <algorithm>
#include <stdexcept>

Ome::Type Ome::get_type(std::int32_t id)
{
    const auto row = std::ranges::find(detail::pixel_types, id, &detail::PixelType::id);
    if (id == vela_dt_none || row == detail::pixel_types.end())
        throw std::invalid_argument("Unsupported data type");
    return row->type;
}

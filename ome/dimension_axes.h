/// Which axis a dimension of an image is.
#pragma once

#include <Json/Value.h>
#include <Ome/enums.h>

#include <cstddef>
#include <stdexcept>
#include <string_view>

namespace Ome::detail {

/// X, Y, Z, C and T.
constexpr std::size_t dimension_count = 5;

/// The letter of the axis in the text of a `DimensionOrder`.
enum class Axis : char
{
    x = 'X',
    y = 'Y',
    z = 'Z',
    c = 'C',
    t = 'T',
};

/// The axes in the order of a `DimensionOrder`, XYZTC where the value is null or no such text.
class DimensionAxes
{
public:
    /// @throws std::bad_cast: the value is neither a text nor null
    explicit DimensionAxes(const Json::Value& order)
    {
        DimensionOrder known = DimensionOrder::XYZTC;
        if (const std::string* text = order.if_string())
            get_enumeration(*text, known);
        else if (!order.is_null())
            Json::detail::throw_bad_cast();
        letters_ = get_enumeration_text(known);
        if (letters_.empty())
            letters_ = get_enumeration_text(DimensionOrder::XYZTC);
    }

    /// `d` is below `dimension_count`.
    Axis axis_of(std::size_t d) const { return static_cast<Axis>(letters_[d]); }

    std::size_t dimension_of(Axis axis) const { return letters_.find(static_cast<char>(axis)); }

private:
    std::string_view letters_;
};

[[noreturn]] inline void fail_physical_dimension()
{
    throw std::invalid_argument("Unsupported physical dimension");
}

/// Which axis dimension `d` is. X and Y come first in every order.
/// @throws std::invalid_argument "Unsupported physical dimension": `d` is no dimension
inline Axis axis_of_dimension(std::size_t d, const Json::Value& order)
{
    if (d >= dimension_count)
        fail_physical_dimension();
    if (d < 2)
        return d == 0 ? Axis::x : Axis::y;
    return DimensionAxes(order).axis_of(d);
}

} // namespace Ome::detail

#include <Ome/Image.h>

#include "ome/CollectionFiller.h"
#include "ome/dimension_axes.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

template <class Reference>
Image<Reference>::Image(const typename Element<Reference>::Binding& slot, const Json::Value& default_value,
                        std::size_t index)
    : Element<Reference>(slot, default_value, index)
{
}

template <class Reference>
Image<Reference>::~Image() = default;

template <class Reference>
const char* Image<Reference>::element_key()
{
    return "ome:Image";
}

namespace {

/// The dimensions behind X and Y are those of the planes.
void check_plane_count(const std::vector<std::size_t>& sizes)
{
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    if (sizes[3] > most / sizes[2] || sizes[4] > most / (sizes[2] * sizes[3]))
        throw std::invalid_argument("Unsupported number of planes");
}

template <class Channels>
void lay_out_channels(Channels& channels, std::size_t count)
{
    using Channel = typename Channels::const_iterator::value_type::element_type;
    const CollectionFiller<Channel> filler{channels};
    filler.refill(
        count, [&filler](Json::Value& element, std::size_t index) { filler.make_record(element, index); },
        [count](detail::ElementHistory& history)
        { history.rules(Prototype<Channel>::instance().record.id.value()).set(count, detail::IdRule{"Channel"}); });
}

}

template <class Reference>
void Image<Reference>::lay_out_planes(std::size_t count_z, std::size_t count_t, std::size_t count_c)
{
    using Axis = detail::PlaceRule::Axis;
    const detail::PlaceRule place_z{Axis::z, count_t, count_c};
    const detail::PlaceRule place_t{Axis::t, count_t, count_c};
    const detail::PlaceRule place_c{Axis::c, count_t, count_c};
    const std::size_t count = count_z * count_t * count_c;

    // The records of all planes are dear, and may never be asked for. One that nobody has seen can go again.
    const auto lay_out = [&](Json::Value& element, std::size_t index)
    {
        Plane<Reference> plane(element, Json::Value(), index + 1);
        plane.the_z = place_z.place(index);
        plane.the_t = place_t.place(index);
        plane.the_c = place_c.place(index);
    };
    const auto plan = [&](detail::ElementHistory& history)
    {
        const Plane<Reference>& prototype = Prototype<Plane<Reference>>::instance().record;
        history.rules(prototype.the_z.value()).set(count, place_z);
        history.rules(prototype.the_t.value()).set(count, place_t);
        history.rules(prototype.the_c.value()).set(count, place_c);
    };
    const CollectionFiller<Plane<Reference>> filler{planes};
    filler.refill(count, lay_out, plan);
}

template <class Reference>
void Image<Reference>::set_sizes(std::vector<std::size_t> sizes)
{
    if (std::ranges::find(sizes, 0U) != sizes.end())
        throw std::invalid_argument("Unsupported zero size");
    if (sizes.size() > detail::dimension_count)
        throw std::invalid_argument("Unsupported number of sizes");
    sizes.resize(detail::dimension_count, 1);

    check_plane_count(sizes);

    size_x = sizes[0];
    size_y = sizes[1];
    const detail::DimensionAxes axes(dimension_order.value());
    for (std::size_t d = 2; d < detail::dimension_count; ++d)
    {
        switch (axes.axis_of(d))
        {
        case detail::Axis::z:
            size_z = sizes[d];
            break;
        case detail::Axis::c:
            size_c = sizes[d];
            break;
        default:
            size_t = sizes[d];
            break;
        }
    }
    const auto size_of = [&](detail::Axis axis) { return sizes[axes.dimension_of(axis)]; };
    lay_out_channels(channels, size_of(detail::Axis::c));
    lay_out_planes(size_of(detail::Axis::z), size_of(detail::Axis::t), size_of(detail::Axis::c));
}

template struct Image<Json::SignalingReference>;

VELA_ABI_NAMESPACE_END
}

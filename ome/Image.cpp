#include <Ome/Image.h>

#include "ome/CollectionFiller.h"
#include "ome/dimension_axes.h"
#include "ome/sizes_of_stack.h"
#include "ome/unset_texts.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <typeinfo>
#include <utility>

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

/// How planes are laid out: those that the list holds, and the others.
template <class Plane>
struct PlaneFiller
{
    Collection<Plane>& planes;
    detail::PlaneLayout layout;

    void refill() const
    {
        const CollectionFiller<Plane> filler{planes};
        filler.refill(
            layout.count(), [this](Json::Value& element, std::size_t index) { lay_out(element, index); },
            [this](detail::ElementHistory& history) { plan(history); });
        filler.notes().layout = layout;
    }

    /// False where the planes have to be laid out anew.
    bool extend() const
    {
        const CollectionFiller<Plane> filler{planes};
        const auto before = std::exchange(filler.notes().layout, {}); // not known any more if this fails
        if (!before || before->count() != planes.size() || !layout.keeps(*before) || !filler.is_undisturbed())
            return false;
        try
        {
            filler.extend(
                layout.count(),
                [this](Json::Value& element, std::size_t index)
                {
                    detail::unset_empty_texts(element);
                    lay_out(element, index);
                },
                [this](detail::ElementHistory& history) { plan(history); });
        }
        catch (const std::bad_cast&)
        {
            return false; // laying all out finds it in its place
        }
        filler.notes().layout = layout;
        return true;
    }

private:
    /// The records of all planes are dear, and may never be asked for. One that nobody has seen can go again.
    void lay_out(Json::Value& element, std::size_t index) const
    {
        Plane plane(element, Json::Value(), index + 1);
        plane.the_z = layout.z().place(index);
        plane.the_t = layout.t().place(index);
        plane.the_c = layout.c().place(index);
    }

    void plan(detail::ElementHistory& history) const
    {
        const Plane& prototype = Prototype<Plane>::instance().record;
        history.rules(prototype.the_z.value()).set(layout.count(), layout.z());
        history.rules(prototype.the_t.value()).set(layout.count(), layout.t());
        history.rules(prototype.the_c.value()).set(layout.count(), layout.c());
    }
};

/// Writes the sizes into the record, and says which planes follow from them.
template <class Image>
detail::PlaneLayout write_sizes(Image& image, std::vector<std::size_t> sizes)
{
    if (std::ranges::find(sizes, 0U) != sizes.end())
        throw std::invalid_argument("Unsupported zero size");
    if (sizes.size() > detail::dimension_count)
        throw std::invalid_argument("Unsupported number of sizes");
    sizes.resize(detail::dimension_count, 1);

    check_plane_count(sizes);

    image.size_x = sizes[0];
    image.size_y = sizes[1];
    const detail::DimensionAxes axes(image.dimension_order.value());
    for (std::size_t d = 2; d < detail::dimension_count; ++d)
    {
        switch (axes.axis_of(d))
        {
        case detail::Axis::z:
            image.size_z = sizes[d];
            break;
        case detail::Axis::c:
            image.size_c = sizes[d];
            break;
        default:
            image.size_t = sizes[d];
            break;
        }
    }
    const auto size_of = [&](detail::Axis axis) { return sizes[axes.dimension_of(axis)]; };
    return {size_of(detail::Axis::z), size_of(detail::Axis::t), size_of(detail::Axis::c)};
}

}

template <class Reference>
void Image<Reference>::lay_out_planes(std::size_t count_z, std::size_t count_t, std::size_t count_c)
{
    PlaneFiller<Plane<Reference>>{planes, {count_z, count_t, count_c}}.refill();
}

template <class Reference>
void Image<Reference>::set_sizes(std::vector<std::size_t> sizes)
{
    const detail::PlaneLayout layout = write_sizes(*this, std::move(sizes));
    lay_out_channels(channels, layout.count_c);
    lay_out_planes(layout.count_z, layout.count_t, layout.count_c);
}

template struct Image<Json::SignalingReference>;

VELA_ABI_NAMESPACE_END
}

void Ome::detail::set_sizes_of_stack(Image<Json::SignalingReference>& image, const std::vector<std::size_t>& sizes,
                                     bool grows)
{
    const PlaneLayout layout = write_sizes(image, sizes);
    Json::Value& lists = image.pixels_content.slot();
    unset_empty_texts_of_channels(lists);
    lay_out_channels(image.channels, layout.count_c);
    const PlaneFiller<Plane<Json::SignalingReference>> filler{image.planes, layout};
    if (grows && filler.extend())
        return;
    unset_empty_texts_of_planes(lists);
    filler.refill();
}

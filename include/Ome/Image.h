/// The record of an image: the metadata of one stack.
#pragma once

#include <Ome/Channel.h>
#include <Ome/Collection.h>
#include <Ome/Element.h>
#include <Ome/Plane.h>
#include <VelaBase/export.h>

#include <cstddef>
#include <vector>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// An image with its pixels, channels and planes.
template <class Reference>
struct VELA_API Image : Element<Reference>
{
    template <class T>
    using Field = typename Element<Reference>::template Field<T>;

    /// The key of this element in the content of its parent: "ome:Image".
    static const char* element_key();

    Image(const typename Element<Reference>::Binding& slot, const Json::Value& default_value = Json::Value(),
          std::size_t index = 0);
    ~Image();

    Field<check::String> id{this->own("ID"), this->default_id("Image")};
    Field<check::String> name{this->own("Name")};
    Field<check::Structure> content{this->own("")};
    Field<check::Timestamp> acquisition_date{this->in(content, "ome:AcquisitionDate")};
    Field<check::String> description{this->in(content, "ome:Description")};
    Field<check::Structure> pixels{this->in(content, "ome:Pixels")};
    Field<check::String> pixels_id{this->in(pixels, "ID"), this->default_id("Pixels")};
    Field<check::DimensionOrder> dimension_order{this->in(pixels, "DimensionOrder")};
    Field<check::PixelType> type{this->in(pixels, "Type")};
    Field<check::PositiveInt> significant_bits{this->in(pixels, "SignificantBits")};
    Field<check::Boolean> interleaved{this->in(pixels, "Interleaved")};
    Field<check::Boolean> big_endian{this->in(pixels, "BigEndian")};
    Field<check::PositiveInt> size_x{this->in(pixels, "SizeX")};
    Field<check::PositiveInt> size_y{this->in(pixels, "SizeY")};
    Field<check::PositiveInt> size_z{this->in(pixels, "SizeZ")};
    Field<check::PositiveInt> size_c{this->in(pixels, "SizeC")};
    Field<check::PositiveInt> size_t{this->in(pixels, "SizeT")};
    Field<check::PositiveFloat> physical_size_x{this->in(pixels, "PhysicalSizeX"), 1.0};
    Field<check::LengthUnit> physical_size_x_unit{this->in(pixels, "PhysicalSizeXUnit"), "pixel"};
    Field<check::PositiveFloat> physical_size_y{this->in(pixels, "PhysicalSizeY"), 1.0};
    Field<check::LengthUnit> physical_size_y_unit{this->in(pixels, "PhysicalSizeYUnit"), "pixel"};
    Field<check::PositiveFloat> physical_size_z{this->in(pixels, "PhysicalSizeZ"), 1.0};
    Field<check::LengthUnit> physical_size_z_unit{this->in(pixels, "PhysicalSizeZUnit"), "pixel"};
    Field<check::PositiveFloat> time_increment{this->in(pixels, "TimeIncrement")};
    Field<check::TimeUnit> time_increment_unit{this->in(pixels, "TimeIncrementUnit")};
    Field<check::Structure> pixels_content{this->in(pixels, "")};
    Field<check::Structure> metadata_only{this->in(pixels_content, "ome:MetadataOnly"), Json::Value::Object()};
    Collection<Channel<Reference>> channels{pixels_content};
    Collection<Plane<Reference>> planes{pixels_content};

    /// Describes a stack of these sizes: X, Y, and the three others in the order of `dimension_order`, XYZTC where
    /// that is null or no such order. Fewer than five are filled up with 1. Writes the five sizes, and gives
    /// the image one channel for each of C, and one plane for each of Z, T and C, C running fastest.
    ///
    /// Channels and planes land on what the lists already hold; what is surplus there stays. They are made
    /// when somebody looks at them, through the record or through the tree; only those that are there already
    /// are laid out at once.
    ///
    /// @throws std::invalid_argument "Unsupported zero size": a size is 0
    /// @throws std::invalid_argument "Unsupported number of sizes": more than five
    /// @throws std::invalid_argument "Unsupported number of planes": more than a count can hold; nothing has changed
    /// @throws std::bad_cast "bad cast": a size above the 64-bit integers, or something in the tree that its field may
    ///         not hold, such as a dimension order that is no text; what comes before has changed
    void set_sizes(std::vector<std::size_t> sizes);

    /// Writes the physical length of dimension `d`, counted as in `set_sizes`.
    ///
    /// X, Y, Z: the physical size of a pixel becomes `len` through the size, in "m" where `len` is at or below
    /// 0.01 and in micrometres above: a guess, which is wanted. With a `len` of 0 or 1 it is the integer 1 in "pixel".
    /// T: the time increment becomes `len` through the size, in "s"; with a `len` of 0 or a size of 1 there is none.
    ///
    /// @throws std::invalid_argument "Unsupported physical dimension": C, or `d` above 4
    /// @throws std::bad_cast "bad cast": the size is not set, the result is not above 0, or the dimension order, which
    ///         matters behind X and Y, is neither a text nor null
    void set_len(std::size_t d, double len);

    /// Writes the offset of dimension `d` to all planes.
    ///
    /// X, Y: the position, in the unit of the physical size. Z: the same, `off` being the centre of the stack.
    /// T: the time of the plane, `off` being the middle, if there is a time increment; otherwise there is none.
    ///
    /// @throws std::invalid_argument "Unsupported physical dimension": C, or `d` above 4
    /// @throws std::bad_cast "bad cast": a time is not above 0. The planes before that one have changed. Also where a
    ///         size or physical size that is needed is not set, or the dimension order is neither a text nor null.
    void set_off(std::size_t d, double off);

private:
    void lay_out_planes(std::size_t count_z, std::size_t count_t, std::size_t count_c);
};

extern template struct Image<Json::SignalingReference>;
extern template class Collection<Image<Json::SignalingReference>>;

VELA_ABI_NAMESPACE_END
}

/// The record of a plane.
#pragma once

#include <Ome/Collection.h>
#include <Ome/Element.h>
#include <VelaBase/export.h>

#include <cstddef>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// What is known of one plane: its place in the stack, its times and its position.
template <class Reference>
struct VELA_API Plane : Element<Reference>
{
    template <class T>
    using Field = typename Element<Reference>::template Field<T>;

    /// The key of this element in the content of its parent: "ome:Plane".
    static const char* element_key();

    Plane(const typename Element<Reference>::Binding& slot, const Json::Value& default_value = Json::Value(),
          std::size_t index = 0);
    ~Plane();

    Field<check::NonNegativeInt> the_z{this->own("TheZ")};
    Field<check::NonNegativeInt> the_t{this->own("TheT")};
    Field<check::NonNegativeInt> the_c{this->own("TheC")};
    Field<check::PositiveFloat> delta_t{this->own("DeltaT")};
    Field<check::TimeUnit> delta_t_unit{this->own("DeltaTUnit")};
    Field<check::PositiveFloat> exposure_time{this->own("ExposureTime")};
    Field<check::TimeUnit> exposure_time_unit{this->own("ExposureTimeUnit")};
    Field<check::Number> position_x{this->own("PositionX")};
    Field<check::LengthUnit> position_x_unit{this->own("PositionXUnit")};
    Field<check::Number> position_y{this->own("PositionY")};
    Field<check::LengthUnit> position_y_unit{this->own("PositionYUnit")};
    Field<check::Number> position_z{this->own("PositionZ")};
    Field<check::LengthUnit> position_z_unit{this->own("PositionZUnit")};
};

extern template struct Plane<Json::SignalingReference>;
extern template class Collection<Plane<Json::SignalingReference>>;

VELA_ABI_NAMESPACE_END
}

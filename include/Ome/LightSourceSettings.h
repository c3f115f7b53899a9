/// The record of how a light source was set.
#pragma once

#include <Ome/Collection.h>
#include <Ome/Element.h>
#include <VelaBase/export.h>

#include <cstddef>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// The settings of a light source for one channel.
template <class Reference>
struct VELA_API LightSourceSettings : Element<Reference>
{
    template <class T>
    using Field = typename Element<Reference>::template Field<T>;

    /// The key of this element in the content of its parent: "ome:LightSourceSettings".
    static const char* element_key();

    LightSourceSettings(const typename Element<Reference>::Binding& slot,
                        const Json::Value& default_value = Json::Value(), std::size_t index = 0);
    ~LightSourceSettings();

    Field<check::String> id{this->own("ID")};
    Field<check::PercentFraction> attenuation{this->own("Attenuation")};
    Field<check::PositiveFloat> wavelength{this->own("Wavelength")};
    Field<check::LengthUnit> wavelength_unit{this->own("WavelengthUnit")};
};

extern template struct LightSourceSettings<Json::SignalingReference>;
extern template class Collection<LightSourceSettings<Json::SignalingReference>>;

VELA_ABI_NAMESPACE_END
}

/// The record of a light source.
#pragma once

#include <Ome/Collection.h>
#include <Ome/ManufacturerSpec.h>
#include <VelaBase/export.h>

#include <cstddef>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// A light source. What kind it is and what that holds is left to whoever fills the structure.
template <class Reference>
struct VELA_API LightSource : ManufacturerSpec<Reference>
{
    template <class T>
    using Field = typename ManufacturerSpec<Reference>::template Field<T>;

    /// The key of this element in the content of its parent: "ome:LightSource".
    static const char* element_key();

    LightSource(const typename ManufacturerSpec<Reference>::Binding& slot,
                const Json::Value& default_value = Json::Value(), std::size_t index = 0);
    ~LightSource();

    Field<check::String> id{this->own("ID")};
    Field<check::PositiveFloat> power{this->own("Power")};
    Field<check::PowerUnit> power_unit{this->own("PowerUnit")};
    Field<check::Structure> content{this->own("")};
    Field<check::Structure> laser{this->in(content, "ome:Laser")};
    Field<check::Structure> filament{this->in(content, "ome:Filament")};
    Field<check::Structure> arc{this->in(content, "ome:Arc")};
    Field<check::Structure> light_emitting_diode{this->in(content, "ome:LightEmittingDiode")};
    Field<check::Structure> generic_excitation_source{this->in(content, "ome:GenericExcitationSource")};
};

extern template struct LightSource<Json::SignalingReference>;
extern template class Collection<LightSource<Json::SignalingReference>>;

VELA_ABI_NAMESPACE_END
}

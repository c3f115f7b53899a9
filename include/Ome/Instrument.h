/// The record of an instrument.
#pragma once

#include <Ome/Collection.h>
#include <Ome/Element.h>
#include <Ome/LightSource.h>
#include <VelaBase/export.h>

#include <cstddef>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// An instrument. What its hardware holds is left to whoever fills the structures.
template <class Reference>
struct VELA_API Instrument : Element<Reference>
{
    template <class T>
    using Field = typename Element<Reference>::template Field<T>;

    /// The key of this element in the content of its parent: "ome:Instrument".
    static const char* element_key();

    Instrument(const typename Element<Reference>::Binding& slot, const Json::Value& default_value = Json::Value(),
               std::size_t index = 0);
    ~Instrument();

    Field<check::String> id{this->own("ID")};
    Field<check::Structure> content{this->own("")};
    Field<check::Structure> microscope{this->in(content, "ome:Microscope")};
    Field<check::Structure> detector{this->in(content, "ome:Detector")};
    Field<check::Structure> objective{this->in(content, "ome:Objective")};
    Field<check::Structure> filter_set{this->in(content, "ome:FilterSet")};
    Field<check::Structure> filter{this->in(content, "ome:Filter")};
    Field<check::Structure> dichroic{this->in(content, "ome:Dichroic")};
    Collection<LightSource<Reference>> light_sources{content};
};

extern template struct Instrument<Json::SignalingReference>;
extern template class Collection<Instrument<Json::SignalingReference>>;

VELA_ABI_NAMESPACE_END
}

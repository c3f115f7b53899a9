#include "ome/CollectionFiller.h"

#include <Ome/Channel.h>
#include <Ome/Document.h>
#include <Ome/Instrument.h>
#include <Ome/LightSource.h>
#include <Ome/LightSourceSettings.h>
#include <Ome/ManufacturerSpec.h>
#include <Ome/Plane.h>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

Id::Id(const char* id_name, std::size_t id_index) : name(id_name), index(id_index) {}

Id::operator Json::Value() const
{
    return index == 0 ? Json::Value() : Json::Value(name + (':' + std::to_string(index)));
}

template <class Reference>
Element<Reference>::Element(const Binding& slot, const Json::Value& default_value, std::size_t index)
    : structure(slot), index_(slot.settled ? settled_index : index)
{
    if (!default_value.is_null())
        structure = default_value;
}

template <class Reference>
typename Element<Reference>::Binding Element<Reference>::in(const Field<check::Structure>& object,
                                                            const char* key) const
{
    Binding binding(object.slot().at(key));
    binding.settled = settled();
    return binding;
}

template <class Reference>
Document<Reference>::Document(const typename Element<Reference>::Binding& root)
    : Element<Reference>(root.slot->at(element_key()), Json::Value(), 0)
{
}

template <class Reference>
Document<Reference>::~Document() = default;

template <class Reference>
const char* Document<Reference>::element_key()
{
    return "ome:OME";
}

template <class Reference>
ManufacturerSpec<Reference>::ManufacturerSpec(const typename Element<Reference>::Binding& slot,
                                              const Json::Value& default_value, std::size_t index)
    : Element<Reference>(slot, default_value, index)
{
}

template <class Reference>
ManufacturerSpec<Reference>::~ManufacturerSpec() = default;

template <class Reference>
LightSource<Reference>::LightSource(const typename ManufacturerSpec<Reference>::Binding& slot,
                                    const Json::Value& default_value, std::size_t index)
    : ManufacturerSpec<Reference>(slot, default_value, index)
{
}

template <class Reference>
LightSource<Reference>::~LightSource() = default;

template <class Reference>
const char* LightSource<Reference>::element_key()
{
    return "ome:LightSource";
}

template <class Reference>
LightSourceSettings<Reference>::LightSourceSettings(const typename Element<Reference>::Binding& slot,
                                                    const Json::Value& default_value, std::size_t index)
    : Element<Reference>(slot, default_value, index)
{
}

template <class Reference>
LightSourceSettings<Reference>::~LightSourceSettings() = default;

template <class Reference>
const char* LightSourceSettings<Reference>::element_key()
{
    return "ome:LightSourceSettings";
}

template <class Reference>
Instrument<Reference>::Instrument(const typename Element<Reference>::Binding& slot, const Json::Value& default_value,
                                  std::size_t index)
    : Element<Reference>(slot, default_value, index)
{
}

template <class Reference>
Instrument<Reference>::~Instrument() = default;

template <class Reference>
const char* Instrument<Reference>::element_key()
{
    return "ome:Instrument";
}

template <class Reference>
Channel<Reference>::Channel(const typename Element<Reference>::Binding& slot, const Json::Value& default_value,
                            std::size_t index)
    : Element<Reference>(slot, default_value, index)
{
}

template <class Reference>
Channel<Reference>::~Channel() = default;

template <class Reference>
const char* Channel<Reference>::element_key()
{
    return "ome:Channel";
}

template <class Reference>
Plane<Reference>::Plane(const typename Element<Reference>::Binding& slot, const Json::Value& default_value,
                        std::size_t index)
    : Element<Reference>(slot, default_value, index)
{
}

template <class Reference>
Plane<Reference>::~Plane() = default;

template <class Reference>
const char* Plane<Reference>::element_key()
{
    return "ome:Plane";
}

template struct Element<Json::SignalingReference>;
template struct ManufacturerSpec<Json::SignalingReference>;
template struct LightSource<Json::SignalingReference>;
template struct LightSourceSettings<Json::SignalingReference>;
template struct Instrument<Json::SignalingReference>;
template struct Channel<Json::SignalingReference>;
template struct Plane<Json::SignalingReference>;
template struct Document<Json::SignalingReference>;

template class Collection<LightSource<Json::SignalingReference>>;
template class Collection<LightSourceSettings<Json::SignalingReference>>;
template class Collection<Instrument<Json::SignalingReference>>;
template class Collection<Channel<Json::SignalingReference>>;
template class Collection<Plane<Json::SignalingReference>>;
template class Collection<Image<Json::SignalingReference>>;

VELA_ABI_NAMESPACE_END
}

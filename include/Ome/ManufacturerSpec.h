/// The base of the records of bought hardware.
#pragma once

#include <Ome/Element.h>
#include <VelaBase/export.h>

#include <cstddef>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// Who made a piece of hardware, and which one it is.
template <class Reference>
struct VELA_API ManufacturerSpec : Element<Reference>
{
    template <class T>
    using Field = typename Element<Reference>::template Field<T>;

    ManufacturerSpec(const typename Element<Reference>::Binding& slot, const Json::Value& default_value = Json::Value(),
                     std::size_t index = 0);
    ~ManufacturerSpec();

    Field<check::String> manufacturer{this->own("Manufacturer")};
    Field<check::String> model{this->own("Model")};
    Field<check::String> serial_number{this->own("SerialNumber")};
    Field<check::String> lot_number{this->own("LotNumber")};
};

extern template struct ManufacturerSpec<Json::SignalingReference>;

VELA_ABI_NAMESPACE_END
}

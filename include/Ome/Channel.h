/// The record of a channel.
#pragma once

#include <Ome/Collection.h>
#include <Ome/Element.h>
#include <Ome/LightSourceSettings.h>
#include <VelaBase/export.h>

#include <cstddef>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// What is known of one channel.
template <class Reference>
struct VELA_API Channel : Element<Reference>
{
    template <class T>
    using Field = typename Element<Reference>::template Field<T>;

    /// The key of this element in the content of its parent: "ome:Channel".
    static const char* element_key();

    Channel(const typename Element<Reference>::Binding& slot, const Json::Value& default_value = Json::Value(),
            std::size_t index = 0);
    ~Channel();

    Field<check::String> id{this->own("ID"), this->default_id("Channel")};
    Field<check::String> name{this->own("Name")};
    Field<check::PositiveInt> samples_per_pixel{this->own("SamplesPerPixel")};
    Field<check::IlluminationType> illumination_type{this->own("IlluminationType")};
    Field<check::PositiveFloat> pinhole_size{this->own("PinholeSize")};
    Field<check::LengthUnit> pinhole_size_unit{this->own("PinholeSizeUnit")};
    Field<check::AcquisitionMode> acquisition_mode{this->own("AcquisitionMode")};
    Field<check::ContrastMethod> contrast_method{this->own("ContrastMethod")};
    Field<check::PositiveFloat> excitation_wavelength{this->own("ExcitationWavelength")};
    Field<check::LengthUnit> excitation_wavelength_unit{this->own("ExcitationWavelengthUnit")};
    Field<check::PositiveFloat> emission_wavelength{this->own("EmissionWavelength")};
    Field<check::LengthUnit> emission_wavelength_unit{this->own("EmissionWavelengthUnit")};
    Field<check::String> fluor{this->own("Fluor")};
    Field<check::PercentFraction> nd_filter{this->own("NDFilter")};
    Field<check::Integer> pockel_cell_setting{this->own("PockelCellSetting")};
    Field<check::Integer> color{this->own("Color")};
    Field<check::Structure> content{this->own("")};
    Collection<LightSourceSettings<Reference>> light_source_settings{content, this->settled()};
    Field<check::Structure> detector_settings{this->in(content, "ome:DetectorSettings")};
    Field<check::Structure> filter_set_ref{this->in(content, "ome:FilterSetRef")};
    Field<check::Structure> light_path{this->in(content, "ome:LightPath")};
};

extern template struct Channel<Json::SignalingReference>;
extern template class Collection<Channel<Json::SignalingReference>>;

VELA_ABI_NAMESPACE_END
}

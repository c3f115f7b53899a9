#include "ome/record_fields.h"

#include <boost/make_shared.hpp>

#include <type_traits>

namespace vela_test {

namespace {

template <class T>
Value value_of(const T& payload)
{
    if constexpr (std::is_enum_v<T>)
        return static_cast<std::int32_t>(payload);
    else
        return payload;
}

template <class T>
class Recorder : public Json::ChangeHandler<T>
{
public:
    Recorder(ChangeLog& log, std::string field) : log_(&log), field_(std::move(field)) {}
    void changed(const T& value) override { log_->push_back({field_, value_of(value)}); }

private:
    ChangeLog* log_;
    std::string field_;
};

template <class T>
FieldView view(Reference::Field<T>& field)
{
    using type = typename T::type;
    FieldView result;
    result.reference = &field;
    result.assign = [&field](const Value& value) { field = value; };
    result.read = [&field] { return value_of<type>(field.get()); };
    result.watch = [&field](ChangeLog& log, const std::string& name)
    { field.set_change_handler(boost::make_shared<Recorder<type>>(log, name)); };
    return result;
}

const FieldView collection;

} // namespace

std::vector<FieldView> fields_of(Image& record)
{
    return {
        view(record.id),
        view(record.name),
        view(record.content),
        view(record.acquisition_date),
        view(record.description),
        view(record.pixels),
        view(record.pixels_id),
        view(record.dimension_order),
        view(record.type),
        view(record.significant_bits),
        view(record.interleaved),
        view(record.big_endian),
        view(record.size_x),
        view(record.size_y),
        view(record.size_z),
        view(record.size_c),
        view(record.size_t),
        view(record.physical_size_x),
        view(record.physical_size_x_unit),
        view(record.physical_size_y),
        view(record.physical_size_y_unit),
        view(record.physical_size_z),
        view(record.physical_size_z_unit),
        view(record.time_increment),
        view(record.time_increment_unit),
        view(record.pixels_content),
        view(record.metadata_only),
        collection,
        collection,
    };
}

std::vector<FieldView> fields_of(Channel& record)
{
    return {
        view(record.id),
        view(record.name),
        view(record.samples_per_pixel),
        view(record.illumination_type),
        view(record.pinhole_size),
        view(record.pinhole_size_unit),
        view(record.acquisition_mode),
        view(record.contrast_method),
        view(record.excitation_wavelength),
        view(record.excitation_wavelength_unit),
        view(record.emission_wavelength),
        view(record.emission_wavelength_unit),
        view(record.fluor),
        view(record.nd_filter),
        view(record.pockel_cell_setting),
        view(record.color),
        view(record.content),
        collection,
        view(record.detector_settings),
        view(record.filter_set_ref),
        view(record.light_path),
    };
}

std::vector<FieldView> fields_of(Plane& record)
{
    return {
        view(record.the_z),
        view(record.the_t),
        view(record.the_c),
        view(record.delta_t),
        view(record.delta_t_unit),
        view(record.exposure_time),
        view(record.exposure_time_unit),
        view(record.position_x),
        view(record.position_x_unit),
        view(record.position_y),
        view(record.position_y_unit),
        view(record.position_z),
        view(record.position_z_unit),
    };
}

std::vector<FieldView> fields_of(Instrument& record)
{
    return {
        view(record.id),       view(record.content),   view(record.microscope),
        view(record.detector), view(record.objective), view(record.filter_set),
        view(record.filter),   view(record.dichroic),  collection,
    };
}

std::vector<FieldView> fields_of(ManufacturerSpec& record)
{
    return {view(record.manufacturer), view(record.model), view(record.serial_number), view(record.lot_number)};
}

std::vector<FieldView> fields_of(LightSource& record)
{
    return {
        view(record.manufacturer),
        view(record.model),
        view(record.serial_number),
        view(record.lot_number),
        view(record.id),
        view(record.power),
        view(record.power_unit),
        view(record.content),
        view(record.laser),
        view(record.filament),
        view(record.arc),
        view(record.light_emitting_diode),
        view(record.generic_excitation_source),
    };
}

std::vector<FieldView> fields_of(LightSourceSettings& record)
{
    return {view(record.id), view(record.attenuation), view(record.wavelength), view(record.wavelength_unit)};
}

std::vector<FieldView> fields_of(Document& record)
{
    return {
        view(record.xmlns_ome),
        view(record.xmlns_xsi),
        view(record.xsi_schema_location),
        view(record.uuid),
        view(record.creator),
        view(record.content),
        collection,
        collection,
    };
}

} // namespace vela_test

#include "ome/record_tables.h"

#include <stdexcept>
#include <utility>

namespace vela_test {

namespace {

Row id(In in, const char* name = nullptr)
{
    Row row(in, "ID", Check::string);
    row.id_name = name;
    return row;
}

Row collection(In in, const RecordTable& elements)
{
    Row row(in, elements.element_key.c_str(), Check::structure);
    row.elements = &elements;
    return row;
}

} // namespace

std::size_t RecordTable::row(In in, const std::string& key) const
{
    for (std::size_t index = 0; index < rows.size(); ++index)
        if (rows[index].in == in && rows[index].key == key)
            return index;
    throw std::logic_error("no such row: " + key);
}

const RecordTable& document_table()
{
    static const RecordTable table = {
        "ome:OME",
        {
            {In::own, "xmlns:ome", Check::string, "http://www.openmicroscopy.org/Schemas/OME/2015-01"},
            {In::own, "xmlns:xsi", Check::string, "http://www.w3.org/2001/XMLSchema-instance"},
            {In::own, "xsi:schemaLocation", Check::string,
             "http://www.openmicroscopy.org/Schemas/OME/2015-01 "
             "http://www.openmicroscopy.org/Schemas/OME/2015-01/ome.xsd"},
            {In::own, "UUID", Check::uuid},
            {In::own, "Creator", Check::string},
            {In::own, "", Check::structure},
            collection(In::content, instrument_table()),
            collection(In::content, image_table()),
        }};
    return table;
}

const RecordTable& image_table()
{
    static const RecordTable table = {"ome:Image",
                                      {
                                          id(In::own, "Image"),
                                          {In::own, "Name", Check::string},
                                          {In::own, "", Check::structure},
                                          {In::content, "ome:AcquisitionDate", Check::timestamp},
                                          {In::content, "ome:Description", Check::string},
                                          {In::content, "ome:Pixels", Check::structure},
                                          id(In::pixels, "Pixels"),
                                          {In::pixels, "DimensionOrder", Check::dimension_order},
                                          {In::pixels, "Type", Check::pixel_type},
                                          {In::pixels, "SignificantBits", Check::positive_int},
                                          {In::pixels, "Interleaved", Check::boolean},
                                          {In::pixels, "BigEndian", Check::boolean},
                                          {In::pixels, "SizeX", Check::positive_int},
                                          {In::pixels, "SizeY", Check::positive_int},
                                          {In::pixels, "SizeZ", Check::positive_int},
                                          {In::pixels, "SizeC", Check::positive_int},
                                          {In::pixels, "SizeT", Check::positive_int},
                                          {In::pixels, "PhysicalSizeX", Check::positive_float, 1.0},
                                          {In::pixels, "PhysicalSizeXUnit", Check::length_unit, "pixel"},
                                          {In::pixels, "PhysicalSizeY", Check::positive_float, 1.0},
                                          {In::pixels, "PhysicalSizeYUnit", Check::length_unit, "pixel"},
                                          {In::pixels, "PhysicalSizeZ", Check::positive_float, 1.0},
                                          {In::pixels, "PhysicalSizeZUnit", Check::length_unit, "pixel"},
                                          {In::pixels, "TimeIncrement", Check::positive_float},
                                          {In::pixels, "TimeIncrementUnit", Check::time_unit},
                                          {In::pixels, "", Check::structure},
                                          {In::pixels_content, "ome:MetadataOnly", Check::structure, Value::Object()},
                                          collection(In::pixels_content, channel_table()),
                                          collection(In::pixels_content, plane_table()),
                                      }};
    return table;
}

const RecordTable& channel_table()
{
    static const RecordTable table = {"ome:Channel",
                                      {
                                          id(In::own, "Channel"),
                                          {In::own, "Name", Check::string},
                                          {In::own, "SamplesPerPixel", Check::positive_int},
                                          {In::own, "IlluminationType", Check::illumination_type},
                                          {In::own, "PinholeSize", Check::positive_float},
                                          {In::own, "PinholeSizeUnit", Check::length_unit},
                                          {In::own, "AcquisitionMode", Check::acquisition_mode},
                                          {In::own, "ContrastMethod", Check::contrast_method},
                                          {In::own, "ExcitationWavelength", Check::positive_float},
                                          {In::own, "ExcitationWavelengthUnit", Check::length_unit},
                                          {In::own, "EmissionWavelength", Check::positive_float},
                                          {In::own, "EmissionWavelengthUnit", Check::length_unit},
                                          {In::own, "Fluor", Check::string},
                                          {In::own, "NDFilter", Check::percent_fraction},
                                          {In::own, "PockelCellSetting", Check::integer},
                                          {In::own, "Color", Check::integer},
                                          {In::own, "", Check::structure},
                                          collection(In::content, light_source_settings_table()),
                                          {In::content, "ome:DetectorSettings", Check::structure},
                                          {In::content, "ome:FilterSetRef", Check::structure},
                                          {In::content, "ome:LightPath", Check::structure},
                                      }};
    return table;
}

const RecordTable& plane_table()
{
    static const RecordTable table = {"ome:Plane",
                                      {
                                          {In::own, "TheZ", Check::non_negative_int},
                                          {In::own, "TheT", Check::non_negative_int},
                                          {In::own, "TheC", Check::non_negative_int},
                                          {In::own, "DeltaT", Check::positive_float},
                                          {In::own, "DeltaTUnit", Check::time_unit},
                                          {In::own, "ExposureTime", Check::positive_float},
                                          {In::own, "ExposureTimeUnit", Check::time_unit},
                                          {In::own, "PositionX", Check::number},
                                          {In::own, "PositionXUnit", Check::length_unit},
                                          {In::own, "PositionY", Check::number},
                                          {In::own, "PositionYUnit", Check::length_unit},
                                          {In::own, "PositionZ", Check::number},
                                          {In::own, "PositionZUnit", Check::length_unit},
                                      }};
    return table;
}

const RecordTable& instrument_table()
{
    static const RecordTable table = {"ome:Instrument",
                                      {
                                          id(In::own),
                                          {In::own, "", Check::structure},
                                          {In::content, "ome:Microscope", Check::structure},
                                          {In::content, "ome:Detector", Check::structure},
                                          {In::content, "ome:Objective", Check::structure},
                                          {In::content, "ome:FilterSet", Check::structure},
                                          {In::content, "ome:Filter", Check::structure},
                                          {In::content, "ome:Dichroic", Check::structure},
                                          collection(In::content, light_source_table()),
                                      }};
    return table;
}

const RecordTable& manufacturer_table()
{
    static const RecordTable table = {"",
                                      {
                                          {In::own, "Manufacturer", Check::string},
                                          {In::own, "Model", Check::string},
                                          {In::own, "SerialNumber", Check::string},
                                          {In::own, "LotNumber", Check::string},
                                      }};
    return table;
}

const RecordTable& light_source_table()
{
    static const RecordTable table = {"ome:LightSource",
                                      {
                                          {In::own, "Manufacturer", Check::string},
                                          {In::own, "Model", Check::string},
                                          {In::own, "SerialNumber", Check::string},
                                          {In::own, "LotNumber", Check::string},
                                          id(In::own),
                                          {In::own, "Power", Check::positive_float},
                                          {In::own, "PowerUnit", Check::power_unit},
                                          {In::own, "", Check::structure},
                                          {In::content, "ome:Laser", Check::structure},
                                          {In::content, "ome:Filament", Check::structure},
                                          {In::content, "ome:Arc", Check::structure},
                                          {In::content, "ome:LightEmittingDiode", Check::structure},
                                          {In::content, "ome:GenericExcitationSource", Check::structure},
                                      }};
    return table;
}

const RecordTable& light_source_settings_table()
{
    static const RecordTable table = {"ome:LightSourceSettings",
                                      {
                                          id(In::own),
                                          {In::own, "Attenuation", Check::percent_fraction},
                                          {In::own, "Wavelength", Check::positive_float},
                                          {In::own, "WavelengthUnit", Check::length_unit},
                                      }};
    return table;
}

} // namespace vela_test

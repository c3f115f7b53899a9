#include "ome/record_tables.h"

#include <algorithm>

namespace vela_test {

namespace {

using Texts = std::vector<std::string>;

bool is_one_of(const Texts& texts, const Value& value)
{
    return value.is_string() && std::find(texts.begin(), texts.end(), *value.if_string()) != texts.end();
}

Texts with_prefixes(const std::string& unit)
{
    Texts units;
    for (const char* const prefix : {"Y", "Z", "E", "P", "T", "G", "M", "k",        "h", "da", "",
                                     "d", "c", "m", "n", "p", "f", "a", "\xC2\xB5", "z", "y"})
        units.push_back(prefix + unit);
    return units;
}

Texts together(Texts units, const Texts& more)
{
    units.insert(units.end(), more.begin(), more.end());
    return units;
}

double number_of(const Value& value)
{
    return value.is_integer() ? static_cast<double>(*value.if_integer()) : *value.if_decimal();
}

bool is_integer_from(const Value& value, std::int64_t least)
{
    return value.is_integer() && *value.if_integer() >= least;
}

} // namespace

const Texts& length_units()
{
    static const Texts units = together(with_prefixes("m"), {"\xE2\x84\xAB", "thou", "li", "in", "ft", "yd", "mi", "ua",
                                                             "ly", "pc", "pt", "pixel", "reference frame"});
    return units;
}

const Texts& power_units()
{
    static const Texts units = with_prefixes("W");
    return units;
}

const Texts& time_units()
{
    static const Texts units = together(with_prefixes("s"), {"min", "h"});
    return units;
}

const Texts& enumeration_texts(Check check)
{
    static const Texts modes = {"WideField",
                                "LaserScanningConfocalMicroscopy",
                                "SpinningDiskConfocal",
                                "SlitScanConfocal",
                                "MultiPhotonMicroscopy",
                                "StructuredIllumination",
                                "SingleMoleculeImaging",
                                "TotalInternalReflection",
                                "FluorescenceLifetime",
                                "SpectralImaging",
                                "FluorescenceCorrelationSpectroscopy",
                                "NearFieldScanningOpticalMicroscopy",
                                "SecondHarmonicGenerationImaging",
                                "PALM",
                                "STORM",
                                "STED",
                                "TIRF",
                                "FSM",
                                "LCM",
                                "Other"};
    static const Texts contrasts = {
        "Brightfield", "Phase",        "DIC",  "HoffmanModulation", "ObliqueIllumination", "PolarizedLight",
        "Darkfield",   "Fluorescence", "Other"};
    static const Texts orders = {"XYZCT", "XYZTC", "XYCTZ", "XYCZT", "XYTCZ", "XYTZC"};
    static const Texts illuminations = {"Transmitted", "Epifluorescence", "Oblique", "NonLinear", "Other"};
    static const Texts types = {"bit",    "int8",  "int16",  "int32",   "uint8",         "uint16",
                                "uint32", "float", "double", "complex", "double-complex"};
    static const Texts none;
    switch (check)
    {
    case Check::acquisition_mode:
        return modes;
    case Check::contrast_method:
        return contrasts;
    case Check::dimension_order:
        return orders;
    case Check::illumination_type:
        return illuminations;
    case Check::pixel_type:
        return types;
    default:
        return none;
    }
}

bool passes(Check check, const Value& value)
{
    if (value.is_null())
        return true;
    switch (check)
    {
    case Check::structure:
        return value.is_object();
    case Check::string:
        return value.is_string();
    case Check::boolean:
        return value.is_boolean();
    case Check::integer:
        return value.is_integer();
    case Check::non_negative_int:
        return is_integer_from(value, 0);
    case Check::positive_int:
        return is_integer_from(value, 1);
    case Check::number:
        return value.is_number();
    case Check::positive_float:
        return value.is_number() && number_of(value) > 0;
    case Check::percent_fraction:
        return value.is_number() && number_of(value) >= 0 && number_of(value) <= 1;
    case Check::timestamp:
        return is_one_of({sample_timestamp}, value);
    case Check::uuid:
        return is_one_of({sample_uuid}, value);
    case Check::length_unit:
        return is_one_of(length_units(), value);
    case Check::power_unit:
        return is_one_of(power_units(), value);
    case Check::time_unit:
        return is_one_of(time_units(), value);
    default:
        return is_one_of(enumeration_texts(check), value);
    }
}

const std::vector<Value>& probe_values()
{
    static const std::vector<Value> values = {
        Value(),
        true,
        false,
        0,
        1,
        2,
        -1,
        0.0,
        0.5,
        1.0,
        1.5,
        -0.5,
        3.0,
        "",
        "text",
        "m",
        "W",
        "s",
        "pixel",
        "min",
        "XYCZT",
        "uint16",
        "bit",
        "Oblique",
        "STED",
        "DIC",
        "Other",
        sample_timestamp,
        sample_uuid,
        Value::List(),
        Value::List{1},
        Value::Object(),
        Value::Object{{"key", 1}},
    };
    return values;
}

} // namespace vela_test

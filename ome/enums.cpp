#include <Ome/enums.h>

#include "ome/pixel_types.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <stdexcept>
#include <string_view>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

namespace {

// The row is the number of the enumerator.

constexpr auto type_texts = []
{
    std::array<const char*, detail::pixel_types.size()> texts{};
    std::ranges::transform(detail::pixel_types, texts.begin(), &detail::PixelType::name);
    return texts;
}();

constexpr std::array dimension_order_texts{"XYZCT", "XYZTC", "XYCTZ", "XYCZT", "XYTCZ", "XYTZC"};

constexpr std::array illumination_type_texts{"Transmitted", "Epifluorescence", "Oblique", "NonLinear", "Other"};

constexpr std::array acquisition_mode_texts{
    "WideField",
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
    "Other",
};

constexpr std::array contrast_method_texts{
    "Brightfield", "Phase",        "DIC",  "HoffmanModulation", "ObliqueIllumination", "PolarizedLight",
    "Darkfield",   "Fluorescence", "Other"};

template <class Table, class Enumeration>
const char* text_of(const Table& texts, Enumeration enumerator)
{
    const auto row = static_cast<std::int32_t>(enumerator);
    return row < 0 || row >= static_cast<std::int32_t>(texts.size()) ? "" : texts[static_cast<std::size_t>(row)];
}

template <class Table, class Enumeration>
void find_text(const Table& texts, std::string_view text, Enumeration& result)
{
    const auto found = std::ranges::find(texts, text);
    const auto row = found == texts.end() ? -1 : std::distance(texts.begin(), found);
    result = static_cast<Enumeration>(row);
}

}

const char* get_enumeration_text(Type enumerator)
{
    return text_of(type_texts, enumerator);
}

const char* get_enumeration_text(DimensionOrder enumerator)
{
    return text_of(dimension_order_texts, enumerator);
}

const char* get_enumeration_text(IlluminationType enumerator)
{
    return text_of(illumination_type_texts, enumerator);
}

const char* get_enumeration_text(AcquisitionMode enumerator)
{
    return text_of(acquisition_mode_texts, enumerator);
}

const char* get_enumeration_text(ContrastMethod enumerator)
{
    return text_of(contrast_method_texts, enumerator);
}

void get_enumeration(const std::string& text, Type& result)
{
    find_text(type_texts, text, result);
}

void get_enumeration(const std::string& text, DimensionOrder& result)
{
    find_text(dimension_order_texts, text, result);
}

void get_enumeration(const std::string& text, IlluminationType& result)
{
    find_text(illumination_type_texts, text, result);
}

void get_enumeration(const std::string& text, AcquisitionMode& result)
{
    find_text(acquisition_mode_texts, text, result);
}

void get_enumeration(const std::string& text, ContrastMethod& result)
{
    find_text(contrast_method_texts, text, result);
}

Type get_type(std::int32_t id)
{
    const auto row = std::ranges::find(detail::pixel_types, id, &detail::PixelType::id);
    if (id == vela_dt_none || row == detail::pixel_types.end())
        throw std::invalid_argument("Unsupported data type");
    return row->type;
}

VELA_ABI_NAMESPACE_END
}

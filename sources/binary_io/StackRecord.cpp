#include "sources/binary_io/StackRecord.h"

#include <array>
#include <bit>
#include <iterator>
#include <limits>

namespace Vela::detail {

namespace {

/// The fields of a packed record are not aligned, so they are copied one by one.
template <class Target, class Field>
std::vector<Target> first_of(const Field& field, std::uint32_t count)
{
    std::vector<Target> values(count);
    for (std::uint32_t i = 0; i < count; ++i)
        values[i] = field(i);
    return values;
}

} // namespace

static_assert(std::size(UnitRecord{}.exponents) == si::value::dimension_count, "one exponent for each base unit");

UnitRecord neutral_unit()
{
    UnitRecord record = {};
    for (UnitRecord::Fraction& exponent : record.exponents)
        exponent = {0, 1};
    record.number = 1.0;
    return record;
}

bool is_neutral(const UnitRecord& unit)
{
    typedef std::array<unsigned char, sizeof unit> UnitBytes;
    return std::bit_cast<UnitBytes>(unit) == std::bit_cast<UnitBytes>(neutral_unit());
}

StackFooter neutral_footer()
{
    StackFooter footer = {};
    footer.data_units = neutral_unit();
    for (UnitRecord& unit : footer.dimension_units)
        unit = neutral_unit();
    footer.required_reader_version = std::numeric_limits<std::uint32_t>::max();
    return footer;
}

UnitRecord to_record(const si::value& unit)
{
    UnitRecord record = {};
    for (std::size_t i = 0; i < si::value::dimension_count; ++i)
        record.exponents[i] = {unit.exponent(i).numerator(), unit.exponent(i).denominator()};
    record.number = unit.value_in_baseunits();
    return record;
}

si::value from_record(const UnitRecord& record)
{
    std::array<si::fraction, si::value::dimension_count> exponents;
    for (std::size_t i = 0; i < exponents.size(); ++i)
    {
        const UnitRecord::Fraction exponent = record.exponents[i];
        exponents[i] = si::fraction::unreduced(exponent.numerator, exponent.denominator);
    }
    return {record.number, exponents};
}

std::vector<std::uint64_t> sizes_of(const VBFStackHeader& header)
{
    return first_of<std::uint64_t>([&header](std::uint32_t i) { return header.dimension_sizes[i]; }, header.rank);
}

std::vector<double> lengths_of(const VBFStackHeader& header)
{
    return first_of<double>([&header](std::uint32_t i) { return header.lengths[i]; }, header.rank);
}

std::vector<double> offsets_of(const VBFStackHeader& header)
{
    return first_of<double>([&header](std::uint32_t i) { return header.offsets[i]; }, header.rank);
}

} // namespace Vela::detail

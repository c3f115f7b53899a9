/// The named units.
#pragma once

#include <si/value.h>

#include <string>
#include <string_view>
#include <vector>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

/// A row of the table: what one of the unit is in base units, and how the printer may write it.
class unit : public value
{
public:
    unit(std::string name, const value& one, int smallest_prefix, int largest_prefix);
    unit(const unit& other) = default;
    unit& operator=(const unit& other) = default;
    ~unit() override;

    const value& one() const { return *this; }
    /// The range of the decimal exponents of a prefix that the printer may use. The parser takes others too.
    int smallest_prefix() const { return smallest_prefix_; }
    int largest_prefix() const { return largest_prefix_; }
    const std::string& name() const { return name_; }

private:
    int smallest_prefix_;
    int largest_prefix_;
    std::string name_;
};

/// All units. Where several fit, the parser and the printer both take the first, so the order is part of the text
/// form. The base units are the first nine rows, in the order of the exponents of a value.
///
/// Made at the first use, and there to the end of the process.
const std::vector<unit>& unit_table();

/// The first unit of this name, null if there is none.
const unit* find_unit(std::string_view name);

VELA_ABI_NAMESPACE_END
}

/// A description that lets tests do what derived stacks may do.
#pragma once

#include <VelaStacks/VStackInfo.h>
#include <VelaStacks/VStackRegion.h>

#include <cstdint>
#include <string>
#include <vector>

namespace vela_test {

using Sizes = std::vector<std::uint64_t>;
using Doubles = std::vector<double>;
using Texts = std::vector<std::string>;

class OpenInfo : public VStackInfoImp
{
public:
    using VStackInfoImp::VStackInfoImp;

    OpenInfo() = default;
    explicit OpenInfo(const Sizes& new_sizes, vela_dt new_dt = vela_dt_uint8) : VStackInfoImp(new_sizes.size())
    {
        create(new_sizes, new_dt);
    }
    OpenInfo(const Sizes& new_sizes, Ome::DimensionOrder order) : VStackInfoImp(Ome::Type::uint8, new_sizes, order) {}

    using VStackInfoImp::locked;
    using VStackInfoImp::meta_data_string;
    using VStackInfoImp::set_sizes;
    using VStackInfoImp::set_type;
    using VStackInfoImp::set_variable_size;
    using VStackInfoImp::set_variable_type;
    using VStackInfoImp::store_lengths;
    using VStackInfoImp::store_offsets;
    using VStackInfoImp::stored_col_positions;
    using VStackInfoImp::stored_units;
};

} // namespace vela_test

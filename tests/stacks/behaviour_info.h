/// A description whose protected side is open, for tests of what can be seen from outside.
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

class BehaviourInfo : public VStackInfoImp
{
public:
    using VStackInfoImp::locked;
    using VStackInfoImp::meta_data_string;
    using VStackInfoImp::set_sizes;
    using VStackInfoImp::set_type;
    using VStackInfoImp::set_variable_size;
    using VStackInfoImp::set_variable_type;
    using VStackInfoImp::VStackInfoImp;

    BehaviourInfo() = default;
    explicit BehaviourInfo(const Sizes& of_sizes, Ome::DimensionOrder order = Ome::DimensionOrder::XYZTC)
        : VStackInfoImp(Ome::Type::uint8, of_sizes, order)
    {
    }
};

} // namespace vela_test

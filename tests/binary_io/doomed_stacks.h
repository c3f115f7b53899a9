/// The stacks of a writer that is killed, and what they hold.
#pragma once

#include <VelaBinaryIO/VBFFile.h>

#include "support/sample_bytes.h"

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace vela_test {

constexpr std::uint64_t doomed_stack_count = 12;

struct DoomedStack
{
    explicit DoomedStack(std::uint64_t index)
    {
        std::mt19937 random(static_cast<unsigned>(index) + 100);
        sizes = {1 + random() % 90, 1 + random() % 70, 1 + random() % 9};
        grows = random() % 3 == 0;
        level = index % 2 == 0 ? 0 : 1 + static_cast<int>(random() % 9);
        name = "stack " + std::to_string(index);
        samples = sparse_bytes(sizes[0] * sizes[1] * sizes[2], static_cast<unsigned>(index));
    }

    /// In as many calls as there are planes.
    void write(VBFFileInterface& file) const
    {
        const auto stack = file.add_stack(false);
        std::vector<std::uint64_t> described = sizes;
        if (grows)
            described.back() = 0;
        stack->create(described, vela_dt_uint8);
        stack->set_name(name);
        stack->set_tag("name", name);
        stack->set_compression(1, level);
        const std::uint64_t plane = sizes[0] * sizes[1];
        for (std::uint64_t z = 0; z < sizes[2]; ++z)
            stack->write(vela_dt_uint8, samples.data() + z * plane, nullptr, plane);
        if (grows)
            stack->commit(0);
    }

    std::vector<std::uint64_t> sizes;
    bool grows;
    int level;
    std::string name;
    Bytes samples;
};

} // namespace vela_test

/// Short hands for the samples of a stack that is in shared memory.
#pragma once

#include <VelaStacks/SharedMemory.h>

#include <cstring>
#include <string>
#include <vector>

namespace vela_test {

/// All samples of the segment `id`.
template <class T>
std::vector<T> samples_in(const std::string& id)
{
    Vela::SharedMemory memory(id);
    std::vector<T> samples(memory.size() / sizeof(T));
    if (!samples.empty())
        std::memcpy(samples.data(), memory.data(), samples.size() * sizeof(T));
    return samples;
}

/// `samples` become the first of the segment `id`.
template <class T>
void put_samples(const std::string& id, const std::vector<T>& samples)
{
    Vela::SharedMemory memory(id);
    std::memcpy(memory.data(), samples.data(), samples.size() * sizeof(T));
}

} // namespace vela_test

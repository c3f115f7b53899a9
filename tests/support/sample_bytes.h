/// Data for the tests of streams, the same in every run.
#pragma once

#include "support/temporary_folder.h"

#include <array>
#include <cstddef>
#include <random>

namespace vela_test {

/// Bytes that do not compress.
inline Bytes noisy_bytes(std::size_t count, unsigned seed = 1)
{
    std::mt19937 random(seed);
    Bytes bytes(count);
    for (unsigned char& byte : bytes)
        byte = static_cast<unsigned char>(random() & 0xFF);
    return bytes;
}

/// Mostly zeros, with something else about every 16 bytes.
inline Bytes sparse_bytes(std::size_t count, unsigned seed = 1)
{
    std::mt19937 random(seed);
    Bytes bytes(count, 0);
    for (std::size_t i = random() % 32; i < count; i += 1 + random() % 32)
        bytes[i] = static_cast<unsigned char>(random() & 0xFF);
    return bytes;
}

inline Bytes constant_bytes(std::size_t count, unsigned char value = 0x37)
{
    return Bytes(count, value);
}

/// One of each kind.
inline std::array<Bytes, 3> bytes_of_each_kind(std::size_t count, unsigned seed = 1)
{
    return {noisy_bytes(count, seed), sparse_bytes(count, seed), constant_bytes(count)};
}

/// Bytes `begin` to `end` of `bytes`.
inline Bytes slice(const Bytes& bytes, std::size_t begin, std::size_t end)
{
    return Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(begin), bytes.begin() + static_cast<std::ptrdiff_t>(end));
}

inline Bytes operator+(Bytes a, const Bytes& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

} // namespace vela_test

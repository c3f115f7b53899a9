/// SHA-256 (FIPS 180-4), to hold samples against the sums in the manifests of the test files.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vela_test {

namespace sha256_detail {

typedef std::array<std::uint32_t, 8> State;

inline constexpr std::array<std::uint32_t, 64> round_constants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

/// Takes in one block of 64 bytes.
inline void add_block(State& state, const unsigned char* block)
{
    std::array<std::uint32_t, 64> words;
    for (std::size_t i = 0; i < 16; ++i)
        words[i] = static_cast<std::uint32_t>(block[4 * i]) << 24 | static_cast<std::uint32_t>(block[4 * i + 1]) << 16 |
                   static_cast<std::uint32_t>(block[4 * i + 2]) << 8 | block[4 * i + 3];
    for (std::size_t i = 16; i < 64; ++i)
    {
        const std::uint32_t early = words[i - 15];
        const std::uint32_t late = words[i - 2];
        const std::uint32_t s0 = std::rotr(early, 7) ^ std::rotr(early, 18) ^ (early >> 3);
        const std::uint32_t s1 = std::rotr(late, 17) ^ std::rotr(late, 19) ^ (late >> 10);
        words[i] = words[i - 16] + s0 + words[i - 7] + s1;
    }

    State v = state;
    for (std::size_t i = 0; i < 64; ++i)
    {
        const std::uint32_t s1 = std::rotr(v[4], 6) ^ std::rotr(v[4], 11) ^ std::rotr(v[4], 25);
        const std::uint32_t choice = (v[4] & v[5]) ^ (~v[4] & v[6]);
        const std::uint32_t t1 = v[7] + s1 + choice + round_constants[i] + words[i];
        const std::uint32_t s0 = std::rotr(v[0], 2) ^ std::rotr(v[0], 13) ^ std::rotr(v[0], 22);
        const std::uint32_t majority = (v[0] & v[1]) ^ (v[0] & v[2]) ^ (v[1] & v[2]);
        v = {t1 + s0 + majority, v[0], v[1], v[2], v[3] + t1, v[4], v[5], v[6]};
    }
    for (std::size_t i = 0; i < 8; ++i)
        state[i] += v[i];
}

} // namespace sha256_detail

/// `bytes` in lower-case hexadecimal digits.
inline std::string hexadecimal(const unsigned char* bytes, std::size_t size_bytes)
{
    static const char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(2 * size_bytes);
    for (std::size_t i = 0; i < size_bytes; ++i)
    {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
    }
    return text;
}

/// The sum of `size_bytes` bytes in lower-case hexadecimal digits.
inline std::string sha256(const unsigned char* bytes, std::size_t size_bytes)
{
    sha256_detail::State state = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                  0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::size_t done = 0;
    for (; size_bytes - done >= 64; done += 64)
        sha256_detail::add_block(state, bytes + done);

    // The rest, a bit 1, zeros, and the count of bits in 8 bytes, big-endian.
    std::vector<unsigned char> tail(bytes + done, bytes + size_bytes);
    tail.push_back(0x80);
    while (tail.size() % 64 != 56)
        tail.push_back(0);
    const std::uint64_t size_bits = static_cast<std::uint64_t>(size_bytes) * 8;
    for (int shift = 56; shift >= 0; shift -= 8)
        tail.push_back(static_cast<unsigned char>(size_bits >> shift));
    for (std::size_t i = 0; i < tail.size(); i += 64)
        sha256_detail::add_block(state, tail.data() + i);

    std::vector<unsigned char> sum;
    for (const std::uint32_t word : state)
        for (int shift = 24; shift >= 0; shift -= 8)
            sum.push_back(static_cast<unsigned char>(word >> shift));
    return hexadecimal(sum.data(), sum.size());
}

inline std::string sha256(const std::vector<unsigned char>& bytes)
{
    return sha256(bytes.data(), bytes.size());
}

} // namespace vela_test

/// The types of numbers that a document can hold.
#pragma once

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>

namespace xml_test {

using NumberTypes =
    testing::Types<unsigned char, char, unsigned short, short, unsigned int, int, float, double, std::uint64_t,
                   std::int64_t, bool, std::complex<unsigned char>, std::complex<char>, std::complex<unsigned short>,
                   std::complex<short>, std::complex<unsigned int>, std::complex<int>, std::complex<float>,
                   std::complex<double>, std::complex<std::uint64_t>, std::complex<std::int64_t>>;

} // namespace xml_test

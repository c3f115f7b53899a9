#include "units/prefix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace si;

TEST(PrefixTest, FactorsAreThoseOfPow)
{
    int count = 0;
    for (int byte = 0; byte < 256; ++byte)
    {
        const prefix found = find_prefix(static_cast<char>(byte));
        count += found.exponent != 0;
        EXPECT_EQ(found.factor, std::pow(10.0, found.exponent)) << byte;
    }
    EXPECT_EQ(count, 19);
}

TEST(PrefixTest, PrintedPrefixesReadBackButForAtto)
{
    std::string printed;
    for (int exponent = -30; exponent <= 30; ++exponent)
    {
        const char byte = prefix_byte(exponent);
        if (exponent == 0 || byte == '\x80')
            continue;
        printed += byte;
        EXPECT_EQ(find_prefix(byte).exponent, byte == 'a' ? 0 : exponent);
    }
    EXPECT_EQ(printed, "yzafpn\xB5mcdhkMGTPEZY");
}

#include "binary_io/types/convert_one.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace vela_test {
namespace {

TEST(IntegerToInteger, Uint8Of200AsInt8IsMinus56)
{
    EXPECT_EQ(converted<std::int8_t>(std::uint8_t{200}), -56);
}

TEST(IntegerToInteger, Int32Of300AsUint8Is44)
{
    EXPECT_EQ(converted<std::uint8_t>(std::int32_t{300}), 44);
}

TEST(IntegerToInteger, NarrowingKeepsTheLowBitsWithoutSaturation)
{
    EXPECT_EQ(converted<std::int8_t>(std::int32_t{300}), 44);
    EXPECT_EQ(converted<std::int8_t>(std::int32_t{-300}), -44);
    EXPECT_EQ(converted<std::int8_t>(std::int16_t{128}), -128);
    EXPECT_EQ(converted<std::uint8_t>(std::uint16_t{0xffff}), 0xff);
    EXPECT_EQ(converted<std::uint8_t>(std::uint16_t{0x0100}), 0);
    EXPECT_EQ(converted<std::int16_t>(std::uint32_t{0x12348000}), -32768);
    EXPECT_EQ(converted<std::uint16_t>(std::int32_t{-2}), 0xfffe);
    EXPECT_EQ(converted<std::int32_t>(std::int64_t{0x1234567890abcdef}), static_cast<std::int32_t>(0x90abcdef));
    EXPECT_EQ(converted<std::uint32_t>(std::uint64_t{0x1234567890abcdef}), 0x90abcdefu);
    EXPECT_EQ(converted<std::uint8_t>(std::uint64_t{0x1234567890abcdef}), 0xef);
    EXPECT_EQ(converted<std::int16_t>(std::numeric_limits<std::int64_t>::min()), 0);
}

TEST(IntegerToInteger, SameWidthReinterpretsTheBits)
{
    EXPECT_EQ(converted<std::uint8_t>(std::int8_t{-1}), 255);
    EXPECT_EQ(converted<std::int16_t>(std::uint16_t{40000}), -25536);
    EXPECT_EQ(converted<std::uint32_t>(std::numeric_limits<std::int32_t>::min()), 0x80000000u);
    EXPECT_EQ(converted<std::int32_t>(std::uint32_t{0xffffffff}), -1);
    EXPECT_EQ(converted<std::int64_t>(std::uint64_t{0x8000000000000000}), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(converted<std::uint64_t>(std::int64_t{-1}), 0xffffffffffffffffu);
}

TEST(IntegerToInteger, WideningExtendsTheSignOfASignedSource)
{
    EXPECT_EQ(converted<std::int16_t>(std::int8_t{-1}), -1);
    EXPECT_EQ(converted<std::uint16_t>(std::int8_t{-1}), 0xffff);
    EXPECT_EQ(converted<std::uint32_t>(std::int8_t{-128}), 0xffffff80u);
    EXPECT_EQ(converted<std::uint32_t>(std::int16_t{-2}), 0xfffffffeu);
    EXPECT_EQ(converted<std::int64_t>(std::int32_t{-2147483647 - 1}), -2147483648LL);
    EXPECT_EQ(converted<std::uint64_t>(std::int32_t{-1}), 0xffffffffffffffffu);
    EXPECT_EQ(converted<std::uint64_t>(std::int16_t{-32768}), 0xffffffffffff8000u);
}

TEST(IntegerToInteger, WideningFillsAnUnsignedSourceWithZeros)
{
    EXPECT_EQ(converted<std::int16_t>(std::uint8_t{255}), 255);
    EXPECT_EQ(converted<std::uint16_t>(std::uint8_t{128}), 128);
    EXPECT_EQ(converted<std::int32_t>(std::uint16_t{65535}), 65535);
    EXPECT_EQ(converted<std::int64_t>(std::uint32_t{0xffffffff}), 4294967295LL);
    EXPECT_EQ(converted<std::uint64_t>(std::uint32_t{0x80000000}), 0x80000000u);
}

TEST(IntegerToInteger, SameTypeCopies)
{
    EXPECT_EQ(converted<std::uint8_t>(std::uint8_t{200}), 200);
    EXPECT_EQ(converted<std::int8_t>(std::int8_t{-56}), -56);
    EXPECT_EQ(converted<std::uint64_t>(std::uint64_t{0xfedcba9876543210}), 0xfedcba9876543210u);
    EXPECT_EQ(converted<std::int64_t>(std::numeric_limits<std::int64_t>::min()),
              std::numeric_limits<std::int64_t>::min());
}

TEST(IntegerToFloat, SmallIntegersKeepTheirValue)
{
    EXPECT_EQ(converted<float>(std::uint8_t{200}), 200.0f);
    EXPECT_EQ(converted<double>(std::int8_t{-56}), -56.0);
    EXPECT_EQ(converted<float>(std::uint16_t{65535}), 65535.0f);
    EXPECT_EQ(converted<float>(std::int16_t{-32768}), -32768.0f);
    EXPECT_EQ(converted<float>(std::int32_t{-16777216}), -16777216.0f);
    EXPECT_EQ(converted<double>(std::numeric_limits<std::int32_t>::min()), -2147483648.0);
}

TEST(IntegerToFloat, TakesTheNearestAndTheEvenOneOnATie)
{
    EXPECT_EQ(converted<float>(std::int32_t{16777217}), 16777216.0f);
    EXPECT_EQ(converted<float>(std::int32_t{16777219}), 16777220.0f);
    EXPECT_EQ(converted<float>(std::int32_t{-16777219}), -16777220.0f);
    EXPECT_EQ(converted<float>(std::numeric_limits<std::int32_t>::max()), 2147483648.0f);
    EXPECT_EQ(converted<double>(std::int64_t{9007199254740993}), 9007199254740992.0);
    EXPECT_EQ(converted<double>(std::int64_t{9007199254740995}), 9007199254740996.0);
    EXPECT_EQ(converted<double>(std::numeric_limits<std::int64_t>::max()), 0x1p63);
    EXPECT_EQ(converted<double>(std::numeric_limits<std::int64_t>::min()), -0x1p63);
}

TEST(IntegerToFloat, Int64ToSingleIsRoundedOnce)
{
    // Just above the middle of two singles; by way of double it would become the middle, and go down.
    EXPECT_EQ(converted<float>((std::int64_t{1} << 60) + (std::int64_t{1} << 36) + 1), 0x1p60f + 0x1p37f);
    EXPECT_EQ(converted<float>(-((std::int64_t{1} << 60) + (std::int64_t{1} << 36) + 1)), -(0x1p60f + 0x1p37f));
}

TEST(IntegerToFloat, Uint32StaysPositive)
{
    EXPECT_EQ(converted<float>(std::uint32_t{0x80000000}), 2147483648.0f);
    EXPECT_EQ(converted<float>(std::uint32_t{0xffffffff}), 4294967296.0f);
    EXPECT_EQ(converted<float>(std::uint32_t{0xffffff7f}), 4294967040.0f);
    EXPECT_EQ(converted<float>(std::uint32_t{0xffffff80}), 4294967296.0f);
    EXPECT_EQ(converted<double>(std::uint32_t{0xffffffff}), 4294967295.0);
}

TEST(IntegerToFloat, Uint64BelowTheTopBitIsTheNearest)
{
    EXPECT_EQ(converted<double>(std::uint64_t{0x7fffffffffffffff}), 0x1p63);
    EXPECT_EQ(converted<double>(std::uint64_t{9007199254740993}), 9007199254740992.0);
    EXPECT_EQ(converted<float>(std::uint64_t{16777219}), 16777220.0f);
    EXPECT_EQ(converted<float>(std::uint64_t{0x4000004000000001}), 0x1p62f + 0x1p39f);
}

TEST(IntegerToFloat, LargestUint64AsDoubleIs2To64)
{
    EXPECT_EQ(converted<double>(std::uint64_t{0xffffffffffffffff}), 0x1p64);
    EXPECT_EQ(converted<float>(std::uint64_t{0xffffffffffffffff}), 0x1p64f);
}

TEST(IntegerToFloat, Uint64WithTheTopBitIsRoundedTwiceInDouble)
{
    EXPECT_EQ(converted<double>(std::uint64_t{0x8000000000000000}), 0x1p63);
    // Doubles lie 2048 apart here, but 1024 apart where the signed value lies: 1025 above 2^63 becomes
    // 1024 above, the middle, and that goes to the even neighbour.
    EXPECT_EQ(converted<double>(std::uint64_t{0x8000000000000401}), 0x1p63);
    EXPECT_EQ(converted<double>(std::uint64_t{0x80000000000005ff}), 0x1p63);
    EXPECT_EQ(converted<double>(std::uint64_t{0x8000000000000601}), 0x1p63 + 2048);
    EXPECT_EQ(converted<double>(std::uint64_t{0x8000000000000bff}), 0x1p63 + 4096);
    EXPECT_EQ(converted<double>(std::uint64_t{0x8000000000000a01}), 0x1p63 + 4096);
    EXPECT_EQ(converted<double>(std::uint64_t{0x80000000000009ff}), 0x1p63 + 2048);
    // From 2^63 + 2^62 on the signed values are 512 apart at most.
    EXPECT_EQ(converted<double>(std::uint64_t{0xc000000000000401}), 0x1.8p63);
    EXPECT_EQ(converted<double>(std::uint64_t{0xc000000000000501}), 0x1.8p63 + 2048);
}

TEST(IntegerToFloat, Uint64WithTheTopBitIsRoundedTwiceInSingle)
{
    EXPECT_EQ(converted<float>(std::uint64_t{0x8000000000000000}), 0x1p63f);
    EXPECT_EQ(converted<float>(std::uint64_t{0x8000000000000401}), 0x1p63f);
    // The same with singles, 2^40 apart above and 2^39 below.
    EXPECT_EQ(converted<float>(std::uint64_t{0x8000008000000001}), 0x1p63f);
    EXPECT_EQ(converted<float>(std::uint64_t{0x800000bfffffffff}), 0x1p63f);
    EXPECT_EQ(converted<float>(std::uint64_t{0x800000c000000001}), 0x1p63f + 0x1p40f);
    EXPECT_EQ(converted<float>(std::uint64_t{0x8000017fffffffff}), 0x1p63f + 0x1p41f);
    EXPECT_EQ(converted<float>(std::uint64_t{0x8000014000000001}), 0x1p63f + 0x1p41f);
    EXPECT_EQ(converted<float>(std::uint64_t{0x8000013fffffffff}), 0x1p63f + 0x1p40f);
}

} // namespace
} // namespace vela_test

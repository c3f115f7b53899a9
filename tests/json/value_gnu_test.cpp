// What values can be made from where the compiler has integers of more than 64 bits.
#include <Json/Value.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace {

using Json::Value;

__extension__ using WideInteger = __int128;
__extension__ using WideUnsigned = unsigned __int128;

static_assert(std::is_integral_v<WideInteger>, "this is compiled with the extensions");

TEST(ValueConstruction, IntegersAbove64BitsAreNone)
{
    EXPECT_FALSE((std::is_constructible_v<Value, WideInteger>));
    EXPECT_FALSE((std::is_constructible_v<Value, WideUnsigned>));
    EXPECT_FALSE((std::is_convertible_v<WideInteger, Value>));
    EXPECT_TRUE((std::is_constructible_v<Value, long long>));
    EXPECT_TRUE((std::is_constructible_v<Value, unsigned long long>));
}

} // namespace

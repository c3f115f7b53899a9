#include "support/comma_locale.h"

#include <si/value.h>

#include <gtest/gtest.h>

#include <string>

using vela_test::CommaLocale;

namespace {

TEST(ValueInAnotherLocale, IsReadWithAPoint)
{
    const CommaLocale locale;
    EXPECT_DOUBLE_EQ(si::value("12345.5 m").value_in_baseunits(), 12345.5);
    EXPECT_FALSE(si::value("1,5 m").is_valid());
}

TEST(ValueInAnotherLocale, IsPrintedWithAPoint)
{
    const CommaLocale locale;
    EXPECT_EQ(si::value("12.5 Hz").format(4, 1), "12.50 Hz");
    EXPECT_EQ(si::value("123456789 m").format(9, 0), "1.23456789e8m");
}

} // namespace

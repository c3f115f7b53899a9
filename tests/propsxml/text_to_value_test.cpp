#include <VelaProps/property_xml.h>

#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <limits>

TEST(TextToValue, ReadsScalars)
{
    EXPECT_EQ(vela_string2val("42", vela_dt_int32), VProp(42));
    EXPECT_EQ(vela_string2val(" 42 x", vela_dt_int32), VProp(42));
    EXPECT_EQ(vela_string2val("-Inf", vela_dt_double), VProp(-std::numeric_limits<double>::infinity()));
    EXPECT_EQ(vela_string2val("1", vela_dt_logical), VProp(true));
    EXPECT_EQ(vela_string2val("(1,2)", vela_dt_single | vela_dt_complex), VProp(std::complex<float>(1, 2)));
    EXPECT_EQ(vela_string2val(" a\xc2\xb5 ", vela_dt_char), VProp(L" a\u00b5 "));
    EXPECT_EQ(vela_string2val("", vela_dt_char), VProp(L""));
}

TEST(TextToValue, WhatCannotBeReadIsZero)
{
    EXPECT_EQ(vela_string2val("garbage", vela_dt_int32), VProp(0));
    EXPECT_EQ(vela_string2val("", vela_dt_double), VProp(0.0));
    EXPECT_EQ(vela_string2val("2", vela_dt_logical), VProp(false));
    EXPECT_EQ(vela_string2val("(1;2)", vela_dt_double | vela_dt_complex), VProp(std::complex<double>()));
}

TEST(TextToValue, RefusesOtherTypes)
{
    for (const vela_dt type :
         {vela_dt_none, vela_dt_int32 | vela_dt_array, vela_dt_char | vela_dt_array, vela_dt_struct, vela_dt_cell,
          vela_dt_cell | vela_dt_array, vela_dt_rgb, vela_dt_logical | vela_dt_complex})
        EXPECT_VELA_ERROR_IN(vela_string2val("1", type), "vela_string2val", "sources/propsxml", -1,
                             "Conversion of string to invalid type!");
}

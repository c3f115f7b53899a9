// Quantities as values: construction, assignment, copies, and what can be read from them.
#include "units/quantities.h"

#include <si/value.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>

namespace {

using si::fraction;
using si::value;
using namespace vela_test;

static_assert(std::has_virtual_destructor_v<value>);
static_assert(std::is_default_constructible_v<value>);
static_assert(std::is_copy_constructible_v<value> && std::is_copy_assignable_v<value>);
static_assert(std::is_convertible_v<double, value>);
static_assert(std::is_convertible_v<std::string, value>);
static_assert(std::is_convertible_v<const char*, value>);
static_assert(std::is_convertible_v<value, double>);
static_assert(value::dimension_count == 9);

// Made before main: the table of units is there at the first use, whenever that is.
const value made_before_main("1.5 km");

TEST(Value, CanBeReadBeforeMain)
{
    EXPECT_TRUE(is_quantity(made_before_main, 1500, "m"));
}

TEST(Value, TheDefaultIsTheNumberOne)
{
    EXPECT_TRUE(is_quantity(value(), 1, ""));
}

TEST(Value, ANumberHasNoDimension)
{
    EXPECT_TRUE(is_quantity(value(2.5), 2.5, ""));
    EXPECT_TRUE(is_quantity(value(0.0), 0, ""));
    EXPECT_TRUE(is_quantity(value(-7), -7, ""));
    EXPECT_TRUE(value(std::numeric_limits<double>::infinity()).is_valid());
    EXPECT_TRUE(value(std::numeric_limits<double>::quiet_NaN()).is_valid());
}

TEST(Value, ATextIsRead)
{
    EXPECT_TRUE(is_quantity(value(std::string("5 m/s")), 5, "m s^-1"));
    EXPECT_TRUE(is_quantity(value("5 m/s"), 5, "m s^-1"));
}

TEST(Value, ATextThatDoesNotReadLeavesTheNumberOneInvalid)
{
    EXPECT_TRUE(is_invalid(value(std::string("5 nonsense"))));
    EXPECT_TRUE(is_invalid(value("5 m*nonsense")));
    EXPECT_TRUE(is_invalid(value("")));
}

TEST(Value, ExponentsAreTakenAsTheyAre)
{
    Exponents all;
    for (int i = 0; i < 9; ++i)
        all[static_cast<std::size_t>(i)] = fraction::unreduced(2 * i, -4);
    const value made(3.5, all);
    EXPECT_TRUE(made.is_valid());
    EXPECT_EQ(made.value_in_baseunits(), 3.5);
    for (std::size_t i = 0; i < 9; ++i)
        EXPECT_EQ(text(made.exponent(i)), std::to_string(2 * i) + "/-4");
}

TEST(Value, CopiesKeepEveryField)
{
    const value odd = quantity(-2.5, {{metre, fraction::unreduced(2, 4)}, {steradian, fraction::unreduced(-1, 2)}});
    const value copied(odd);
    EXPECT_TRUE(is_quantity(copied, -2.5, "m^2/4 sr^-1/2"));
    value assigned("3 s");
    EXPECT_EQ(&(assigned = odd), &assigned);
    EXPECT_TRUE(is_quantity(assigned, -2.5, "m^2/4 sr^-1/2"));
    EXPECT_TRUE(is_quantity(odd, -2.5, "m^2/4 sr^-1/2"));
}

TEST(Value, CopiesOfInvalidValuesKeepEveryField)
{
    value odd("nonsense");
    odd *= value("5 m");
    const value copied(odd);
    value assigned;
    assigned = odd;
    for (const value& copy : {copied, assigned})
    {
        EXPECT_FALSE(copy.is_valid());
        EXPECT_EQ(copy.value_in_baseunits(), 5.0);
        EXPECT_EQ(dimension(copy), "m");
    }
}

TEST(Value, IsAssignedToItself)
{
    value speed("5 m/s");
    const value& same = speed;
    speed = same;
    EXPECT_TRUE(is_quantity(speed, 5, "m s^-1"));
}

TEST(Value, TextsAreAssigned)
{
    value changed("5 m/s");
    EXPECT_EQ(&(changed = std::string("3 A")), &changed);
    EXPECT_TRUE(is_quantity(changed, 3, "A"));
    EXPECT_EQ(&(changed = "2 mK"), &changed);
    EXPECT_TRUE(is_quantity(changed, 0.002, "K"));
}

TEST(Value, AFailedAssignmentLeavesTheNumberOneInvalid)
{
    value changed("5 m/s");
    changed = std::string("nonsense");
    EXPECT_TRUE(is_invalid(changed));
    changed = "5 m/s";
    changed = "";
    EXPECT_TRUE(is_invalid(changed));
}

TEST(Value, NumbersAreAssigned)
{
    value changed("5 m/s");
    EXPECT_EQ(&(changed = 0.25), &changed);
    EXPECT_TRUE(is_quantity(changed, 0.25, ""));
    changed = 3;
    EXPECT_TRUE(is_quantity(changed, 3, ""));
}

TEST(Value, AssignmentMakesAnInvalidValueValid)
{
    value changed("nonsense");
    changed = 2.0;
    EXPECT_TRUE(is_quantity(changed, 2, ""));
    changed = "nonsense";
    changed = "2 m";
    EXPECT_TRUE(is_quantity(changed, 2, "m"));
    changed = "nonsense";
    changed = value("4 s");
    EXPECT_TRUE(is_quantity(changed, 4, "s"));
}

TEST(Value, ClearMakesTheNumberOne)
{
    value cleared("5 m/s");
    cleared.clear();
    EXPECT_TRUE(is_quantity(cleared, 1, ""));
    value mended("nonsense");
    mended.clear();
    EXPECT_TRUE(is_quantity(mended, 1, ""));
}

TEST(ValueSetValue, MultipliesTheTextByTheFactor)
{
    value changed("5 m/s");
    EXPECT_TRUE(changed.set_value("mm", 2.5));
    EXPECT_TRUE(is_quantity(changed, 0.0025, "m"));
    EXPECT_TRUE(changed.set_value("4 s", -3));
    EXPECT_TRUE(is_quantity(changed, -12, "s"));
    EXPECT_TRUE(changed.set_value("k", 0));
    EXPECT_TRUE(is_quantity(changed, 0, ""));
}

TEST(ValueSetValue, AnswersFalseForAnUnknownText)
{
    value changed("5 m/s");
    EXPECT_FALSE(changed.set_value("nonsense", 2.5));
    EXPECT_FALSE(changed.is_valid());
    EXPECT_EQ(dimension(changed), "");
    EXPECT_EQ(changed.value_in_baseunits(), 2.5) << "the number is multiplied whatever the text was";
    EXPECT_FALSE(changed.set_value("", 1));
    EXPECT_TRUE(changed.set_value("m", 1));
    EXPECT_TRUE(is_quantity(changed, 1, "m"));
}

// What can be read

TEST(ValueIsDimensionless, WhenEveryExponentIsLiterallyZeroOverOne)
{
    EXPECT_TRUE(value(5.0).is_dimensionless());
    EXPECT_TRUE(value("5 m/m").is_dimensionless());
    for (std::size_t i = 0; i < 9; ++i)
    {
        Exponents one_is_one;
        one_is_one[i] = 1;
        EXPECT_FALSE(value(5, one_is_one).is_dimensionless()) << base_names[i];
    }
    EXPECT_FALSE(value("m/s").is_dimensionless());
    EXPECT_FALSE(quantity(5, {{metre, fraction::unreduced(0, 5)}}).is_dimensionless());
}

TEST(ValueIsDimensionless, NeverWhenInvalid)
{
    const value invalid("nonsense");
    EXPECT_EQ(dimension(invalid), "");
    EXPECT_FALSE(invalid.is_dimensionless());
}

TEST(ValueIsCompatible, WhenAllNineExponentsAreLiterallyEqual)
{
    EXPECT_TRUE(value("5 m").is_compatible("3 km"));
    EXPECT_TRUE(value("5 eV").is_compatible("3 N*m"));
    EXPECT_TRUE(value(5.0).is_compatible(7.0));
    for (std::size_t i = 0; i < 9; ++i)
    {
        Exponents one;
        one[i] = 1;
        Exponents two;
        two[i] = 2;
        EXPECT_TRUE(value(5, one).is_compatible(value(7, one))) << base_names[i];
        EXPECT_FALSE(value(5, one).is_compatible(value(5, two))) << base_names[i];
        EXPECT_FALSE(value(5, one).is_compatible(5.0)) << base_names[i];
        EXPECT_FALSE(value(5.0).is_compatible(value(5, one))) << base_names[i];
    }
}

TEST(ValueIsCompatible, NotWithAnEqualExponentThatIsWrittenDifferently)
{
    const value reduced = quantity(1, {{metre, {1, 2}}});
    EXPECT_FALSE(reduced.is_compatible(quantity(1, {{metre, fraction::unreduced(2, 4)}})));
    EXPECT_FALSE(quantity(1, {{metre, fraction::unreduced(-1, 2)}})
                     .is_compatible(quantity(1, {{metre, fraction::unreduced(1, -2)}})));
    EXPECT_TRUE(quantity(1, {{metre, fraction::unreduced(2, 4)}})
                    .is_compatible(quantity(2, {{metre, fraction::unreduced(2, 4)}})));
}

TEST(ValueIsCompatible, NeverWhenOneIsInvalid)
{
    const value invalid("nonsense");
    EXPECT_FALSE(invalid.is_compatible(value(1.0)));
    EXPECT_FALSE(value(1.0).is_compatible(invalid));
    EXPECT_FALSE(invalid.is_compatible(invalid));
}

TEST(ValueToDouble, IsTheNumberWithoutDimension)
{
    EXPECT_EQ(static_cast<double>(value(2.5)), 2.5);
    EXPECT_EQ(static_cast<double>(value("k")), 1000.0);
    const double converted = value("6 m/m");
    EXPECT_EQ(converted, 6.0);
}

TEST(ValueToDouble, IsNotANumberWithADimension)
{
    EXPECT_TRUE(std::isnan(static_cast<double>(value("5 m"))));
    EXPECT_TRUE(std::isnan(static_cast<double>(quantity(5, {{metre, fraction::unreduced(0, 5)}}))));
    EXPECT_TRUE(std::isnan(static_cast<double>(value("nonsense"))));
}

TEST(ValueIn, CountsUnits)
{
    EXPECT_TRUE(same_number(value("1.5 km").in("mm"), 1.5e6));
    EXPECT_TRUE(same_number(value("3 h").in("s"), 10800));
    EXPECT_TRUE(same_number(value("2 kg").in("g"), 2000));
    EXPECT_TRUE(same_number(value("180 deg").in("rad"), 3.141592653589793));
    EXPECT_TRUE(same_number(value("10 m/s").in("km/h"), 36));
    EXPECT_TRUE(same_number(value("6 m").in("2 m"), 3));
    EXPECT_TRUE(same_number(value("5").in("k"), 0.005));
    EXPECT_TRUE(same_number(value("4 m*m").in("m^2"), 4));
    const value unchanged("7 m");
    EXPECT_EQ(unchanged.in("m"), 7.0);
    EXPECT_TRUE(is_quantity(unchanged, 7, "m"));
}

TEST(ValueIn, IsNotANumberForAnotherDimensionOrAnUnknownUnit)
{
    EXPECT_TRUE(std::isnan(value("5 m").in("s")));
    EXPECT_TRUE(std::isnan(value("5 m").in("m^2")));
    EXPECT_TRUE(std::isnan(value("5 m").in("")));
    EXPECT_TRUE(std::isnan(value("5 m").in("nonsense")));
    EXPECT_TRUE(std::isnan(value("5").in("m")));
    EXPECT_TRUE(std::isnan(value("5 m").in("1")));
    EXPECT_TRUE(std::isnan(value("nonsense").in("m")));
    EXPECT_TRUE(std::isnan(value("nonsense").in("1")));
}

TEST(ValueIn, DividesSoThatUnreducedExponentsCancel)
{
    EXPECT_EQ(quantity(6, {{metre, fraction::unreduced(4, 2)}}).in("2 m*m"), 3.0);
    EXPECT_EQ(quantity(6, {{metre, fraction::unreduced(1, -2)}}).in("m^(-1/2)"), 6.0);
}

TEST(ValueInBaseUnits, IsUnchecked)
{
    EXPECT_EQ(value("5 m").value_in_baseunits(), 5.0);
    EXPECT_EQ(value("nonsense").value_in_baseunits(), 1.0);
    EXPECT_EQ(value(-0.5).value_in_baseunits(), -0.5);
    EXPECT_EQ(value("2 h").value_in_baseunits(), 7200.0);
}

} // namespace

#include <si/value.h>

#include <gtest/gtest.h>

#include <locale>
#include <string>

namespace {

/// Numbers with a comma for the point, and points between thousands.
class CommaNumbers : public std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

/// A global locale with such numbers, as long as this lives.
class CommaLocale
{
public:
    CommaLocale() : before_(std::locale::global(std::locale(std::locale(), new CommaNumbers))) {}
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() { std::locale::global(before_); }

private:
    std::locale before_;
};

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

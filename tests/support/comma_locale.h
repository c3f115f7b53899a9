/// Another country's numbers for the whole process.
#pragma once

#include <locale>
#include <string>

namespace vela_test {

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

} // namespace vela_test

/// Physical quantities: a number with the exponents of its dimension, and their text form.
#pragma once

#include <VelaBase/export.h>
#include <si/fraction.h>

#include <array>
#include <cstddef>
#include <string>
#include <type_traits>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

/// A number in base units and nine exponents.
///
/// The base units, in the order of the exponents: m, kg, s, A, K, mol, cd, rad, sr.
///
/// Nothing here throws, memory aside: an operation that fails leaves a value whose `is_valid` is false.
///
/// **Text.** A number, blanks, a unit: "1.5 mm", "5", "kV". Units combine with "*", "/" (both associate to
/// the left), "^" with a fraction (`fraction::parse`) and parentheses: "m/s^2", "m^(1/2)", "(m/s)^2".
///
/// - The number is optional, 1 by default. An "e" is the exponent mark only before a sign or a digit, so "5e"
///   is five elementary charges and "1eV" is no text of a unit, while "1 eV" is.
/// - A unit is a name of the table, or a prefix and such a name; names go first, so "cd", "Pa" and "h" are units.
/// - Names: m kg s A K mol cd rad sr Hz N Pa J W C V F ohm S Wb T H lm lux Bq Gy g t deg pc angstrom fermi barn
///   h e eV bar G Ci.
/// - Prefixes, one byte each: Y Z E P T G M k h d c m u n p f z y. The micro sign is the single byte 0xB5 of
///   Latin-1 in both directions; its UTF-8 form is not read. There is no "a" and no "da". A prefix alone is a
///   number: "k" is 1000. "kg" takes no prefix, "g" none above k, "t" none below h, "s" none above 1.
/// - Parentheses around the whole text are taken off first, whether they belong together or not: "(m)*(s)" fails.
/// - A power takes the number in front of its unit with it: "3 m^2" is the square of 3 m, "3*m^2" is not.
///
/// Numbers are read and printed with "." whatever the locale of the process.
class VELA_API value
{
public:
    /// What `format` may do.
    enum format_flags : int
    {
        with_blank = 1,                ///< a blank between number and unit, and "1" for a missing numerator
        with_prefix = 2,               ///< prefixes
        with_dimensionless_prefix = 4, ///< with `with_prefix`: also where there is no dimension
    };

    static constexpr std::size_t dimension_count = 9;

    /// The number one, without dimension.
    value();
    /// A number without dimension.
    value(double number);
    /// The same of any arithmetic type; without it the number 0 could be a null text too.
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    value(Number number) : value(static_cast<double>(number))
    {
    }
    /// Reads a text. What is none, or null, leaves an invalid value: the number one, without dimension.
    value(const std::string& text);
    value(const char* text);
    /// The number in base units and its exponents, taken as they are, unreduced ones too.
    value(double number, const std::array<fraction, dimension_count>& exponents);
    value(const value& other);
    virtual ~value();

    value& operator=(const value& other);
    value& operator=(double number);
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    value& operator=(Number number)
    {
        return *this = static_cast<double>(number);
    }
    value& operator=(const std::string& text);
    value& operator=(const char* text);

    /// Becomes the number one, without dimension, valid.
    void clear();

    /// Assigns the text, multiplies by `factor`, and answers `is_valid`.
    bool set_value(const std::string& text, double factor);

    /// An invalid `other` makes this one invalid; an invalid value on the left stays so.
    value& operator*=(const value& other);
    value& operator/=(const value& other);
    /// The same if `other` is not compatible.
    value& operator+=(const value& other);
    value& operator-=(const value& other);
    /// The number alone, valid or not.
    value& operator*=(double factor);
    value& operator/=(double divisor);
    /// To the power: each exponent times `power`, and the number to it in `double`.
    value& operator^=(const fraction& power);

    friend value operator*(value left, const value& right) { return left *= right; }
    friend value operator/(value left, const value& right) { return left /= right; }
    friend value operator+(value left, const value& right) { return left += right; }
    friend value operator-(value left, const value& right) { return left -= right; }
    /// With a number of any arithmetic type, taken as `double`.
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    friend value operator*(value left, Number right)
    {
        return left *= static_cast<double>(right);
    }
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    friend value operator/(value left, Number right)
    {
        return left /= static_cast<double>(right);
    }
    friend value operator^(value left, const fraction& right) { return left ^= right; }
    friend value operator^(value left, int right) { return left ^= fraction(right); }

    /// No failed text and no failed operation.
    bool is_valid() const { return valid_; }
    /// Valid, and every exponent is literally 0/1.
    bool is_dimensionless() const;
    /// Both valid, and all exponents literally equal.
    bool is_compatible(const value& other) const;

    /// Compatible, and the numbers differ by less than 1e-9 of either. An invalid value equals nothing, itself
    /// included.
    friend bool operator==(const value& left, const value& right) { return left.equals(right); }
    friend bool operator!=(const value& left, const value& right) { return !left.equals(right); }
    /// A number of any arithmetic type counts as a value without dimension.
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    friend bool operator==(const value& left, Number right)
    {
        return left.equals(value(static_cast<double>(right)));
    }
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    friend bool operator!=(const value& left, Number right)
    {
        return !(left == right);
    }
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    friend bool operator==(Number left, const value& right)
    {
        return right == left;
    }
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    friend bool operator!=(Number left, const value& right)
    {
        return !(right == left);
    }

    /// The number where there is no dimension, a quiet NaN otherwise.
    operator double() const;

    /// How many of `unit` this is; NaN where the unit is unknown or has another dimension.
    double in(const std::string& unit) const;

    /// The number in base units, unchecked.
    double value_in_baseunits() const { return number_; }

    /// The exponent of base unit `i`, 0 to 8, in the order above.
    const fraction& exponent(std::size_t i) const { return exponents_[i]; }

    /// Prints number and unit, with a blank between them if `flags` has `with_blank`.
    ///
    /// `precision` is the count of significant digits; numbers outside 0.01 to 1000 get an exponent. The unit is the
    /// first of the table with this dimension, or is composed of base units, as in "m*kg/s^2", and then without
    /// prefix. With `with_blank`, numbers from 0.1 to 1 take none either: "0.500 m", but "500mm". 0 prints as "0.000"
    /// and 1 as "1", whatever the precision.
    ///
    /// A number that is not finite prints as "inf" or "nan" with the exponent 0, as in "infe0 m". A finite one never
    /// does, also where `double` cannot hold how many of the unit it is: 1e300 square metres are "1.00e328 barn".
    ///
    /// Not every text reads back as the same. A composed power takes the number with it, as in "3m^5", unless a "*" is
    /// put between. A prefix of a number without dimension that is the name of a unit reads as that unit: "5.000m",
    /// which is 0.005, as 5 metres, "5.000G" as gauss and "5.000T" as tesla. What is too many for `double` reads as
    /// infinite. Not read at all: "a", the prefix of atto units; "E" directly behind a number and before a name; "1/"
    /// behind a number and a blank; a power whose denominator is negative, as in "m^(1/-2)"; a number that is not
    /// finite.
    ///
    /// Any precision is taken. The text is as long as that of `printf`: where digits are needed behind the point, those
    /// that `double` does not have are zeros, and a thousand million of them are a gigabyte. With a precision below 1
    /// an exponent stands behind 6 digits, as `printf` has it.
    std::string format(int precision, int flags) const;

    /// The same in two texts.
    void format(std::string& number, std::string& unit, int precision, int flags) const;

private:
    bool equals(const value& other) const;
    void invalidate();

    bool valid_;
    std::array<fraction, dimension_count> exponents_;
    double number_;
};

VELA_ABI_NAMESPACE_END
}

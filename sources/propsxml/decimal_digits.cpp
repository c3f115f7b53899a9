// A number m * 2^e is multiplied by the power of ten that leaves 19 digits before the point. The powers stand in a
// table, cut to 128 bits, and so the product, cut to 128 bits, is too small by less than 3 in its last place: 64 bits
// are left for the digits behind the point, which give the digit 20 and tell how to round. Only where they are so close
// to one half that those 3 matter, the caller has to find out in another way.
//
// The printers of the standard library take as many bits as it needs for any number of digits; three times as long.

#include "sources/propsxml/decimal_digits.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace vela_prop {

namespace {

__extension__ typedef unsigned __int128 Wide; // both compilers have it, no standard does

constexpr int digits_before_point = 19;
constexpr std::uint64_t ten_to_18 = 1'000'000'000'000'000'000U;
constexpr std::uint64_t ten_to_19 = 10'000'000'000'000'000'000U;

// From the largest number, 1.8e308, to the smallest, 4.9e-324.
constexpr int lowest_power = digits_before_point - 1 - 308;
constexpr int highest_power = digits_before_point - 1 + 324;

/// floor(log10(2^n)) and floor(log2(10^n)) for every n that comes up here.
constexpr int decimal_log_of_two(int n)
{
    return (n * 315653) >> 20;
}
constexpr int binary_log_of_ten(int n)
{
    return (n * 1741647) >> 19;
}

/// Highest word first. As long as that, so that what every step cuts off does not reach the first 128 bits.
using Long = std::array<std::uint64_t, 4>;

constexpr void shift_left(Long& number, int bits)
{
    for (std::size_t i = 0; bits != 0 && i < number.size(); ++i)
        number[i] = (number[i] << bits) | (i + 1 < number.size() ? number[i + 1] >> (64 - bits) : 0);
}

/// The next power of ten, with its highest bit set again.
constexpr void multiply_by_ten(Long& number)
{
    std::uint64_t carry = 0;
    for (std::size_t i = number.size(); i-- > 0;)
    {
        const Wide product = Wide{number[i]} * 10 + carry;
        number[i] = static_cast<std::uint64_t>(product);
        carry = static_cast<std::uint64_t>(product >> 64);
    }
    const int bits = carry < 8 ? 3 : 4; // it is from 5 to 9
    for (std::size_t i = number.size(); i-- > 0;)
        number[i] = (number[i] >> bits) | ((i > 0 ? number[i - 1] : carry) << (64 - bits));
}

constexpr void divide_by_ten(Long& number)
{
    // Four bits go in front, and come back behind: otherwise they would be lost.
    std::uint64_t rest = 0;
    Long quotient{};
    std::uint64_t fifth = 0;
    for (std::size_t i = 0; i <= number.size(); ++i)
    {
        const Wide part = (Wide{rest} << 64) | (i < number.size() ? number[i] : 0);
        const auto digit = static_cast<std::uint64_t>(part / 10);
        (i < number.size() ? quotient[i] : fifth) = digit;
        rest = static_cast<std::uint64_t>(part % 10);
    }
    const int bits = (quotient[0] >> 60) != 0 ? 3 : 4;
    shift_left(quotient, bits);
    quotient.back() |= fifth >> (64 - bits);
    number = quotient;
}

struct Power
{
    std::uint64_t high; ///< its highest bit is set
    std::uint64_t low;
};

using Powers = std::array<Power, highest_power - lowest_power + 1>;

constexpr Powers make_powers()
{
    Powers powers{};
    const auto store = [&](int n, const Long& number) {
        powers[static_cast<std::size_t>(n - lowest_power)] = {number[0], number[1]};
    };
    constexpr Long one{std::uint64_t{1} << 63, 0, 0, 0};
    Long number = one;
    for (int n = 0; n <= highest_power; ++n, multiply_by_ten(number))
        store(n, number);
    number = one;
    for (int n = 0; n >= lowest_power; --n, divide_by_ten(number))
        store(n, number);
    return powers;
}

constexpr Powers powers = make_powers();

/// mantissa * 2^exponent, the highest bit of the mantissa set.
struct Binary
{
    std::uint64_t mantissa;
    int exponent;
};

Binary split(double number)
{
    constexpr int fraction_bits = 52;
    const auto bits = std::bit_cast<std::uint64_t>(number);
    const int stored = static_cast<int>(bits >> fraction_bits);
    std::uint64_t mantissa = bits & ((std::uint64_t{1} << fraction_bits) - 1);
    if (stored != 0)
        mantissa |= std::uint64_t{1} << fraction_bits;
    const int shift = std::countl_zero(mantissa);
    return {mantissa << shift, (stored != 0 ? stored : 1) - 1075 - shift};
}

/// number * 10^power = product / 2^point, with product too small by less than 3.
struct Scaled
{
    Wide product;
    int point;
};

Scaled scale(const Binary& number, int power)
{
    const Power& ten = powers[static_cast<std::size_t>(power - lowest_power)];
    const Wide low = Wide{number.mantissa} * ten.low;
    const Wide high = Wide{number.mantissa} * ten.high;
    return {high + (low >> 64), -(number.exponent + binary_log_of_ten(power) - 127 + 64)};
}

/// Whether there are more than 19 digits before the point.
bool is_too_large(const Scaled& scaled)
{
    return (scaled.product >> scaled.point) >= ten_to_19;
}

constexpr std::array<char, 200> pairs = []
{
    std::array<char, 200> made{};
    for (std::size_t i = 0; i < 100; ++i)
    {
        made[2 * i] = static_cast<char>('0' + i / 10);
        made[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return made;
}();

void print_two(char* out, std::uint32_t number)
{
    std::copy_n(pairs.data() + std::size_t{2} * number, 2, out);
}

void print_eight(char* out, std::uint32_t number)
{
    const std::uint32_t first = number / 10000;
    const std::uint32_t second = number % 10000;
    print_two(out, first / 100);
    print_two(out + 2, first % 100);
    print_two(out + 4, second / 100);
    print_two(out + 6, second % 100);
}

}

bool find_digits(double number, DecimalDigits& result)
{
    const Binary binary = split(number);
    int exponent = decimal_log_of_two(binary.exponent + 63);
    Scaled scaled = scale(binary, digits_before_point - 1 - exponent);
    if (is_too_large(scaled)) // the power of two has one digit less than the number
        scaled = scale(binary, digits_before_point - 1 - ++exponent);

    auto whole = static_cast<std::uint64_t>(scaled.product >> scaled.point);
    const Wide one = Wide{1} << scaled.point;
    const Wide tenths = (scaled.product & (one - 1)) * 10;
    auto last = static_cast<unsigned>(tenths >> scaled.point);
    const Wide rest = tenths & (one - 1);
    constexpr unsigned error = 30;
    if (rest <= one / 2 && rest + error >= one / 2)
        return false;
    if (rest > one / 2 && ++last == 10)
    {
        last = 0;
        ++whole;
    }
    if (whole == ten_to_19)
    {
        whole = ten_to_18;
        ++exponent;
    }
    constexpr std::uint64_t ten_to_8 = 100'000'000;
    char* const digits = result.digits.data();
    const std::uint64_t first_eleven = whole / ten_to_8;
    const auto first_three = static_cast<std::uint32_t>(first_eleven / ten_to_8);
    digits[0] = static_cast<char>('0' + first_three / 100);
    print_two(digits + 1, first_three % 100);
    print_eight(digits + 3, static_cast<std::uint32_t>(first_eleven % ten_to_8));
    print_eight(digits + 11, static_cast<std::uint32_t>(whole % ten_to_8));
    digits[19] = static_cast<char>('0' + last);
    result.exponent = exponent;
    return true;
}

}

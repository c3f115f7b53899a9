#include "sources/propsxml/number_text.h"

#include "sources/propsxml/decimal_digits.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <locale>
#include <sstream>
#include <string_view>
#include <tuple>
#include <type_traits>

namespace vela_prop {

namespace {

constexpr int precision = 20;
static_assert(precision == DecimalDigits::count);
// "-", 20 digits, ".", and either four zeros or "e-308"; copies of 20 digits may begin behind 21 characters.
constexpr std::size_t longest_number = 48;

bool is_space(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

const char* skip_space(const char* text, const char* end)
{
    while (text != end && is_space(*text))
        ++text;
    return text;
}

/// Copies `count` digits, and writes what else there is up to 20: a length that is known costs a few instructions.
char* copy_digits(char* out, const char* digits, std::size_t count)
{
    std::copy_n(digits, DecimalDigits::count, out);
    return out + count;
}

char* print_exponent(char* out, int exponent)
{
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    const int size = std::abs(exponent);
    if (size < 10)
        *out++ = '0';
    return std::to_chars(out, out + 3, size).ptr;
}

/// As "%g": a plain number if its exponent is from -4 to 19, and no zeros at the end.
char* print_general(char* out, const DecimalDigits& number)
{
    const char* const digits = number.digits.data();
    std::size_t count = DecimalDigits::count;
    while (count > 1 && digits[count - 1] == '0')
        --count;
    const int exponent = number.exponent;
    if (exponent >= -4 && exponent < 0)
    {
        out = std::copy_n("0.000", 1 - exponent, out);
        return copy_digits(out, digits, count);
    }
    if (exponent >= 0 && exponent < precision)
    {
        const auto before_point = static_cast<std::size_t>(exponent) + 1;
        out = copy_digits(out, digits, before_point);
        if (count <= before_point)
            return out;
        *out++ = '.';
        return copy_digits(out, digits + before_point, count - before_point);
    }
    *out++ = digits[0];
    if (count > 1)
    {
        *out++ = '.';
        out = copy_digits(out, digits + 1, count - 1);
    }
    return print_exponent(out, exponent);
}

char* print_positive(char* out, double number)
{
    constexpr double exact_integers = 9007199254740992.0; // 2^53
    if (number < exact_integers && number == std::trunc(number))
        return std::to_chars(out, out + longest_number, static_cast<std::uint64_t>(number)).ptr;
    DecimalDigits digits;
    if (find_digits(number, digits))
        return print_general(out, digits);
    return std::to_chars(out, out + longest_number, number, std::chars_format::general, precision).ptr;
}

void append_decimal(std::string& text, double number)
{
    if (std::isnan(number))
    {
        text += "NaN";
        return;
    }
    if (std::isinf(number))
    {
        text += number < 0 ? "-Inf" : "Inf";
        return;
    }
    std::array<char, longest_number + 1> buffer;
    char* out = buffer.data();
    if (std::signbit(number))
        *out++ = '-';
    out = print_positive(out, std::abs(number));
    text.append(buffer.data(), out);
}

void append_integer(std::string& text, auto number)
{
    std::array<char, longest_number> buffer;
    text.append(buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr);
}

/// A sign, and the place behind it. A stream takes either sign, `from_chars` none but a minus.
struct Signed
{
    const char* text;
    bool is_negative;
};

Signed read_sign(const char* text, const char* end)
{
    if (text == end || (*text != '-' && *text != '+'))
        return {text, false};
    return {text + 1, *text == '-'};
}

/// A number that `from_chars` finds too large or too small, from the stream itself.
template <class T>
bool read_from_stream(const char* text, const char* end, T& number)
{
    std::istringstream stream{std::string(text, end)};
    stream.imbue(std::locale::classic());
    T read{};
    stream >> read;
    if (stream.fail())
        return false;
    number = read;
    return true;
}

template <class T>
const char* read_decimal(const char* text, const char* end, T& number)
{
    const auto [digits, is_negative] = read_sign(skip_space(text, end), end);
    if (digits == end || !(is_digit(*digits) || *digits == '.')) // "inf" and "nan", which no stream reads
        return nullptr;
    T read{};
    const auto [stop, error] = std::from_chars(digits, end, read);
    if (error == std::errc::invalid_argument)
        return nullptr;
    // A stream takes the "e" of "1.5e" for the exponent, and then fails.
    const auto is_exponent = [](char c) { return c == 'e' || c == 'E'; };
    if (stop != end && is_exponent(*stop) && std::none_of(digits, stop, is_exponent))
        return nullptr;
    if (error != std::errc() && !read_from_stream(digits, stop, read))
        return nullptr;
    number = is_negative ? -read : read;
    return stop;
}

template <class T>
const char* read_word(const char* text, const char* end, T& number)
{
    const std::string_view rest(text, static_cast<std::size_t>(end - text));
    const auto reads = [&](std::string_view word, T meaning) -> const char*
    {
        if (rest.substr(0, word.size()) != word)
            return nullptr;
        number = meaning;
        return text + word.size();
    };
    using Limits = std::numeric_limits<T>;
    if (const char* const stop = reads("Inf", Limits::infinity()))
        return stop;
    if (const char* const stop = reads("-Inf", -Limits::infinity()))
        return stop;
    return reads("NaN", Limits::quiet_NaN());
}

template <class T>
const char* read_integer(const char* text, const char* end, T& number)
{
    using Unsigned = std::make_unsigned_t<T>;
    const auto [digits, is_negative] = read_sign(skip_space(text, end), end);
    Unsigned size = 0;
    const auto [stop, error] = std::from_chars(digits, end, size);
    if (error != std::errc())
        return nullptr;
    constexpr auto largest = static_cast<Unsigned>(std::numeric_limits<T>::max());
    if (std::is_signed_v<T> && size > static_cast<Unsigned>(largest + (is_negative ? 1U : 0U)))
        return nullptr;
    number = static_cast<T>(is_negative ? static_cast<Unsigned>(Unsigned{0} - size) : size);
    return stop;
}

const char* read_bool(const char* text, const char* end, bool& number)
{
    long read = 0;
    const char* const stop = read_integer(text, end, read);
    if (stop == nullptr || (read != 0 && read != 1))
        return nullptr;
    number = read == 1;
    return stop;
}

template <class T>
const char* read_byte(const char* text, const char* end, T& number)
{
    int read = 0;
    const char* const stop = read_integer(text, end, read);
    if (stop)
        number = static_cast<T>(read);
    return stop;
}

}

template <class T>
void append_number(std::string& text, T number)
{
    if constexpr (std::is_floating_point_v<T>)
        append_decimal(text, static_cast<double>(number));
    else if constexpr (sizeof(T) == 1)
        append_integer(text, static_cast<int>(number));
    else
        append_integer(text, number);
}

template <class T>
const char* read_number(const char* text, const char* end, T& number)
{
    if constexpr (std::is_same_v<T, bool>)
        return read_bool(text, end, number);
    else if constexpr (std::is_floating_point_v<T>)
    {
        const char* const stop = read_decimal(text, end, number);
        return stop ? stop : read_word(text, end, number);
    }
    else if constexpr (sizeof(T) == 1)
        return read_byte(text, end, number);
    else
        return read_integer(text, end, number);
}

namespace detail {

const char* read_character(const char* text, const char* end, char character)
{
    const char* const p = skip_space(text, end);
    return p != end && *p == character ? p + 1 : nullptr;
}

}

namespace detail {

/// Makes the compiler emit the functions of these types here.
template <class... Numbers>
struct Emitted
{
    static constexpr std::tuple functions{
        static_cast<void (*)(std::string&, Numbers)>(append_number)...,
        static_cast<const char* (*)(const char*, const char*, Numbers&)>(read_number)...};
};

template struct Emitted<bool, unsigned char, char, unsigned short, short, unsigned int, int, std::uint64_t,
                        std::int64_t, float, double>;

}

}

#include "sources/propsxml/number_text.h"

#include "sources/propsxml/decimal_digits.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <locale>
#include <optional>
#include <random>
#include <sstream>

namespace {

template <class T>
std::string text_of(const T& number)
{
    std::string text;
    vela_prop::append_number(text, number);
    return text;
}

template <class T>
std::string streamed(T number)
{
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream.precision(20);
    stream << number;
    return stream.str();
}

/// What was read, and how many characters it took.
template <class T>
struct Read
{
    T number;
    std::size_t length;
};

template <class T>
std::optional<Read<T>> read(const std::string& text)
{
    T number = T(77);
    const char* const stop = vela_prop::read_number(text.data(), text.data() + text.size(), number);
    if (stop == nullptr)
    {
        EXPECT_EQ(number, T(77)) << text;
        return std::nullopt;
    }
    return Read<T>{number, static_cast<std::size_t>(stop - text.data())};
}

template <class T>
std::optional<Read<T>> read_by_stream(const std::string& text)
{
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    T number{};
    stream >> number;
    if (stream.fail())
        return std::nullopt;
    return Read<T>{number, stream.eof() ? text.size() : static_cast<std::size_t>(stream.tellg())};
}

template <class T>
void expect_as_the_stream(const std::string& text)
{
    const std::optional<Read<T>> ours = read<T>(text);
    const std::optional<Read<T>> expected = read_by_stream<T>(text);
    ASSERT_EQ(ours.has_value(), expected.has_value()) << "'" << text << "'";
    if (!ours)
        return;
    EXPECT_EQ(ours->length, expected->length) << "'" << text << "'";
    EXPECT_EQ(ours->number, expected->number) << "'" << text << "'";
    if constexpr (std::is_floating_point_v<T>)
    {
        EXPECT_EQ(std::signbit(ours->number), std::signbit(expected->number)) << "'" << text << "'";
    }
}

/// Pieces of numbers in any order: most are no numbers.
std::string random_text(std::mt19937_64& random)
{
    static const char* const pieces[] = {"0",   "1",    "9",     "25",  "007", "4294967296", "18446744073709551616",
                                         ".",   "-",    "+",     "e",   "E",   "e5",         "e-",
                                         "e+3", "e308", "e-320", " ",   "x",   "p1",         "a",
                                         ",",   "\n",   "\t",    "0x1", "128", "65535"};
    std::string text;
    for (auto count = random() % 6; count > 0; --count)
        text += pieces[random() % std::size(pieces)];
    return text;
}

}

TEST(NumberText, PrintsDecimalsAsAStreamWithPrecisionTwenty)
{
    EXPECT_EQ(text_of(1.5), "1.5");
    EXPECT_EQ(text_of(0.1), "0.10000000000000000555");
    EXPECT_EQ(text_of(0.1F), "0.10000000149011611938");
    EXPECT_EQ(text_of(-0.0), "-0");
    EXPECT_EQ(text_of(1e20), "1e+20");
    EXPECT_EQ(text_of(1e19), "10000000000000000000");
}

TEST(NumberText, PrintsTheLimitsOfDecimalsAsTheStream)
{
    using Limits = std::numeric_limits<double>;
    for (const double number : {0.0,
                                -0.0,
                                1e-5,
                                1e-4,
                                9.9999999999999995e-5,
                                1e19,
                                1e20,
                                1e21,
                                1e22,
                                1e23,
                                99999999999999991611392.0,
                                9007199254740991.0,
                                9007199254740992.0,
                                9007199254740993.0,
                                9007199254740994.0,
                                Limits::max(),
                                -Limits::max(),
                                Limits::min(),
                                Limits::denorm_min(),
                                5e-324,
                                1e-310,
                                0.5,
                                0.25,
                                123456789012345678.0,
                                18446744073709551616.0,
                                Limits::epsilon()})
        EXPECT_EQ(text_of(number), streamed(number));
    for (int exponent = -323; exponent <= 308; ++exponent)
    {
        std::istringstream stream("1e" + std::to_string(exponent));
        double power = 0;
        stream >> power;
        for (const double number : {power, std::nextafter(power, 0.0), std::nextafter(power, Limits::infinity())})
            EXPECT_EQ(text_of(number), streamed(number));
    }
}

TEST(NumberText, PrintsAnyDoubleAsTheStream)
{
    std::mt19937_64 random(20);
    for (int i = 0; i < 300'000; ++i)
    {
        const auto number = std::bit_cast<double>(static_cast<std::uint64_t>(random()));
        if (std::isfinite(number))
        {
            ASSERT_EQ(text_of(number), streamed(number));
        }
    }
}

TEST(NumberText, PrintsDoublesOfEverydaySizeAsTheStream)
{
    std::mt19937_64 random(21);
    for (int i = 0; i < 200'000; ++i)
    {
        // As many bits as a number has by chance: so those too that end early, among them many at one half.
        const double number =
            std::ldexp(static_cast<double>(random() >> (11 + random() % 53)), static_cast<int>(random() % 140) - 90);
        ASSERT_EQ(text_of(number), streamed(number));
    }
}

TEST(NumberText, NumbersHalfwayBetweenTwoTextsAreRoundedToEven)
{
    int ties = 0;
    std::mt19937_64 random(22);
    for (int i = 0; i < 20'000; ++i)
    {
        // An odd number of 2^-n has n digits behind the point, the last of them 5: 21 digits in all.
        const int digits_behind_point = 6 + static_cast<int>(random() % 10);
        const double whole = std::pow(10, 14 - digits_behind_point + 6) * static_cast<double>(1 + random() % 8);
        const double number =
            std::floor(whole) + static_cast<double>(random() % 64 * 2 + 1) * std::ldexp(1, -digits_behind_point);
        vela_prop::DecimalDigits digits;
        ties += vela_prop::find_digits(number, digits) ? 0 : 1;
        ASSERT_EQ(text_of(number), streamed(number));
    }
    EXPECT_GT(ties, 0); // or they were not met
}

TEST(NumberText, PrintsAnySingleAsTheStream)
{
    std::mt19937_64 random(23);
    for (int i = 0; i < 200'000; ++i)
    {
        const auto number = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (std::isfinite(number))
        {
            ASSERT_EQ(text_of(number), streamed(number));
        }
    }
}

TEST(NumberText, PrintsWhatIsNotFiniteAsWords)
{
    EXPECT_EQ(text_of(std::numeric_limits<float>::infinity()), "Inf");
    EXPECT_EQ(text_of(-std::numeric_limits<double>::infinity()), "-Inf");
    EXPECT_EQ(text_of(std::numeric_limits<double>::quiet_NaN()), "NaN");
    EXPECT_EQ(text_of(-std::numeric_limits<double>::quiet_NaN()), "NaN");
}

TEST(NumberText, PrintsBytesAndBooleansAsNumbers)
{
    EXPECT_EQ(text_of(static_cast<unsigned char>(200)), "200");
    EXPECT_EQ(text_of(static_cast<char>(-3)), "-3");
    EXPECT_EQ(text_of('A'), "65");
    EXPECT_EQ(text_of(true), "1");
    EXPECT_EQ(text_of(false), "0");
}

TEST(NumberText, PrintsTheLimitsOfIntegers)
{
    EXPECT_EQ(text_of(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(text_of(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(text_of(static_cast<short>(-32768)), "-32768");
}

TEST(NumberText, PrintsComplexNumbersInParentheses)
{
    EXPECT_EQ(text_of(std::complex<double>(1.5, -2)), "(1.5,-2)");
    EXPECT_EQ(text_of(std::complex<char>('A', -1)), "(65,-1)");
    EXPECT_EQ(text_of(std::complex<float>(std::numeric_limits<float>::infinity(), 0)), "(Inf,0)");
}

TEST(NumberText, ReadsAnyTextAsTheStream)
{
    std::mt19937_64 random(24);
    for (int i = 0; i < 200'000; ++i)
    {
        const std::string text = random_text(random);
        expect_as_the_stream<double>(text);
        expect_as_the_stream<float>(text);
        expect_as_the_stream<int>(text);
        expect_as_the_stream<unsigned int>(text);
        expect_as_the_stream<short>(text);
        expect_as_the_stream<unsigned short>(text);
        expect_as_the_stream<std::int64_t>(text);
        expect_as_the_stream<std::uint64_t>(text);
        if (HasFatalFailure() || HasNonfatalFailure())
            return;
    }
}

TEST(NumberText, ReadsOddTextsAsTheStream)
{
    for (const char* text :
         {"",     " ",   "1",        "+1",    "-1",     "+-1",          "--1",     "1e",       "1e+",    "1e5",
          "1e5e", "1.",  ".5",       ".",     "-.5",    ".e5",          "1.2.3",   "0x10",     "0x1p3",  "inf",
          "-inf", "nan", "infinity", "1e999", "-1e999", "1e-999",       "-1e-999", "1e-310",   "1e39",   "1e-46",
          "1,5",  "1 2", "00012",    "1E5",   "1d5",    "3.4028236e38", "-0",      "4.9e-325", "\v\f\r1"})
    {
        expect_as_the_stream<double>(text);
        expect_as_the_stream<float>(text);
        expect_as_the_stream<int>(text);
        expect_as_the_stream<std::uint64_t>(text);
        expect_as_the_stream<bool>(text);
    }
}

TEST(NumberText, ReadsWhatWasPrinted)
{
    std::mt19937_64 random(25);
    for (int i = 0; i < 200'000; ++i)
    {
        const auto number = std::bit_cast<double>(static_cast<std::uint64_t>(random()));
        if (std::isnan(number))
            continue;
        const auto again = read<double>(text_of(number));
        ASSERT_TRUE(again.has_value());
        ASSERT_EQ(again->number, number);
    }
}

TEST(NumberText, ReadsTheWordsThatStreamsDoNot)
{
    EXPECT_EQ(read<double>("Inf")->number, std::numeric_limits<double>::infinity());
    EXPECT_EQ(read<float>("-Inf")->number, -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(read<double>("NaN")->number));
    EXPECT_EQ(read<double>("Infinity")->length, 3u);
}

TEST(NumberText, DoesNotReadOtherWords)
{
    for (const char* text : {"inf", "INF", "-inf", "nan", "NAN", "In", "-In", "-NaN", "+Inf", " Inf", "e5", "x"})
        EXPECT_FALSE(read<double>(text).has_value()) << text;
    EXPECT_FALSE(read<int>("Inf").has_value());
}

TEST(NumberText, BytesAreReadAsIntAndCut)
{
    EXPECT_EQ(read<unsigned char>("300")->number, 44);
    EXPECT_EQ(read<unsigned char>("-1")->number, 255);
    EXPECT_EQ(read<char>("200")->number, static_cast<char>(-56));
    EXPECT_FALSE(read<char>("4294967296").has_value());
}

TEST(NumberText, BooleansAreZeroAndOne)
{
    EXPECT_TRUE(read<bool>("1")->number);
    EXPECT_FALSE(read<bool>("0")->number);
    bool number = false;
    const std::string text = "2";
    EXPECT_EQ(vela_prop::read_number(text.data(), text.data() + 1, number), nullptr);
    EXPECT_FALSE(number);
}

TEST(NumberText, ComplexNumbersAreReadWhole)
{
    using Complex = std::complex<double>;
    EXPECT_EQ(read<Complex>("(1.5,-2)")->number, Complex(1.5, -2));
    EXPECT_EQ(read<Complex>("(1,2) x")->length, 5u);
    EXPECT_EQ(read<Complex>(" ( 1 , 2 )")->number, Complex(1, 2));
    EXPECT_EQ(read<Complex>("(Inf,-Inf)")->number.real(), std::numeric_limits<double>::infinity());
    for (const char* text : {"", "1", "(", "(1", "(1,", "(1,2", "(1;2)", "(1,2]", "[1,2)", "(,2)", "(1,)", "(inf,1)"})
        EXPECT_FALSE(read<Complex>(text).has_value()) << text;
}

TEST(NumberText, DoesNotLookBehindTheEnd)
{
    const std::string text = "12345";
    double number = 0;
    EXPECT_EQ(vela_prop::read_number(text.data(), text.data() + 3, number), text.data() + 3);
    EXPECT_EQ(number, 123);
    EXPECT_EQ(vela_prop::read_number(text.data(), text.data(), number), nullptr);
}

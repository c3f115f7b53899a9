// What is read from texts against the streams of the standard library, over texts that are valid, damaged or cut.
#include "props/held_types.h"
#include "propsxml/number_types.h"
#include "propsxml/stream_numbers.h"
#include "propsxml/xml_check.h"
#include "support/rounds.h"

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using prop_test::Held;
using xml_test::NumberTypes;
using xml_test::same_bits;
using xml_test::stream_text;

constexpr std::size_t count_texts = vela_test::rounds(20000);

/// Reads one value of `text` from `at` on, which moves behind it, as a stream of the classic locale does.
template <class T>
bool stream_read(const std::string& text, std::size_t& at, T& value)
{
    std::istringstream in(text.substr(at));
    in.imbue(std::locale::classic());
    T made{};
    in >> made;
    if (in.fail())
        return false;
    value = made;
    at = in.eof() ? text.size() : at + static_cast<std::size_t>(in.tellg());
    return true;
}

template <class T>
bool plain_read(const std::string& text, std::size_t& at, T& value)
{
    if constexpr (sizeof(T) == 1 && !std::is_same_v<T, bool>)
    {
        int wide = 0;
        if (!stream_read(text, at, wide))
            return false;
        value = static_cast<T>(wide);
        return true;
    }
    else if (stream_read(text, at, value))
        return true;
    if constexpr (std::is_floating_point_v<T>)
    {
        using Limits = std::numeric_limits<T>;
        const std::pair<const char*, T> words[] = {
            {"Inf", Limits::infinity()}, {"NaN", Limits::quiet_NaN()}, {"-Inf", -Limits::infinity()}};
        for (const auto& [word, meaning] : words)
            if (text.compare(at, std::strlen(word), word) == 0)
            {
                at += std::strlen(word);
                value = meaning;
                return true;
            }
    }
    return false;
}

template <class T>
bool plain_read(const std::string& text, std::size_t& at, std::complex<T>& value)
{
    std::size_t end = at;
    T real{};
    T imaginary{};
    const auto take = [&](char expected) { return end < text.size() && text[end++] == expected; };
    if (!take('(') || !plain_read(text, end, real) || !take(',') || !plain_read(text, end, imaginary) || !take(')'))
        return false;
    value = {real, imaginary};
    at = end;
    return true;
}

/// The loop over elements with blanks between them.
template <class T>
std::vector<T> plain_read_all(const std::string& text)
{
    std::vector<T> values;
    std::size_t at = 0;
    bool separated = true;
    T value{};
    while (at < text.size() && separated && plain_read(text, at, value))
    {
        values.push_back(value);
        separated = false;
        for (; at < text.size() && text[at] == ' '; ++at)
            separated = true;
    }
    return values;
}

template <class T>
bool is_same_number(const T& a, const T& b)
{
    if constexpr (std::is_floating_point_v<T>)
        return (std::isnan(a) && std::isnan(b)) || same_bits(a, b);
    else
        return a == b;
}
template <class T>
bool is_same_number(const std::complex<T>& a, const std::complex<T>& b)
{
    return is_same_number(a.real(), b.real()) && is_same_number(a.imag(), b.imag());
}

template <class T>
constexpr bool is_complex = false;
template <class T>
constexpr bool is_complex<std::complex<T>> = true;

/// Texts of numbers that are valid, nearly valid, cut, or nothing.
class RandomTexts
{
public:
    explicit RandomTexts(std::uint32_t seed) : random(seed) {}

    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(random() % bound); }

    std::string number()
    {
        static const char* const special[] = {"Inf",
                                              "-Inf",
                                              "NaN",
                                              "inf",
                                              "+Inf",
                                              "nan",
                                              "-NaN",
                                              "Infinity",
                                              "0x1f",
                                              "1e400",
                                              "-1e400",
                                              "1e-400",
                                              "127",
                                              "128",
                                              "-129",
                                              "255",
                                              "256",
                                              "32767",
                                              "32768",
                                              "-32769",
                                              "65535",
                                              "65536",
                                              "true",
                                              "-0",
                                              "1.5.",
                                              "1e",
                                              "1e+",
                                              ".",
                                              ".5",
                                              "5.",
                                              "+7",
                                              "--7",
                                              "007",
                                              "2",
                                              "1,000",
                                              "-",
                                              "2147483647",
                                              "2147483648",
                                              "-2147483649",
                                              "4294967295",
                                              "4294967296",
                                              "9223372036854775808",
                                              "18446744073709551615",
                                              "18446744073709551616",
                                              "-18446744073709551615",
                                              "3.5e38",
                                              "1e-50"};
        switch (below(4))
        {
        case 0:
            return special[below(std::size(special))];
        case 1:
            return std::to_string(static_cast<std::int64_t>(random()) / (std::int64_t(1) << below(63)));
        case 2:
            return stream_text(static_cast<double>(static_cast<std::int64_t>(random())) *
                               std::pow(10.0, static_cast<double>(below(60)) - 40));
        default:
            return std::to_string(below(3));
        }
    }

    void mutate(std::string& text, const std::string& alphabet)
    {
        for (std::size_t changes = below(3); changes > 0 && !text.empty(); --changes)
        {
            const std::size_t at = below(text.size());
            const char other = alphabet[below(alphabet.size())];
            switch (below(4))
            {
            case 0:
                text[at] = other;
                break;
            case 1:
                text.insert(at, 1, other);
                break;
            case 2:
                text.erase(at, 1);
                break;
            default:
                text.resize(at);
            }
        }
    }

    template <class T>
    std::string list(std::size_t count)
    {
        static const std::string alphabet = "0123456789+-.eE InfNax,";
        std::string text;
        for (std::size_t i = 0; i < count; ++i)
        {
            std::string one = number();
            if constexpr (is_complex<T>)
                one = "(" + one + "," + number() + ")";
            text += (i == 0 ? "" : std::string(1 + below(2), ' ')) + one;
        }
        if (below(2) == 0)
            mutate(text, is_complex<T> ? "0123456789+-.eEInfNax,()" : alphabet + "\n\t");
        return text;
    }

private:
    std::mt19937_64 random;
};

template <class T>
class NumberReading : public testing::Test
{
};
TYPED_TEST_SUITE(NumberReading, NumberTypes);

TYPED_TEST(NumberReading, OfOneValueIsThatOfAStream)
{
    RandomTexts texts(21);
    std::size_t count_read = 0;
    for (std::size_t i = 0; i < count_texts; ++i)
    {
        std::string text = texts.list<TypeParam>(1);
        if (texts.below(50) == 0)
            text.insert(texts.below(text.size() + 1), 1, '\0');
        TypeParam expected{};
        std::size_t at = 0;
        if (plain_read(text, at, expected))
            ++count_read;
        const VProp read = vela_string2val(text, VProp::type_id<TypeParam>);
        ASSERT_TRUE(is_same_number(read.get<TypeParam>(), expected)) << testing::PrintToString(text);
    }
    EXPECT_GT(count_read, count_texts / 20);
    EXPECT_LT(count_read, count_texts);
}

TYPED_TEST(NumberReading, OfAListStopsWhereAStreamStops)
{
    RandomTexts texts(22);
    std::size_t count_read = 0;
    for (std::size_t i = 0; i < count_texts / 2; ++i)
    {
        const std::string text = texts.list<TypeParam>(1 + texts.below(5));
        const std::vector<TypeParam> expected = plain_read_all<TypeParam>(text);
        VProp read;
        // No list is so long: what was read stays.
        EXPECT_THROW(
            vela_import_xml(xml_test::native("type=\"" + Held<TypeParam>::name() + "\" size=\"7 7\"", text), read, 0),
            VelaError);
        const auto& elements = static_cast<const VProp&>(read).get<VProparray<TypeParam>>();
        ASSERT_EQ(elements.count(), expected.size()) << testing::PrintToString(text);
        for (std::size_t k = 0; k < expected.size(); ++k)
            ASSERT_TRUE(is_same_number(static_cast<TypeParam>(elements[k]), static_cast<TypeParam>(expected[k])))
                << testing::PrintToString(text);
        count_read += expected.size();
    }
    EXPECT_GT(count_read, count_texts / 20);
}

}

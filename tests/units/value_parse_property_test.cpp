// Random texts, right ones and damaged ones, against a plain reader, with fixed seeds.
#include "units/naive_quantity.h"
#include "units/quantities.h"
#include "units/unit_rows.h"

#include <si/value.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using namespace vela_test;

/// Writes texts of the grammar.
class Writer
{
public:
    explicit Writer(unsigned seed) : random(seed) {}

    std::string quantity(int levels)
    {
        switch (levels == 0 ? 0u : random() % 6)
        {
        case 0:
        case 1:
            return number() + blanks() + unit();
        case 2:
            return "(" + quantity(levels - 1) + ")";
        case 3:
            return operand(levels) + "*" + operand(levels);
        case 4:
            return operand(levels) + "/" + operand(levels);
        default:
            return operand(levels) + "^" + power();
        }
    }

    /// The text with a few characters dropped, doubled, exchanged or put in.
    std::string damaged(std::string text)
    {
        const std::string alphabet = "()*/^0123.eE+- mkgsVtdcanu\xB5\xC2";
        for (auto count = 1 + random() % 3; count > 0 && !text.empty(); --count)
        {
            const std::size_t at = random() % text.size();
            const char other = alphabet[random() % alphabet.size()];
            switch (random() % 4)
            {
            case 0:
                text.erase(at, 1);
                break;
            case 1:
                text.insert(at, 1, text[at]);
                break;
            case 2:
                text[at] = other;
                break;
            default:
                text.insert(at, 1, other);
            }
        }
        return text;
    }

    std::string any_bytes(std::size_t limit)
    {
        std::string text;
        for (auto length = random() % limit; length > 0; --length)
            text += static_cast<char>(random() % 256);
        return text;
    }

private:
    std::string one_of(std::initializer_list<const char*> texts) { return texts.begin()[random() % texts.size()]; }

    std::string operand(int levels)
    {
        const std::string inner = quantity(levels - 1);
        return random() % 3 == 0 ? "(" + inner + ")" : inner;
    }

    std::string number()
    {
        return one_of({"", "", "5", "2.5", "-3", "+1", ".5", "1e3", "1.5e-2", "7.", "0.125", "10", "2E+1"});
    }

    std::string blanks() { return one_of({"", "", " ", " ", "  "}); }

    std::string unit()
    {
        const UnitRow& row = unit_rows[random() % 41];
        if (random() % 2 == 0)
            return row.name;
        return prefixes[random() % 19].byte + std::string(row.name);
    }

    std::string power()
    {
        return one_of({"2", "3", "-1", "-2", "0", "1", "(1/2)", "(-1/2)", "(2/4)", "(1/3)", "(3/2)"});
    }

    std::mt19937 random;
};

// Powers of powers of prefixes make the last bits of a number grow.
const double powers_of_powers = 1e-12;

void expect_as_naive(const std::string& text, int& valid)
{
    NaiveQuantity expected;
    const bool is_valid = read_naively(text, expected);
    const si::value read(text);
    valid += is_valid ? 1 : 0;
    if (!is_valid)
    {
        EXPECT_TRUE(is_invalid(read)) << text;
        return;
    }
    EXPECT_TRUE(read.is_valid()) << text;
    EXPECT_TRUE(same_number(read.value_in_baseunits(), expected.number, powers_of_powers))
        << text << ": " << read.value_in_baseunits() << ", expected " << expected.number;
    for (std::size_t i = 0; i < 9; ++i)
        EXPECT_EQ(vela_test::text(read.exponent(i)), expected.exponents[i].text()) << text << ", " << base_names[i];
}

TEST(AnyText, OfTheGrammarReadsAsAPlainReaderDoes)
{
    Writer writer(72101);
    int valid = 0;
    for (int i = 0; i < 20000 && !testing::Test::HasFailure(); ++i)
        expect_as_naive(writer.quantity(i % 6), valid);
    EXPECT_GT(valid, 5000);
    EXPECT_LT(valid, 19000);
}

TEST(AnyText, DamagedReadsAsAPlainReaderDoes)
{
    Writer writer(72102);
    int valid = 0;
    for (int i = 0; i < 40000 && !testing::Test::HasFailure(); ++i)
        expect_as_naive(writer.damaged(writer.quantity(i % 4)), valid);
    EXPECT_GT(valid, 2000);
    EXPECT_LT(valid, 38000);
}

TEST(AnyText, OfAnyBytesReadsAsAPlainReaderDoes)
{
    Writer writer(72103);
    int valid = 0;
    for (int i = 0; i < 20000 && !testing::Test::HasFailure(); ++i)
        expect_as_naive(writer.any_bytes(1 + static_cast<std::size_t>(i) % 30), valid);
    EXPECT_LT(valid, 10000);
}

} // namespace

// The JSON form of values, to the letter, and the stream that it leaves.
#include "support/expect_bad_cast.h"
#include "json/counting_source.h"
#include "json/deep_values.h"
#include "json/forged_kind.h"

#include <Json/Value.h>
#include <Json/write.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <iomanip>
#include <limits>
#include <locale>
#include <sstream>
#include <string>

namespace {

using Json::Value;
using json_test::Levels;

std::string written(const Value& value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

TEST(WriteJson, NullAndBooleansAreWords)
{
    EXPECT_EQ(written(Value()), "null");
    EXPECT_EQ(written(Value(true)), "true");
    EXPECT_EQ(written(Value(false)), "false");
}

TEST(WriteJson, IntegersAreDigits)
{
    EXPECT_EQ(written(Value(0)), "0");
    EXPECT_EQ(written(Value(-15)), "-15");
    EXPECT_EQ(written(Value(INT64_MAX)), "9223372036854775807");
    EXPECT_EQ(written(Value(INT64_MIN)), "-9223372036854775808");
    EXPECT_EQ(written(Value(std::uint8_t(65))), "65");
    EXPECT_EQ(written(Value('A')), "65");
}

TEST(WriteJson, WholeDecimalsHaveOneDigitBehindThePoint)
{
    EXPECT_EQ(written(Value(2.0)), "2.0");
    EXPECT_EQ(written(Value(3.0)), "3.0");
    EXPECT_EQ(written(Value(0.0)), "0.0");
    EXPECT_EQ(written(Value(-0.0)), "-0.0");
    EXPECT_EQ(written(Value(-7.0)), "-7.0");
    EXPECT_EQ(written(Value(1e20)), "100000000000000000000.0");
    EXPECT_EQ(written(Value(123456789012.0)), "123456789012.0");
    EXPECT_EQ(written(Value(1180591620717411303424.0)), "1180591620717411303424.0");
    EXPECT_EQ(written(Value(-9007199254740992.0)), "-9007199254740992.0");
}

TEST(WriteJson, LargestDecimalIsWrittenOut)
{
    const std::string text = written(Value(DBL_MAX));
    EXPECT_EQ(text.substr(0, 17), "17976931348623157");
    EXPECT_EQ(text.size(), 311u);
    EXPECT_EQ(text.substr(309), ".0");
}

TEST(WriteJson, FractionsHaveUpToTenDigits)
{
    EXPECT_EQ(written(Value(2.5)), "2.5");
    EXPECT_EQ(written(Value(1.0 / 3.0)), "0.3333333333");
    EXPECT_EQ(written(Value(-2.0 / 3.0)), "-0.6666666667");
    EXPECT_EQ(written(Value(0.1)), "0.1");
    EXPECT_EQ(written(Value(0.1f)), "0.1000000015");
    EXPECT_EQ(written(Value(123456789.125)), "123456789.1");
    EXPECT_EQ(written(Value(3.14159265358979)), "3.141592654");
}

TEST(WriteJson, FractionsTakeTheExponentOfTheDefaultNotation)
{
    EXPECT_EQ(written(Value(1.5e-10)), "1.5e-10");
    EXPECT_EQ(written(Value(0.0001)), "0.0001");
    EXPECT_EQ(written(Value(0.00001)), "1e-05");
    EXPECT_EQ(written(Value(12345678901.5)), "1.23456789e+10");
    EXPECT_EQ(written(Value(4.9406564584124654e-324)), "4.940656458e-324");
}

TEST(WriteJson, FractionThatRoundsToAWholeNumberHasNoPoint)
{
    EXPECT_EQ(written(Value(0.99999999999)), "1");
    EXPECT_EQ(written(Value(4503599627370495.5)), "4.503599627e+15");
}

TEST(WriteJson, InfinitiesAndNoNumberAreTheWordsOfTheStream)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(written(Value(infinity)), "inf");
    EXPECT_EQ(written(Value(-infinity)), "-inf");
    EXPECT_EQ(written(Value(std::numeric_limits<double>::quiet_NaN())), "nan");
}

TEST(WriteJson, StringsEscapeBackslashAndQuoteAlone)
{
    EXPECT_EQ(written(Value("")), R"("")");
    EXPECT_EQ(written(Value("text")), R"("text")");
    EXPECT_EQ(written(Value(R"(a"b\c)")), R"("a\"b\\c")");
    EXPECT_EQ(written(Value("/'<>&")), R"("/'<>&")");
    for (int byte = 0; byte < 256; ++byte)
    {
        const std::string text(1, static_cast<char>(byte));
        const std::string escape = byte == '"' || byte == '\\' ? "\\" : "";
        EXPECT_EQ(written(Value(text)), "\"" + escape + text + "\"") << byte;
    }
}

TEST(WriteJson, LineBreaksAndHighBytesGoOutRaw)
{
    EXPECT_EQ(written(Value("a\nb\t\xC3\xA4\xFF")), "\"a\nb\t\xC3\xA4\xFF\"");
}

TEST(WriteJson, ListsAreElementsBetweenBrackets)
{
    EXPECT_EQ(written(Value(Value::List{})), "[]");
    EXPECT_EQ(written(Value(Value::List{Value()})), "[null]");
    EXPECT_EQ(written(Value(Value::List{Value(1), Value("a"), Value(Value::List{Value(true)}), Value(2.0)})),
              R"([1,"a",[true],2.0])");
}

TEST(WriteJson, ObjectsAreMembersInTheOrderOfTheirKeys)
{
    EXPECT_EQ(written(Value(Value::Object{})), "{}");
    EXPECT_EQ(written(Value(Value::Object{{"b", Value(1)}, {"a", Value()}, {"B", Value("x")}, {"", Value(false)}})),
              R"({"":false,"B":"x","a":null,"b":1})");
    EXPECT_EQ(written(Value(Value::Object{{R"(a"\)", Value(Value::Object{{"\n", Value(Value::List{})}})}})),
              "{\"a\\\"\\\\\":{\"\n\":[]}}");
}

TEST(WriteJson, MapsAreWrittenAsObjects)
{
    std::ostringstream out;
    const Value::Object object{{"a", Value(1)}, {"b", Value(Value::List{Value(2.5), Value()})}};
    EXPECT_EQ(&(out << object), &out);
    EXPECT_EQ(out.str(), R"({"a":1,"b":[2.5,null]})");
    std::ostringstream empty;
    empty << Value::Object();
    EXPECT_EQ(empty.str(), "{}");
}

TEST(WriteJson, GivesTheStreamForMore)
{
    std::ostringstream out;
    EXPECT_EQ(&(out << Value(1)), &out);
    out << ' ' << Value("a") << ' ' << Value(2.0) << ' ' << 2.0;
    EXPECT_EQ(out.str(), R"(1 "a" 2.0 2)");
}

TEST(WriteJson, RestoresPrecisionAndFlagsOfTheStream)
{
    const Value value(Value::List{Value(2.5), Value(2.0), Value(1), Value(Value::Object{{"a", Value(0.1)}})});
    std::ostringstream out;
    out << std::setprecision(3) << std::scientific << std::showpos << std::uppercase << std::boolalpha << std::left;
    const std::ios::fmtflags flags = out.flags();
    out << value;
    EXPECT_EQ(out.precision(), 3);
    EXPECT_EQ(out.flags(), flags);
    out.str("");
    out << 1.0 / 3.0;
    EXPECT_EQ(out.str(), "+3.333E-01");
}

TEST(WriteJson, FlagsOfTheStreamLeaveDecimalsAndWordsAlone)
{
    std::ostringstream out;
    out << std::setprecision(2) << std::scientific << std::showpos << std::uppercase << std::showpoint
        << std::noboolalpha;
    out << Value(Value::List{Value(2.5), Value(2.0), Value(1.0 / 3.0), Value(1.5e-10), Value(true), Value("x")});
    EXPECT_EQ(out.str(), R"([2.5,2.0,0.3333333333,1.5e-10,true,"x"])");
}

TEST(WriteJson, IntegersAreAsTheStreamPrintsThem)
{
    std::ostringstream signs;
    signs << std::showpos << Value(5);
    EXPECT_EQ(signs.str(), "+5");
    std::ostringstream hexadecimal;
    hexadecimal << std::hex << std::showbase << Value(Value::List{Value(255), Value(1.5), Value(16)});
    EXPECT_EQ(hexadecimal.str(), "[0xff,1.5,0x10]");
}

class GroupsOfThree : public std::numpunct<char>
{
protected:
    char do_thousands_sep() const override { return '_'; }
    std::string do_grouping() const override { return "\3"; }
    char do_decimal_point() const override { return '!'; }
};

TEST(WriteJson, NumbersGoByTheLocaleOfTheStream)
{
    std::ostringstream out;
    out.imbue(std::locale(std::locale::classic(), new GroupsOfThree));
    out << Value(1234567);
    EXPECT_EQ(out.str(), "1_234_567");
}

TEST(WriteJson, ListsThatFillThemselvesAreWrittenWhole)
{
    const Value list(boost::shared_ptr<const Json::ListSource>(json_test::counting_source(4)));
    EXPECT_EQ(written(list), "[0,1,2,3]");
    EXPECT_EQ(written(Value(Value::Object{{"a", list}})), R"({"a":[0,1,2,3]})");
}

TEST(WriteJson, KindOutsideTheSevenIsABadCast)
{
    Value value;
    value.at("a") = Value(1);
    value.at("b");
    const json_test::ForgedKind forged(value.at("b"), 7);
    std::ostringstream out;
    EXPECT_BAD_CAST(out << value.at("b"));
    EXPECT_EQ(out.str(), "");
    EXPECT_BAD_CAST(out << value);
}

TEST(WriteJson, ChangesNothing)
{
    const Value value(Value::Object{{"a", Value()}, {"b", Value(1)}, {"c", Value(2.0)}});
    const Value before(value);
    written(value);
    EXPECT_TRUE(value == before);
}

TEST(WriteJson, DeepListsAndObjectsAreWritten)
{
    const std::size_t depth = 100000;
    std::string lists(depth, '[');
    lists += '7';
    lists.append(depth, ']');
    EXPECT_TRUE(written(json_test::deep_value(depth, Levels::lists, Value(7))) == lists);
    std::string objects;
    for (std::size_t level = 0; level < depth; ++level)
        objects += "{\"k\":";
    objects += '7';
    objects.append(depth, '}');
    EXPECT_TRUE(written(json_test::deep_value(depth, Levels::objects, Value(7))) == objects);
}

TEST(WriteJson, MillionLevelsOfBothAreWritten)
{
    const std::size_t depth = 1000000;
    std::string expected;
    for (std::size_t level = 0; level < depth; level += 2)
        expected += R"({"a":"sibling","k":[1,)";
    expected += "null";
    for (std::size_t level = 0; level < depth; level += 2)
        expected += "]}";
    EXPECT_TRUE(written(json_test::deep_value(depth, Levels::mixed, Value())) == expected);
}

}

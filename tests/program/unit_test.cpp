#include "run_vbf.h"

#include <nlohmann/json.hpp>

using namespace vela_test;
using ParsedJson = nlohmann::ordered_json;

namespace {

/// The signs as UTF-8: U+00B5 and U+03BC.
const std::string micro_sign = "\xC2\xB5";
const std::string greek_mu = "\xCE\xBC";

class UnitTest : public ProgramTest
{
protected:
    /// Parsed strictly: a document that is no UTF-8 or has text behind it fails.
    ParsedJson unit(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), "unit");
        arguments.push_back("--json");
        return ParsedJson::parse(output_of(arguments));
    }

    void expect_unit_failure(const std::vector<std::string>& arguments, const std::string& message) const
    {
        std::vector<std::string> all = {"unit"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        expect_failure(all, 1, message);
        all.push_back("--json");
        expect_failure(all, 1, message);
    }
};

} // namespace

TEST_F(UnitTest, ShowsBaseUnitsAndPrintedForms)
{
    EXPECT_EQ(output_of({"unit", "1.5 mm"}), "1.5 mm\n"
                                             "  base units     0.0015 m\n"
                                             "  plain          1.500e-3m\n"
                                             "  blank          1.500e-3 m\n"
                                             "  prefix         1.500mm\n"
                                             "  blank, prefix  1.500 mm\n");
}

TEST_F(UnitTest, ShowsTheUnitThatIsAskedFor)
{
    EXPECT_EQ(output_of({"unit", "90*km/h", "--in", "m/s"}), "90*km/h\n"
                                                             "  base units     25 m s^-1\n"
                                                             "  converted      25 in m/s\n"
                                                             "  plain          25.00m/s\n"
                                                             "  blank          25.00 m/s\n"
                                                             "  prefix         25.00m/s\n"
                                                             "  blank, prefix  25.00 m/s\n");
}

TEST_F(UnitTest, PlainNumbersTakeAPrefixToo)
{
    EXPECT_EQ(output_of({"unit", "12500"}), "12500\n"
                                            "  base units     12500\n"
                                            "  plain          1.250e4\n"
                                            "  blank          1.250e4 \n"
                                            "  prefix         12.50k\n"
                                            "  blank, prefix  12.50 k\n");
}

TEST_F(UnitTest, PowersOfBaseUnitsAreShownAsTheyAre)
{
    EXPECT_THAT(output_of({"unit", "2*m^(3/2)*A^2/s^(1/2)"}),
                testing::HasSubstr("  base units     2 m^(3/2) s^(1/-2) A^2\n"));
}

TEST_F(UnitTest, JsonHoldsAllFormsByTheirFlags)
{
    const char* const document = R"({
      "text": "2.5 kV/A",
      "number": 2500.0,
      "exponents": {"m": [2, 1], "kg": [1, 1], "s": [-3, 1], "A": [-2, 1]},
      "in": {"unit": "ohm", "number": 2500.0},
      "formats": ["2.500e3ohm", "2.500e3 ohm", "2.500kohm", "2.500 kohm",
                  "2.500e3ohm", "2.500e3 ohm", "2.500kohm", "2.500 kohm"]
    })";
    EXPECT_EQ(unit({"2.5 kV/A", "--in", "ohm"}).dump(), ParsedJson::parse(document).dump());
}

TEST_F(UnitTest, JsonOfAPlainNumber)
{
    const char* const document = R"({
      "text": "0.25",
      "number": 0.25,
      "exponents": {},
      "formats": ["0.2500", "0.2500 ", "0.2500", "0.2500 ", "0.2500", "0.2500 ", "250.0m", "0.2500 "]
    })";
    EXPECT_EQ(unit({"0.25"}).dump(), ParsedJson::parse(document).dump());
}

TEST_F(UnitTest, NumbersThatAreNotFiniteAreNullInJson)
{
    const ParsedJson result = unit({"1e999 m", "--in", "mm"});
    EXPECT_TRUE(result["number"].is_null());
    EXPECT_TRUE(result["in"]["number"].is_null());
    EXPECT_EQ(result["formats"][0], "infe0m");
}

TEST_F(UnitTest, BothMicroSignsAreRead)
{
    for (const std::string& sign : {micro_sign, greek_mu, std::string("u")})
    {
        EXPECT_EQ(unit({"3 " + sign + "m"})["number"], 3e-6);
        EXPECT_EQ(unit({"3 mm", "--in", sign + "m"})["in"]["number"], 3000.0);
        EXPECT_EQ(unit({"2*" + sign + "m/" + sign + "s"})["number"], 2.0);
    }
}

TEST_F(UnitTest, MicroSignIsPrintedInUtf8)
{
    EXPECT_EQ(unit({"2e-6 m"})["formats"][3], "2.000 " + micro_sign + "m");
    const std::string text = output_of({"unit", "2 " + greek_mu + "m"});
    EXPECT_THAT(text, testing::StartsWith("2 " + greek_mu + "m\n"));
    EXPECT_THAT(text, testing::HasSubstr("  prefix         2.000" + micro_sign + "m\n"));
}

TEST_F(UnitTest, OtherLettersOfTwoBytesAreNoMicroSign)
{
    const std::string letter = "\xC3\xB5"; // ends like U+00B5
    expect_unit_failure({letter + "m"}, "'" + letter + "m' is no quantity");
    expect_unit_failure({"\xC2m"}, "'\xEF\xBF\xBDm' is no quantity");
}

TEST_F(UnitTest, TextsThatAreNoQuantityFail)
{
    expect_unit_failure({"min"}, "'min' is no quantity");
    expect_unit_failure({""}, "'' is no quantity");
    expect_unit_failure({"1eV"}, "'1eV' is no quantity");
    expect_unit_failure({"1 m", "--in", "inch"}, "'inch' is no quantity");
    expect_unit_failure({"1 m", "--in", ""}, "'' is no quantity");
    expect_unit_failure({"m\x1b[31m"}, "'m\\x1b[31m' is no quantity");
}

TEST_F(UnitTest, DifferentDimensionsFail)
{
    expect_unit_failure({"1 m", "--in", "s"}, "'1 m' and 's' differ in their dimensions");
}

TEST_F(UnitTest, TextsOfAnyDepthAreRead)
{
    EXPECT_EQ(unit({std::string(30000, '(') + "m" + std::string(30000, ')')})["number"], 1.0);
}

TEST_F(UnitTest, NegativeNumbersAreNoOptions)
{
    EXPECT_EQ(unit({"-5 mm"})["number"], -0.005);
    EXPECT_EQ(unit({"1 m", "--in", "-1 m"})["in"]["number"], -1.0);
    EXPECT_THAT(output_of({"unit", "--", "-.5 m"}), testing::HasSubstr("base units     -0.5 m"));
}

TEST_F(UnitTest, WrongUsageIsRefused)
{
    expect_failure({"unit"}, 2, "TEXT is required. Try vbf --help.");
    EXPECT_EQ(run({"unit", "1 m", "2 m"}).status, 2);
    EXPECT_EQ(run({"unit", "1 m", "--in"}).status, 2);
    EXPECT_EQ(run({"unit", "1 m", "--to", "s"}).status, 2);
}

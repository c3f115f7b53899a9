#include "run_vbf.h"

#include <VelaBase/version.h>

using namespace vela_test;

namespace {

class UsageTest : public ProgramTest
{
protected:
    void expect_wrong_usage(const std::vector<std::string>& arguments, const std::string& message) const
    {
        expect_failure(arguments, 2, message + ". Try vbf --help.");
    }
};

} // namespace

TEST_F(UsageTest, HelpGoesToStandardOutput)
{
    const std::string help = output_of({"--help"});
    for (const char* const command :
         {"info", "verify", "read", "preview", "export", "tags", "ome", "unit", "import", "append", "copy", "repair"})
        EXPECT_THAT(help, testing::HasSubstr(command));
    EXPECT_THAT(output_of({"read", "--help"}), testing::HasSubstr("--from N"));
    EXPECT_THAT(output_of({"preview", "--help"}), testing::HasSubstr("--plane N"));
}

TEST_F(UsageTest, VersionIsThatOfTheHeader)
{
    const std::string version = std::to_string(VELA_VERSION_MAJOR) + "." + std::to_string(VELA_VERSION_MINOR) + "." +
                                std::to_string(VELA_VERSION_PATCH);
    EXPECT_EQ(output_of({"--version"}), "vbf " + version + "\n");
}

TEST_F(UsageTest, CommandIsNeeded)
{
    expect_wrong_usage({}, "A subcommand is required");
}

TEST_F(UsageTest, UnknownCommandsAndOptionsAreRefused)
{
    EXPECT_EQ(run({"dump", VELA_GOLGI_FILE}).status, 2);
    EXPECT_EQ(run({"info", VELA_GOLGI_FILE, "--xml"}).status, 2);
    EXPECT_EQ(run({"info", VELA_GOLGI_FILE, "more"}).status, 2);
    EXPECT_EQ(run({"info", VELA_GOLGI_FILE, "info", VELA_GOLGI_FILE}).status, 2);
}

TEST_F(UsageTest, MissingArgumentsAreRefused)
{
    expect_wrong_usage({"info"}, "FILE is required");
    expect_wrong_usage({"read", VELA_GOLGI_FILE}, "INDEX is required");
    expect_wrong_usage({"preview", VELA_GOLGI_FILE, "0"}, "--out is required");
}

TEST_F(UsageTest, NumbersAreWholeAndWithoutSign)
{
    for (const std::string text : {"-1", "+1", "1.5", "0x10", "1 ", "x", "18446744073709551616"})
    {
        const std::string message = "'" + text + "' is no number from 0 to 18446744073709551615";
        expect_wrong_usage({"read", VELA_GOLGI_FILE, "0", "--from=" + text}, "--from: " + message);
        expect_wrong_usage({"read", VELA_GOLGI_FILE, "0", "--count=" + text}, "--count: " + message);
        expect_wrong_usage({"preview", VELA_GOLGI_FILE, "0", "--out", path("o"), "--plane=" + text},
                           "--plane: " + message);
    }
}

TEST_F(UsageTest, NumbersAreDecimal)
{
    EXPECT_EQ(output_of({"read", VELA_GOLGI_FILE, "0", "--count", "010"}).size(), 20u);
}

TEST_F(UsageTest, OptionsMayComeBeforeTheFile)
{
    EXPECT_EQ(output_of({"read", "--count", "1", VELA_GOLGI_FILE, "0"}).size(), 2u);
}

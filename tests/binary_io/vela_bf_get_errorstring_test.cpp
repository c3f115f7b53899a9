#include <VelaBase/VelaError.h>
#include <VelaBinaryIO/VBFFile.h>

#include <gtest/gtest.h>

#include <string>

namespace {

void report(int id, const std::string& message)
{
    VelaError(nullptr, nullptr, 0)("%s", message.c_str())(id).process();
}

} // namespace

TEST(BfErrorString, NumbersThatAreNotNegativeStandForThemselves)
{
    report(-4, "not this one");
    EXPECT_STREQ(vela_bf_get_errorstring(0), "");
    EXPECT_STREQ(vela_bf_get_errorstring(1), "Error in vbf module: Error in vbf routine");
    EXPECT_STREQ(vela_bf_get_errorstring(4), "Error in vbf module: Error in vbf routine");
}

TEST(BfErrorString, ANegativeNumberStandsForTheLastError)
{
    const std::pair<int, std::string> texts[] = {
        {-11, "Operation cancelled by caller"},
        {-10, "Error in vbf filter queue"},
        {-9, "Problem with vbf handle"},
        {-8, "Invalid string buffer supplied"},
        {-7, "Error in vbf routine"},
        {-6, "Stack index error"},
        {-5, "Error during type conversion"},
        {-4, "Error in file format"},
        {-3, "Filesystem error"},
        {-2, "Error in vbf routine"},
        {-1, "Error in vbf routine"},
        {-15, "Error in vbf routine"},
        {7, "Error in vbf routine"},
    };
    for (const auto& [id, text] : texts)
    {
        report(id, "what happened");
        EXPECT_EQ(vela_bf_get_errorstring(-2), "Error in vbf module: " + text + "\nwhat happened") << id;
    }
    report(0, "nothing");
    EXPECT_STREQ(vela_bf_get_errorstring(-2), "");
}

TEST(BfErrorString, IsCutTo2047Characters)
{
    report(-4, std::string(3000, 'x'));
    const std::string text = vela_bf_get_errorstring(-1);
    EXPECT_EQ(text.size(), 2047U);
    EXPECT_EQ(text.substr(0, 43), "Error in vbf module: Error in file format\nx");
}

// The texts of `vela_bf_get_errorstring`.
#include <VelaBase/VelaError.h>
#include <VelaBinaryIO/VBFFile.h>

#include <gtest/gtest.h>

#include <string>

namespace {

/// Makes an error of this id the last one, and gives its report.
std::string report(int id, const std::string& message = "what happened")
{
    const VelaError error = VelaError(message, nullptr, nullptr, 0)(id);
    error.process();
    return error.get_msg();
}

/// The text of the last error after one with this id.
std::string text_after(int id)
{
    report(id);
    return vela_bf_get_errorstring(-1);
}

std::string with_tail(const std::string& text)
{
    return "Error in vbf module: " + text + "\nwhat happened";
}

TEST(VbfErrorString, EachIdOfTheTableHasItsText)
{
    EXPECT_EQ(text_after(-11), with_tail("Operation cancelled by caller"));
    EXPECT_EQ(text_after(-10), with_tail("Error in vbf filter queue"));
    EXPECT_EQ(text_after(-9), with_tail("Problem with vbf handle"));
    EXPECT_EQ(text_after(-8), with_tail("Invalid string buffer supplied"));
    EXPECT_EQ(text_after(-6), with_tail("Stack index error"));
    EXPECT_EQ(text_after(-5), with_tail("Error during type conversion"));
    EXPECT_EQ(text_after(-4), with_tail("Error in file format"));
    EXPECT_EQ(text_after(-3), with_tail("Filesystem error"));
}

TEST(VbfErrorString, AllOtherIdsHaveOneText)
{
    for (const int id : {-15, -12, -7, -2, -1, 1, 5, 1000, -1000})
        EXPECT_EQ(text_after(id), with_tail("Error in vbf routine")) << id;
}

TEST(VbfErrorString, ANegativeIdStandsForTheLastErrorWhateverItsNumber)
{
    report(-4);
    for (const int id : {-1, -3, -11, -15, INT32_MIN})
        EXPECT_EQ(vela_bf_get_errorstring(id), with_tail("Error in file format")) << id;
}

TEST(VbfErrorString, TheTailIsTheWholeReport)
{
    VelaError("m", "VBFFileImp::open", "sources/binary_io/x.cpp", 7)(-3).process();
    EXPECT_EQ(vela_bf_get_errorstring(-3),
              "Error in vbf module: Filesystem error\n" + std::string(vela_get_last_error_string()));
    EXPECT_NE(std::string(vela_get_last_error_string()).find("in function 'VBFFileImp::open':"), std::string::npos);
}

TEST(VbfErrorString, ALastErrorOfNumberZeroHasNoText)
{
    report(0);
    EXPECT_STREQ(vela_bf_get_errorstring(-4), "");
}

TEST(VbfErrorString, ZeroHasNoText)
{
    report(-4);
    EXPECT_STREQ(vela_bf_get_errorstring(0), "");
}

TEST(VbfErrorString, APositiveIdHasNoTailAndDoesNotLookAtTheLastError)
{
    report(-4);
    EXPECT_STREQ(vela_bf_get_errorstring(1), "Error in vbf module: Error in vbf routine");
    EXPECT_STREQ(vela_bf_get_errorstring(4), "Error in vbf module: Error in vbf routine");
    EXPECT_STREQ(vela_bf_get_errorstring(INT32_MAX), "Error in vbf module: Error in vbf routine");
}

TEST(VbfErrorString, ATextIsCutTo2047Characters)
{
    const std::string begin = "Error in vbf module: Filesystem error\n";
    for (const std::size_t length :
         {2047 - begin.size() - 1, 2047 - begin.size(), 2047 - begin.size() + 1, std::size_t(5000)})
    {
        const std::string message(length, 'm');
        report(-3, message);
        EXPECT_EQ(vela_bf_get_errorstring(-3), (begin + message).substr(0, 2047)) << length;
    }
}

TEST(VbfErrorString, AllCallsShareOneBuffer)
{
    report(-4);
    const char* const first = vela_bf_get_errorstring(-4);
    EXPECT_STREQ(first, with_tail("Error in file format").c_str());
    EXPECT_EQ(vela_bf_get_errorstring(1), first);
    EXPECT_STREQ(first, "Error in vbf module: Error in vbf routine");
}

}

// The system's error code and text in an error.
#include "error/reports.h"

#include <VelaBase/VelaError.h>

#include <cerrno>
#include <clocale>
#include <cstring>
#include <limits>
#include <string>
#include <thread>

namespace {

VelaError error_after(int system_code)
{
    VelaError error = VelaError("f", "a.cpp", 3)("text");
    errno = system_code;
    error.do_oserr();
    return error;
}

TEST(SystemError, HasTheCodeAndTheTextWithoutALineBreak)
{
    EXPECT_EQ(error_after(ENOENT).get_oserr_id(), 2);
    EXPECT_EQ(error_after(ENOENT).get_oserr(), "No such file or directory");
    EXPECT_EQ(error_after(EACCES).get_oserr(), "Permission denied");
    EXPECT_EQ(error_after(ENOSPC).get_oserr(), "No space left on device");
    EXPECT_EQ(error_after(EIO).get_oserr(), "Input/output error");
}

TEST(SystemError, EveryCodeUpTo5000HasTheTextOfTheSystem)
{
    int known = 0;
    for (int code = 1; code < 5000; ++code)
    {
        const char* text = strerrordesc_np(code);
        const VelaError error = error_after(code);
        EXPECT_EQ(error.get_oserr_id(), code);
        EXPECT_EQ(error.get_oserr(), text == nullptr ? "Unknown system error." : text) << code;
        if (text != nullptr)
            ++known;
    }
    EXPECT_GT(known, 100);
}

TEST(SystemError, AnUnknownCodeIsKeptAndSaidToBeUnknown)
{
    for (const int code : {4000, 100000, std::numeric_limits<int>::max(), -1, std::numeric_limits<int>::min()})
    {
        const VelaError error = error_after(code);
        EXPECT_EQ(error.get_oserr_id(), code);
        EXPECT_EQ(error.get_oserr(), "Unknown system error.");
    }
    EXPECT_STREQ(error_after(100000).what(), "a.cpp(3): ERROR\n    in function 'f':\n    text"
                                             "\n    os_error(100000): Unknown system error.");
}

TEST(SystemError, CodeZeroIsLeftOutOfTheReport)
{
    const VelaError error = error_after(0);
    EXPECT_EQ(error.get_oserr_id(), 0);
    EXPECT_EQ(error.get_oserr(), "Success");
    EXPECT_STREQ(error.what(), "a.cpp(3): ERROR\n    in function 'f':\n    text");
}

TEST(SystemError, ANegativeCodeIsLeftOutOfTheReport)
{
    EXPECT_STREQ(error_after(-5).what(), "a.cpp(3): ERROR\n    in function 'f':\n    text");
}

TEST(SystemError, IsReadAnewAtEachCall)
{
    VelaError error = error_after(ENOENT);
    errno = EACCES;
    EXPECT_EQ(error.get_oserr_id(), ENOENT) << "nothing is read before the next call";
    EXPECT_EQ(error.get_oserr(), "No such file or directory");
    error.do_oserr();
    EXPECT_EQ(error.get_oserr_id(), EACCES);
    EXPECT_EQ(error.get_oserr(), "Permission denied");
    errno = 0;
    error.do_oserr();
    EXPECT_EQ(error.get_oserr_id(), 0);
}

TEST(SystemError, IsReadOnlyOnRequest)
{
    errno = ENOENT;
    const VelaError error = VelaError("f", "a.cpp", 3)("text")(-3);
    EXPECT_EQ(error.get_oserr_id(), 0);
    EXPECT_EQ(error.get_oserr(), "");
    EXPECT_STREQ(error.what(), "a.cpp(3): ERROR\n    in function 'f':\n    text");
}

TEST(SystemError, SurvivesTheExpressionThatBuildsTheError)
{
    errno = EACCES;
    const VelaError error =
        VelaError("Reader::open", "sources/reader.cpp", 42)("Cannot open '%s'", "a.vbf")(-3).do_oserr();
    EXPECT_EQ(error.get_oserr_id(), EACCES);
    EXPECT_EQ(error.get_id(), -3) << "the id stays";
    EXPECT_EQ(error.get_msg(), "Cannot open 'a.vbf'") << "the message stays";
}

TEST(SystemError, IsReadInTheCallingThread)
{
    VelaError error("f", "a.cpp", 3);
    std::thread other(
        [&error]
        {
            errno = EACCES;
            error.do_oserr();
        });
    other.join();
    EXPECT_EQ(error.get_oserr_id(), EACCES);
    errno = ENOENT;
    error.do_oserr();
    EXPECT_EQ(error.get_oserr_id(), ENOENT);
}

} // namespace

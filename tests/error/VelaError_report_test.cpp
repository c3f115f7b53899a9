// The text of a report, the last error, and what an error says at its destruction.
#include "error/reports.h"

#include <VelaBase/VelaError.h>

#include <gmock/gmock.h>

#include <cerrno>
#include <exception>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vela_test::debug_lines;
using vela_test::expect_last_error;
using vela_test::text_on_stderr;

typedef vela_test::ReportTest VelaErrorReport;

const int id_at_start = vela_get_last_error();
const std::string report_at_start = vela_get_last_error_string();

TEST(LastError, IsEmptyBeforeTheFirstReport)
{
    EXPECT_EQ(id_at_start, 0);
    EXPECT_EQ(report_at_start, "");
}

TEST_F(VelaErrorReport, HasPlaceLabelFunctionAndMessage)
{
    const VelaError error = VelaError("Reader::open", "sources/reader.cpp", 42)("Cannot open it!")(-3);
    EXPECT_STREQ(error.what(), "sources/reader.cpp(42): ERROR\n"
                               "    in function 'Reader::open':\n"
                               "    Cannot open it!");
}

TEST_F(VelaErrorReport, HasTheSystemErrorAtItsEnd)
{
    errno = ENOENT;
    const VelaError error = VelaError("Reader::open", "sources/reader.cpp", 42)("Cannot open it!")(-3).do_oserr();
    EXPECT_STREQ(error.what(), "sources/reader.cpp(42): ERROR\n"
                               "    in function 'Reader::open':\n"
                               "    Cannot open it!\n"
                               "    os_error(2): No such file or directory");
}

TEST_F(VelaErrorReport, LeavesOutAnUnknownFunction)
{
    EXPECT_STREQ(VelaError(nullptr, "a.cpp", 7)("text").what(), "a.cpp(7): ERROR\n    text");
}

TEST_F(VelaErrorReport, KeepsAnEmptyFunctionAndAnEmptyFile)
{
    EXPECT_STREQ(VelaError("", "", 7)("text").what(), "(7): ERROR\n    in function '':\n    text");
}

TEST_F(VelaErrorReport, IsTheBareMessageWithoutALine)
{
    EXPECT_STREQ(VelaError("f", "a.cpp", 0)("text").what(), "text");
}

TEST_F(VelaErrorReport, IsTheBareMessageWithoutAFile)
{
    EXPECT_STREQ(VelaError("f", nullptr, 7)("text").what(), "text");
    EXPECT_STREQ(VelaError()("text").what(), "text");
    EXPECT_STREQ(VelaError().what(), "");
}

TEST_F(VelaErrorReport, WithoutAPlaceStillEndsWithTheSystemError)
{
    errno = EACCES;
    EXPECT_STREQ(VelaError("f", "a.cpp", 0)("text").do_oserr().what(), "text\n    os_error(13): Permission denied");
    errno = EACCES;
    EXPECT_STREQ(VelaError("f", nullptr, 7).do_oserr().what(), "\n    os_error(13): Permission denied");
}

TEST_F(VelaErrorReport, AWarningWithoutAPlaceHasNoLabel)
{
    EXPECT_EQ(text_on_stderr([] { VelaError("f", "a.cpp", 0)("text").do_warn(); }), "text\n");
    EXPECT_EQ(text_on_stderr([] { VelaError("f", nullptr, 7)("text").do_warn(); }), "text\n");
}

TEST_F(VelaErrorReport, ANegativeLineIsAPlace)
{
    EXPECT_STREQ(VelaError("f", "a.cpp", -1)("text").what(), "a.cpp(-1): ERROR\n    in function 'f':\n    text");
    EXPECT_STREQ(VelaError(nullptr, "a.cpp", std::numeric_limits<int>::min())("text").what(),
                 "a.cpp(-2147483648): ERROR\n    text");
    EXPECT_STREQ(VelaError(nullptr, "a.cpp", std::numeric_limits<int>::max())("text").what(),
                 "a.cpp(2147483647): ERROR\n    text");
}

TEST_F(VelaErrorReport, NeverReadsItsPartsAsFormats)
{
    EXPECT_STREQ(VelaError(std::string("50% %s %n"), "f%d", "%s.cpp", 7).what(),
                 "%s.cpp(7): ERROR\n    in function 'f%d':\n    50% %s %n");
}

TEST_F(VelaErrorReport, IsNotCut)
{
    const std::string file(9000, 'p');
    const std::string function(8000, 'f');
    const std::string message(100000, 'm');
    const VelaError error(message, function.c_str(), file.c_str(), 7);
    EXPECT_EQ(std::string(error.what()), file + "(7): ERROR\n    in function '" + function + "':\n    " + message);
}

// The rule once more as a plain sum, over every combination of what a report may consist of.
struct Parts
{
    const char* file;
    const char* func;
    int line;
    int system_code;
    const char* system_text;
    bool warn;
    std::string message;
};

std::string expected_report(const Parts& parts)
{
    std::string report;
    if (parts.file != nullptr && parts.line != 0)
    {
        report += std::string(parts.file) + "(" + std::to_string(parts.line) + "): ";
        report += parts.warn ? "WARNING\n    " : "ERROR\n    ";
        if (parts.func != nullptr)
            report += "in function '" + std::string(parts.func) + "':\n    ";
    }
    report += parts.message;
    if (parts.system_code > 0)
        report += "\n    os_error(" + std::to_string(parts.system_code) + "): " + parts.system_text;
    return report;
}

void expect_report(const Parts& parts)
{
    const std::string expected = expected_report(parts);
    SCOPED_TRACE(expected);
    debug_lines().clear();
    const std::string printed = text_on_stderr(
        [&parts, &expected]
        {
            VelaError error(parts.message, parts.func, parts.file, parts.line);
            if (parts.system_text != nullptr)
            {
                errno = parts.system_code;
                error.do_oserr();
            }
            error(-8);
            if (parts.warn)
                error.do_warn();
            EXPECT_EQ(std::string(error.what()), expected);
            EXPECT_EQ(error.process(), -8);
            expect_last_error(-8, expected);
        });
    EXPECT_EQ(printed, parts.warn ? expected + "\n" : "");
    EXPECT_EQ(debug_lines(), std::vector<std::string>(parts.warn ? 3 : 2, expected + "\n"));
}

TEST_F(VelaErrorReport, FollowsTheRuleForEveryCombinationOfItsParts)
{
    struct SystemError
    {
        int code;
        const char* text;
    };
    const SystemError system_errors[] = {
        {0, nullptr}, {0, "Success"}, {EACCES, "Permission denied"}, {100000, "Unknown system error."}};
    for (const char* file : {static_cast<const char*>(nullptr), "", "sources/a.cpp"})
        for (const char* func : {static_cast<const char*>(nullptr), "", "A::b"})
            for (const int line : {0, 1, -5})
                for (const SystemError& system_error : system_errors)
                    for (const bool warn : {false, true})
                        for (const std::string message : {"", "one line", "two\nlines %d"})
                            expect_report({file, func, line, system_error.code, system_error.text, warn, message});
}

TEST_F(VelaErrorReport, ProcessReturnsTheIdAndStoresTheLastError)
{
    const VelaError error = VelaError("f", "a.cpp", 3)("text")(-10);
    expect_no_report();
    EXPECT_EQ(error.process(), -10);
    expect_last_error(-10, "a.cpp(3): ERROR\n    in function 'f':\n    text");
}

TEST_F(VelaErrorReport, WhatStoresTheLastErrorAndReturnsItsText)
{
    const VelaError error = VelaError("f", "a.cpp", 3)("text")(-10);
    const char* text = error.what();
    EXPECT_EQ(text, vela_get_last_error_string());
    expect_last_error(-10, "a.cpp(3): ERROR\n    in function 'f':\n    text");
}

TEST_F(VelaErrorReport, TheLatestReportIsTheLastError)
{
    const VelaError first = VelaError("f", "a.cpp", 3)("a long first message that needs a heap")(-10);
    const VelaError second = VelaError()("second")(0);
    first.what();
    second.what();
    expect_last_error(0, "second");
    first.process();
    expect_last_error(-10, "a.cpp(3): ERROR\n    in function 'f':\n    a long first message that needs a heap");
}

TEST_F(VelaErrorReport, IsComposedAnewAtEachCall)
{
    VelaError error = VelaError("f", "a.cpp", 3)("first")(1);
    EXPECT_STREQ(error.what(), "a.cpp(3): ERROR\n    in function 'f':\n    first");
    error("second")(2);
    EXPECT_STREQ(error.what(), "a.cpp(3): ERROR\n    in function 'f':\n    second");
    EXPECT_EQ(vela_get_last_error(), 2);
}

TEST_F(VelaErrorReport, AccessorsReportNothing)
{
    const VelaError error = VelaError("f", "a.cpp", 3)("text")(-10).do_oserr();
    EXPECT_EQ(error.get_id(), -10);
    EXPECT_EQ(error.get_msg(), "text");
    EXPECT_STREQ(error.get_file(), "a.cpp");
    EXPECT_EQ(static_cast<int>(error), -10);
    expect_no_report();
}

TEST_F(VelaErrorReport, TheLastErrorIsOneForAllThreads)
{
    std::thread reporter([] { VelaError()("from a thread")(-12).process(); });
    reporter.join();
    expect_last_error(-12, "from a thread");
}

TEST_F(VelaErrorReport, ANestedFailureCarriesTheReportOfTheFirst)
{
    try
    {
        try
        {
            throw VelaError("inner", "a.cpp", 3)("Unexpected end")(-4);
        }
        catch (const std::exception& first)
        {
            throw VelaError("outer", "b.cpp", 9)("Invalid metadata found!\n%s", first.what())(-6);
        }
    }
    catch (const VelaError& second)
    {
        EXPECT_STREQ(second.what(), "b.cpp(9): ERROR\n    in function 'outer':\n    Invalid metadata found!\n"
                                    "a.cpp(3): ERROR\n    in function 'inner':\n    Unexpected end");
        EXPECT_EQ(vela_get_last_error(), -6);
    }
}

// Debug sink

TEST_F(VelaErrorReport, TheDebugSinkReceivesEachReportWithALineBreak)
{
    const VelaError error = VelaError("f", "a.cpp", 3)("text");
    error.process();
    error.what();
    EXPECT_THAT(debug_lines(), ElementsAre("a.cpp(3): ERROR\n    in function 'f':\n    text\n",
                                           "a.cpp(3): ERROR\n    in function 'f':\n    text\n"));
}

int id_seen_by_sink = 0;
std::string report_seen_by_sink;

extern "C" void look_at_the_last_error(const char*)
{
    id_seen_by_sink = vela_get_last_error();
    report_seen_by_sink = vela_get_last_error_string();
}

TEST_F(VelaErrorReport, TheDebugSinkIsServedBeforeTheLastErrorChanges)
{
    vela_set_debug_sink(&look_at_the_last_error);
    VelaError()("text")(-3).process();
    EXPECT_EQ(id_seen_by_sink, -77);
    EXPECT_EQ(report_seen_by_sink, "nothing since the test began");
    expect_last_error(-3, "text");
}

TEST_F(VelaErrorReport, SettingTheDebugSinkReturnsTheOneBefore)
{
    EXPECT_EQ(vela_set_debug_sink(nullptr), &vela_test::keep_debug_line);
    EXPECT_EQ(vela_set_debug_sink(&vela_test::keep_debug_line), nullptr);
}

TEST_F(VelaErrorReport, WithoutADebugSinkNothingIsPrinted)
{
    vela_set_debug_sink(nullptr);
    testing::internal::CaptureStdout();
    const std::string printed = text_on_stderr(
        []
        {
            VelaError()("text")(-3).process();
            VelaError()("text")(-4).what();
        });
    EXPECT_EQ(printed, "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_THAT(debug_lines(), IsEmpty());
    expect_last_error(-4, "text");
}

} // namespace

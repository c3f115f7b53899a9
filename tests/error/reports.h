/// Watches what error reporting sends out: the debug lines and the text on standard error.
#pragma once

#include <VelaBase/VelaError.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vela_test {

/// The lines that the debug sink received since the fixture was set up.
inline std::vector<std::string>& debug_lines()
{
    static std::vector<std::string> lines;
    return lines;
}

extern "C" inline void keep_debug_line(const char* text)
{
    debug_lines().push_back(text);
}

/// The last error is this one.
inline void expect_last_error(int id, const std::string& report)
{
    EXPECT_EQ(vela_get_last_error(), id);
    EXPECT_EQ(std::string(vela_get_last_error_string()), report);
}

/// A test of reports. It begins with a last error that it knows and with no debug lines, so that it
/// can tell whether something was reported.
class ReportTest : public testing::Test
{
protected:
    ReportTest()
    {
        VelaError()("nothing since the test began")(-77).process();
        sink_before = vela_set_debug_sink(&keep_debug_line);
        debug_lines().clear();
    }
    ~ReportTest() override
    {
        vela_set_debug_sink(sink_before);
        debug_lines().clear();
    }

    static void expect_no_report()
    {
        EXPECT_TRUE(debug_lines().empty());
        expect_last_error(-77, "nothing since the test began");
    }

private:
    vela_debug_sink sink_before;
};

/// What `action` writes to standard error.
template <class Action>
std::string text_on_stderr(Action action)
{
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}

} // namespace vela_test

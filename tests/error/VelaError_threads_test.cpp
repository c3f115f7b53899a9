// Threads that report at the same time overwrite each other's report, whole.

#include <VelaBase/VelaError.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {

TEST(VelaErrorThreads, ReportsOfSeveralThreadsStayWhole)
{
    constexpr int thread_count = 4;
    constexpr int reports_each = 2000;
    std::vector<std::string> reports;
    for (int i = 0; i < thread_count; ++i)
        reports.push_back("a_file.cpp(1): ERROR\n    in function 'f':\n    " +
                          std::string(100 + 100 * static_cast<std::size_t>(i), char('a' + i)));
    std::vector<int> torn(thread_count, 0);
    std::vector<std::thread> threads;
    for (int i = 0; i < thread_count; ++i)
        threads.emplace_back(
            [&reports, &torn, i]
            {
                const VelaError error(std::string(100 + 100 * static_cast<std::size_t>(i), char('a' + i)), "f",
                                      "a_file.cpp", 1);
                for (int n = 0; n < reports_each; ++n)
                {
                    const std::string text = error.what();
                    bool known = false;
                    for (const std::string& report : reports)
                        known = known || text == report;
                    torn[static_cast<std::size_t>(i)] += known ? 0 : 1;
                }
            });
    for (std::thread& thread : threads)
        thread.join();
    for (const int count : torn)
        EXPECT_EQ(count, 0);
}

/// Reports when static objects are destroyed, after the thread's own ones: a sanitizer sees a text that is gone.
struct ReportsAtTheEnd
{
    ~ReportsAtTheEnd()
    {
        if (std::string(VelaError(std::string(200, 'e'), "f", nullptr, 0).what()) != std::string(200, 'e'))
            std::abort();
    }
};
const ReportsAtTheEnd reports_at_the_end;

TEST(VelaErrorThreads, AReportWhileTheProcessEndsIsWhole)
{
    // Used here, so that this thread's text exists and is destroyed before the static object above.
    EXPECT_STREQ(VelaError(std::string("now"), "f", nullptr, 0).what(), "now");
}

} // namespace

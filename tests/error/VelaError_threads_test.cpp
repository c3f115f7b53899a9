// Threads that report at the same time overwrite each other's report, whole.

#include <VelaBase/VelaError.h>

#include <gtest/gtest.h>

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

} // namespace

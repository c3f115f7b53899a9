// The first use of the table of units on several threads at once. A program of its own, so that it is the first use.
#include "units/quantities.h"

#include <si/value.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

TEST(UnitTable, IsBuiltOnceWhenThreadsUseItFirstTogether)
{
    const std::size_t count = 8;
    std::array<bool, count> is_right{};
    std::array<std::string, count> printed;
    std::atomic<std::size_t> waiting{count};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < count; ++i)
        threads.emplace_back(
            [&, i]
            {
                --waiting;
                while (waiting != 0)
                    std::this_thread::yield();
                const si::value length(std::to_string(i + 1) + ".5 km");
                is_right[i] = vela_test::is_quantity(length, 1000.0 * static_cast<double>(i) + 1500.0, "m");
                printed[i] = length.format(2, 3);
            });
    for (std::thread& thread : threads)
        thread.join();
    for (std::size_t i = 0; i < count; ++i)
    {
        EXPECT_TRUE(is_right[i]) << i;
        EXPECT_EQ(printed[i], std::to_string(i + 1) + ".5 km");
    }
}

} // namespace

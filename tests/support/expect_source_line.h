/// Checks of the place in the source that a failure names.
#pragma once

#include <VelaBase/VelaError.h>

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace vela_test {

/// Line `number` of a file of the library, which `path` names from the top of the source tree; "" where there is none.
inline std::string source_line(const std::string& path, int number)
{
    std::ifstream file(std::string(VELA_TEST_DATA) + "/../../" + path);
    std::string line;
    for (int i = 0; i < number; ++i)
        if (!std::getline(file, line))
            return "";
    return line;
}

/// `function` throws a `VelaError` that names a line of this file, and `text` stands there.
template <class Function>
void expect_source_line(Function function, const std::string& path, const std::string& text)
{
    try
    {
        function();
        ADD_FAILURE() << "threw nothing";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(std::string(error.get_file()), path);
        const std::string line = source_line(path, error.get_line());
        EXPECT_NE(line.find(text), std::string::npos) << path << ':' << error.get_line() << ": " << line;
    }
}

} // namespace vela_test

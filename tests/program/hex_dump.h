/// Bytes as the pages show them.
#pragma once

#include "document.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iomanip>

namespace vela_test {

inline std::string dump_line(const Bytes& bytes, std::size_t position, std::size_t count)
{
    std::ostringstream numbers;
    std::string shown;
    numbers << std::hex << std::setfill('0') << std::setw(8) << position << ' ';
    for (std::size_t i = position; i < position + count; ++i)
    {
        numbers << ' ' << std::setw(2) << static_cast<unsigned>(bytes[i]);
        shown += bytes[i] >= 0x20 && bytes[i] < 0x7f ? static_cast<char>(bytes[i]) : '.';
    }
    std::string line = numbers.str();
    line.resize(10 + 3 * 16 - 1, ' ');
    return line + "  |" + shown + "|\n";
}

/// 16 bytes a line, a `*` for more lines equal to the one before, and the count of bytes at the end.
inline std::string dump_of(const Bytes& bytes)
{
    constexpr std::size_t width = 16;
    std::string dump;
    bool is_left_out = false;
    for (std::size_t i = 0; i < bytes.size(); i += width)
    {
        const std::size_t count = std::min(width, bytes.size() - i);
        const auto line = bytes.begin() + static_cast<std::ptrdiff_t>(i);
        const bool is_same =
            i != 0 && i + width < bytes.size() && std::equal(line, line + width, line - std::ptrdiff_t{width});
        if (!is_same)
            dump += dump_line(bytes, i, count);
        else if (!is_left_out)
            dump += "*\n";
        is_left_out = is_same;
    }
    std::ostringstream end;
    end << std::hex << std::setfill('0') << std::setw(8) << bytes.size() << '\n';
    return dump + end.str();
}

/// The bytes of a dump without left-out lines.
inline Bytes bytes_of_dump(const std::string& dump)
{
    Bytes bytes;
    for (const std::string& line : lines_of(dump))
    {
        std::istringstream in(line.substr(0, line.find('|')));
        std::size_t position = 0;
        in >> std::hex >> position;
        for (unsigned byte = 0; in >> byte;)
            bytes.push_back(static_cast<unsigned char>(byte));
    }
    EXPECT_EQ(dump_of(bytes), dump);
    return bytes;
}

} // namespace vela_test

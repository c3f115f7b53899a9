/// The tables of positions in docs/format.md.
#pragma once

#include "document.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace vela_test {

/// One row "| position | bytes | field | ...".
struct Row
{
    std::uint64_t position;
    std::uint64_t width;
    std::string field;
    std::string kind;
    std::string value;
};

inline std::string trimmed(const std::string& text)
{
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

/// The text as it was between each two `separator`s.
inline std::vector<std::string> pieces_of(const std::string& text, char separator)
{
    std::vector<std::string> pieces;
    std::istringstream in(text);
    for (std::string piece; std::getline(in, piece, separator);)
        pieces.push_back(trimmed(piece));
    return pieces;
}

inline bool is_number(const std::string& text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

inline std::vector<std::string> lines_behind(const std::string& heading)
{
    std::vector<std::string> lines = lines_of(text_of("docs/format.md"));
    const auto found = std::find(lines.begin(), lines.end(), heading);
    if (found == lines.end())
        throw std::runtime_error("docs/format.md has no " + heading);
    lines.erase(lines.begin(), found);
    return lines;
}

/// The rows of the first table behind `heading` whose rows begin with two numbers.
inline std::vector<Row> table_behind(const std::string& heading)
{
    std::vector<Row> rows;
    for (const std::string& line : lines_behind(heading))
    {
        std::vector<std::string> cells = pieces_of(line, '|');
        cells.resize(6); // nothing stands in front of the first bar
        if (is_number(cells[1]) && is_number(cells[2]))
            rows.push_back({std::stoull(cells[1]), std::stoull(cells[2]), cells[3], cells[4], cells[5]});
        else if (!rows.empty())
            break;
    }
    return rows;
}

/// The first block of this kind behind `heading`, and those that follow it.
inline std::vector<std::string> blocks_behind(const std::string& heading, const std::string& kind)
{
    std::string text;
    for (const std::string& line : lines_behind(heading))
        text += line + "\n";
    std::vector<std::string> found;
    for (const Block& block : blocks_of(text))
    {
        if (block.kind == kind)
            found.push_back(block.text);
    }
    return found;
}

/// The rows follow each other without a gap and end at `size`.
inline void expect_complete(const std::vector<Row>& rows, std::uint64_t size)
{
    std::uint64_t position = 0;
    for (const Row& row : rows)
    {
        EXPECT_EQ(row.position, position) << row.field;
        position = row.position + row.width;
    }
    EXPECT_EQ(position, size);
}

} // namespace vela_test

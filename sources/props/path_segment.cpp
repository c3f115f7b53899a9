#include "sources/props/path_segment.h"

#include <VelaBase/VelaError.h>
#include <VelaProps/VPropstruct.h>

#include <charconv>
#include <limits>
#include <string>

namespace vela_prop {

namespace {

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

bool is_first_of_name(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

/// What `atoi` skips.
bool is_blank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Formats take texts that end in NUL.
std::string text_of(std::string_view view)
{
    return std::string(view);
}

/// As `atoi` reads: blanks, a sign, digits, whatever follows. False for a number below 0 or that `int` cannot hold.
bool read_index(std::string_view token, std::size_t& index)
{
    while (!token.empty() && is_blank(token.front()))
        token.remove_prefix(1);
    if (token.size() > 1 && token[0] == '+' && is_digit(token[1]))
        token.remove_prefix(1);
    int number = 0;
    const auto result = std::from_chars(token.data(), token.data() + token.size(), number);
    if (result.ec == std::errc::result_out_of_range || number < 0)
        return false;
    index = static_cast<std::size_t>(number);
    return true;
}

/// "{i,j}" or "(i,j)".
std::vector<std::size_t> read_position(std::string_view segment, char closing)
{
    if (segment.back() != closing)
        throw VelaError("_s_getpos", __FILE__, __LINE__)("Brackets not matched in '%s'!", text_of(segment).c_str())(-1);
    std::vector<std::size_t> position;
    std::size_t begin = 1;
    while (true)
    {
        std::size_t end = begin;
        while (segment[end] != ',' && segment[end] != closing)
            ++end;
        // The token of messages goes on behind its own end, by what lies before it.
        const std::string_view token = segment.substr(begin, end - 1);
        std::size_t index = 0;
        if (!read_index(token, index))
            throw VelaError("_s_getpos", __FILE__, __LINE__)("Invalid index '%s' specified in segment '%s'!",
                                                             text_of(token).c_str(), text_of(segment).c_str())(-1);
        position.push_back(index);
        if (segment[end] == closing)
            break;
        begin = end + 1;
    }
    if (position.size() == 1)
        position.insert(position.begin(), 0);
    return position;
}

}

bool is_valid_name(std::string_view name)
{
    if (name.empty() || !is_first_of_name(name.front()))
        return false;
    for (const char c : name)
        if (!is_first_of_name(c) && !is_digit(c) && c != '-')
            return false;
    return true;
}

Segment split_path(std::string_view path)
{
    if (path.empty())
        throw VelaError("_s_split", __FILE__, __LINE__)("Error parsing prop path: empty path!")(-1);
    const char first = path.front();
    const bool has_brackets = first == '(' || first == '{';
    const std::size_t delimiter = path.find_first_of(".{(", has_brackets ? 1 : 0);
    Segment segment{SegmentKind::member, path.substr(0, delimiter), {}, {}};
    if (segment.head.empty())
        throw VelaError("_s_split", __FILE__, __LINE__)("Error parsing prop path: '%s' starts with an empty segment!",
                                                        text_of(path).c_str())(-1);
    if (delimiter != path.npos)
        segment.rest = path.substr(path[delimiter] == '.' ? delimiter + 1 : delimiter);
    if (has_brackets)
    {
        segment.kind = first == '{' ? SegmentKind::cell : SegmentKind::struct_element;
        segment.position = read_position(segment.head, first == '{' ? '}' : ')');
    }
    else if (!is_valid_name(segment.head))
        throw VelaError("_s_split", __FILE__, __LINE__)("Error parsing prop path: '%s' is not a valid name!",
                                                        text_of(segment.head).c_str())(-1);
    return segment;
}

} // namespace vela_prop

bool vela_prop_is_valid_name(const std::string& name)
{
    return vela_prop::is_valid_name(name);
}

/// Walks from an empty value can make everything that a path names, but for arrays that no memory holds.
bool vela_prop_is_valid_path(const std::string& path)
{
    constexpr std::size_t most_bytes = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());
    const auto can_be_held = [](const vela_prop::Segment& segment)
    {
        std::vector<std::size_t> sizes = segment.position;
        for (std::size_t& size : sizes)
            ++size;
        const bool is_struct = segment.kind == vela_prop::SegmentKind::struct_element;
        return VProparrayBase::size(sizes) <= most_bytes / (is_struct ? sizeof(VPropstruct) : sizeof(VProp));
    };
    try
    {
        std::string_view rest = path;
        bool needs_member = false;
        while (!rest.empty() || needs_member)
        {
            const vela_prop::Segment segment = vela_prop::split_path(rest);
            const bool is_member = segment.kind == vela_prop::SegmentKind::member;
            if ((needs_member && !is_member) || (!is_member && !can_be_held(segment)))
                return false;
            needs_member = segment.kind == vela_prop::SegmentKind::struct_element;
            rest = segment.rest;
        }
    }
    catch (const VelaError&)
    {
        return false;
    }
    return true;
}

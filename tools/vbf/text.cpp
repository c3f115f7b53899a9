#include "text.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD

/// The characters that a first byte opens, and the range of the byte behind it. All bytes after that
/// are 0x80 to 0xBF. Overlong forms, surrogates and what lies above U+10FFFF are shut out here.
struct Lead
{
    unsigned char first, last;
    std::size_t length_bytes;
    unsigned char second_first, second_last;
};

constexpr std::array<Lead, 9> leads = {{
    {0x00, 0x7F, 1, 0x00, 0x00},
    {0xC2, 0xDF, 2, 0x80, 0xBF},
    {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF},
    {0xED, 0xED, 3, 0x80, 0x9F},
    {0xEE, 0xEF, 3, 0x80, 0xBF},
    {0xF0, 0xF0, 4, 0x90, 0xBF},
    {0xF1, 0xF3, 4, 0x80, 0xBF},
    {0xF4, 0xF4, 4, 0x80, 0x8F},
}};

/// The bytes of one character at the start of a text.
struct Character
{
    std::string_view bytes; ///< at least one
    bool valid;
};

const Lead* find_lead(unsigned char byte)
{
    for (const Lead& lead : leads)
    {
        if (byte >= lead.first && byte <= lead.last)
            return &lead;
    }
    return nullptr;
}

/// `text` must not be empty.
Character first_character(std::string_view text)
{
    const Lead* lead = find_lead(static_cast<unsigned char>(text[0]));
    if (lead == nullptr)
        return {text.substr(0, 1), false};
    for (std::size_t i = 1; i < lead->length_bytes; ++i)
    {
        const unsigned char lowest = i == 1 ? lead->second_first : 0x80;
        const unsigned char highest = i == 1 ? lead->second_last : 0xBF;
        const unsigned char byte = i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
        if (byte < lowest || byte > highest)
            return {text.substr(0, i), false};
    }
    return {text.substr(0, lead->length_bytes), true};
}

std::uint32_t code_point(std::string_view character)
{
    const auto byte = [&](std::size_t i)
    { return static_cast<std::uint32_t>(static_cast<unsigned char>(character[i])); };
    const std::size_t length_bytes = character.size();
    std::uint32_t point = length_bytes == 1 ? byte(0) : byte(0) & (0x7Fu >> length_bytes);
    for (std::size_t i = 1; i < length_bytes; ++i)
        point = (point << 6) | (byte(i) & 0x3F);
    return point;
}

bool steers_a_terminal(std::uint32_t point)
{
    const bool control = point < 0x20 || (point >= 0x7F && point <= 0x9F);
    const bool line_or_direction = point == 0x061C || (point >= 0x200E && point <= 0x200F) ||
                                   (point >= 0x2028 && point <= 0x202E) || (point >= 0x2066 && point <= 0x2069);
    return control || line_or_direction;
}

std::string escaped(std::uint32_t point)
{
    if (point == '\n')
        return "\\n";
    if (point == '\r')
        return "\\r";
    if (point == '\t')
        return "\\t";
    std::array<char, 16> buffer = {};
    std::snprintf(buffer.data(), buffer.size(), point < 0x100 ? "\\x%02x" : "\\u%04x", static_cast<unsigned>(point));
    return buffer.data();
}

} // namespace

std::string number_text(double number)
{
    std::array<char, 32> buffer = {};
    return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr};
}

std::string valid_utf8(std::string_view text)
{
    std::string result;
    while (!text.empty())
    {
        const Character character = first_character(text);
        result += character.valid ? character.bytes : replacement;
        text.remove_prefix(character.bytes.size());
    }
    return result;
}

std::string terminal_safe(std::string_view text)
{
    std::string result;
    while (!text.empty())
    {
        const Character character = first_character(text);
        if (!character.valid)
            result += replacement;
        else if (const std::uint32_t point = code_point(character.bytes); steers_a_terminal(point))
            result += escaped(point);
        else
            result += character.bytes;
        text.remove_prefix(character.bytes.size());
    }
    return result;
}

std::optional<std::uint64_t> number_in(const std::string& text)
{
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return number;
}

/// Classes of characters as the parsers see them: ASCII alone. No locale has a say, and bytes above 127 are in
/// no class.
#pragma once

#include <VelaBase/export.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN
namespace detail {

enum CharacterClass : std::uint8_t
{
    space_class = 1,
    digit_class = 2,
    letter_class = 4,
    name_class = 8,   ///< what a name goes on with: letters, digits, "_", ":"
    number_class = 16 ///< what a number goes on with: digits, ".", "e", "E", "+", "-"
};

constexpr std::array<std::uint8_t, 256> make_character_classes()
{
    std::array<std::uint8_t, 256> classes{};
    const auto add = [&classes](const char* characters, int character_class)
    {
        for (; *characters != 0; ++characters)
        {
            std::uint8_t& entry = classes[static_cast<unsigned char>(*characters)];
            entry = static_cast<std::uint8_t>(entry | character_class);
        }
    };
    add(" \t\n\v\f\r", space_class);
    add("0123456789", digit_class | name_class | number_class);
    add("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz", letter_class | name_class);
    add("_:", name_class);
    add(".eE+-", number_class);
    return classes;
}

inline constexpr std::array<std::uint8_t, 256> character_classes = make_character_classes();

constexpr bool is_of_class(char c, CharacterClass character_class)
{
    return (character_classes[static_cast<unsigned char>(c)] & character_class) != 0;
}

constexpr bool is_space(char c)
{
    return is_of_class(c, space_class);
}

constexpr bool is_digit(char c)
{
    return is_of_class(c, digit_class);
}

constexpr bool is_letter(char c)
{
    return is_of_class(c, letter_class);
}

/// The first character from `p` on that is not of the class, or `end`.
constexpr const char* skip_class(const char* p, const char* end, CharacterClass character_class)
{
    while (p != end && is_of_class(*p, character_class))
        ++p;
    return p;
}

}
VELA_ABI_NAMESPACE_END
}

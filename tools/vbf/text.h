/// Texts of files whose bytes nobody has checked, and of numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// `text` with U+FFFD for whatever is not UTF-8: one for each start of a character that breaks off,
/// one for each other byte.
std::string valid_utf8(std::string_view text);

/// `text` as valid UTF-8 in which nothing can steer a terminal: control characters and the marks that
/// change the direction or the line become escapes such as \n, \x1b, \u202e.
std::string terminal_safe(std::string_view text);

/// The number as short as it can be without loss.
std::string number_text(double number);

/// Nothing where `text` is no number without sign.
std::optional<std::uint64_t> number_in(const std::string& text);

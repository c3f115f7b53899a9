/// Encoders and filters that share no code with the library, and random text to feed them.
#pragma once

#include <VelaProps/VPropstring.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

namespace vela_test {

static_assert(sizeof(wchar_t) == 4, "the expected wide texts of these tests are code points");

inline const VPropstring::encoding every_encoding[] = {VPropstring::enc_utf8, VPropstring::enc_system,
                                                       VPropstring::enc_windows1252};
inline const VPropstring::encoding utf8_encodings[] = {VPropstring::enc_utf8, VPropstring::enc_system};

/// The stored text, without any operator of VPropstring.
inline const std::wstring& wide(const VPropstring& text)
{
    return text;
}

inline bool is_code_point(std::uint32_t unit)
{
    return unit < 0xD800 || (unit > 0xDFFF && unit <= 0x10FFFF);
}

/// The number of a wide unit, whether wchar_t has a sign or not.
inline std::uint32_t number_of(wchar_t unit)
{
    return static_cast<std::uint32_t>(unit);
}

/// UTF-8 of all units that are code points.
inline std::string utf8_of(const std::wstring& text)
{
    std::string bytes;
    const auto put = [&bytes](std::uint32_t byte) { bytes += static_cast<char>(static_cast<unsigned char>(byte)); };
    for (const wchar_t unit : text)
    {
        const std::uint32_t point = number_of(unit);
        if (!is_code_point(point))
            continue;
        if (point < 0x80)
            put(point);
        else if (point < 0x800)
        {
            put(0xC0 | point >> 6);
            put(0x80 | (point & 0x3F));
        }
        else if (point < 0x10000)
        {
            put(0xE0 | point >> 12);
            put(0x80 | (point >> 6 & 0x3F));
            put(0x80 | (point & 0x3F));
        }
        else
        {
            put(0xF0 | point >> 18);
            put(0x80 | (point >> 12 & 0x3F));
            put(0x80 | (point >> 6 & 0x3F));
            put(0x80 | (point & 0x3F));
        }
    }
    return bytes;
}

/// Length of the UTF-8 sequence that starts at `pos`, 0 if none is valid there.
inline std::size_t utf8_sequence_at(const std::string& bytes, std::size_t pos, std::uint32_t& point)
{
    const auto at = [&bytes](std::size_t i) -> std::uint32_t
    { return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u; };
    const std::uint32_t lead = at(pos);
    if (lead < 0x80)
    {
        point = lead;
        return 1;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    const std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    if (lead < 0xC0 || lead > 0xF7)
        return 0;
    point = lead & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i)
    {
        if ((at(pos + i) & 0xC0) != 0x80)
            return 0;
        point = point << 6 | (at(pos + i) & 0x3F);
    }
    return point >= least[length] && is_code_point(point) ? length : 0;
}

/// What is left of `bytes` when each byte that neither starts nor continues a valid sequence is dropped.
inline std::wstring filtered_utf8(const std::string& bytes)
{
    std::wstring text;
    for (std::size_t pos = 0; pos < bytes.size();)
    {
        std::uint32_t point = 0;
        const std::size_t length = utf8_sequence_at(bytes, pos, point);
        if (length == 0)
        {
            ++pos;
            continue;
        }
        text += static_cast<wchar_t>(point);
        pos += length;
    }
    return text;
}

/// A source of numbers that is the same on every machine and at every run.
class Dice
{
public:
    explicit Dice(std::uint32_t seed) : engine(seed) {}

    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(engine() % limit); }

    /// A code point, small and large ones alike often.
    std::uint32_t code_point()
    {
        const std::uint32_t limits[] = {0x80, 0x100, 0x800, 0x10000, 0x110000};
        std::uint32_t point = 0xD800;
        while (!is_code_point(point))
            point = below(limits[below(5)]);
        return point;
    }

    std::wstring code_points(std::size_t count)
    {
        std::wstring text;
        while (text.size() < count)
            text += static_cast<wchar_t>(code_point());
        return text;
    }

    /// Bytes that make valid and broken UTF-8 sequences of every kind likely.
    std::string broken_utf8(std::size_t count)
    {
        const unsigned char telling[] = {0x00, 'a',  0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0,
                                         0xC1, 0xC2, 0xC3, 0xDF, 0xE0, 0xE2, 0xED, 0xEE, 0xEF, 0xF0,
                                         0xF1, 0xF4, 0xF5, 0xF8, 0xFB, 0xFC, 0xFD, 0xFE, 0xFF};
        std::string bytes;
        while (bytes.size() < count)
            switch (below(4))
            {
            case 0:
                bytes += utf8_of(code_points(1));
                break;
            case 1:
                bytes += static_cast<char>(below(256));
                break;
            default:
                bytes += static_cast<char>(telling[below(sizeof telling)]);
            }
        return bytes;
    }

private:
    std::mt19937 engine;
};

} // namespace vela_test

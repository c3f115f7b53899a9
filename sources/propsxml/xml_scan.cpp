// Goes through the text as the parser does, and in its words: an attribute may stand without quotes, a comment ends
// with the first "-->", a declaration or any other "<!" and "<?" with the first ">" outside of what it takes for an
// attribute. In text and in quotes a character of several bytes is skipped whole, whatever follows its first byte,
// and a reference to a character by its number reaches to the next ";", over markup and quotes.

#include "sources/propsxml/xml_scan.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace ticpp {

namespace {

bool is_space(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool is_letter(char c)
{
    const auto byte = static_cast<std::uint8_t>(c);
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte >= 127;
}

bool continues_name(char c)
{
    return is_letter(c) || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.' || c == ':';
}

bool is_digit(char c, bool is_hexadecimal)
{
    return (c >= '0' && c <= '9') || (is_hexadecimal && ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F')));
}

std::size_t character_length(char c)
{
    const auto byte = static_cast<std::uint8_t>(c);
    if (byte < 0xc2 || byte > 0xf4)
        return 1;
    if (byte < 0xe0)
        return 2;
    return byte < 0xf0 ? 3 : 4;
}

bool begins_with(const char* text, const char* word)
{
    return std::strncmp(text, word, std::strlen(word)) == 0;
}

/// The same for a word in lower case, and letters of either case.
bool begins_with_letters(const char* text, const char* word)
{
    for (; *word != '\0'; ++text, ++word)
    {
        const char c = *text >= 'A' && *text <= 'Z' ? static_cast<char>(*text + ('a' - 'A')) : *text;
        if (c != *word)
            return false;
    }
    return true;
}

/// Whether the parser takes these bytes over as they stand.
bool is_plain(const char* text, const char* end)
{
    constexpr std::uint64_t highest_bits = 0x8080808080808080;
    std::uint64_t bits = 0;
    const auto length = static_cast<std::size_t>(end - text);
    std::size_t i = 0;
    for (std::uint64_t eight = 0; i + sizeof eight <= length; i += sizeof eight)
    {
        std::memcpy(&eight, text + i, sizeof eight);
        bits |= eight & highest_bits;
    }
    for (; i < length; ++i)
        bits |= static_cast<std::uint8_t>(text[i]) & highest_bits;
    return bits == 0 && std::memchr(text, '&', length) == nullptr;
}

/// A cursor on the text. Its steps give false where the parser gives up.
class Scanner
{
public:
    Scanner(const char* text, const ScanLimits& scan_limits) : begin(text), p(text), limits(scan_limits) {}

    Scan scan()
    {
        while (skip_text() && skip_markup())
        {
        }
        return std::move(result);
    }

private:
    void skip_space()
    {
        while (is_space(*p) || begins_with(p, "\xef\xbb\xbf") || begins_with(p, "\xef\xbf\xbe") ||
               begins_with(p, "\xef\xbf\xbf"))
            p += is_space(*p) ? 1 : 3;
    }

    /// To behind `word`.
    bool skip_past(const char* word)
    {
        const char* found = std::strchr(p, *word); // under AddressSanitizer each strstr looks for the end of the text
        while (found != nullptr && !begins_with(found, word))
            found = std::strchr(found + 1, *word);
        if (found == nullptr)
            return false;
        p = found + std::strlen(word);
        return true;
    }

    /// The end does not begin in the start: "<!-->" goes on.
    bool skip_section(const char* start, const char* end)
    {
        p += std::strlen(start);
        return skip_past(end);
    }

    /// To the next `stop`, as text with characters of several bytes, and with references that may swallow it.
    bool skip_characters(char stop)
    {
        while (*p != '\0' && *p != stop)
        {
            if (p[0] != '&' || p[1] != '#' || p[2] == '\0')
                p += character_length(*p);
            else if (!skip_numeric_reference())
                return false;
        }
        return *p != '\0';
    }

    /// The parser goes to the next ";", whatever lies between, and from there back over digits to the "x" or "#".
    bool skip_numeric_reference()
    {
        const bool is_hexadecimal = p[2] == 'x';
        const char* const first_digit = p + (is_hexadecimal ? 3 : 2);
        const char* const end = *first_digit == '\0' ? nullptr : std::strchr(first_digit, ';');
        if (end == nullptr)
            return false;
        const char* digit = end - 1;
        while (is_digit(*digit, is_hexadecimal))
            --digit;
        if (*digit != (is_hexadecimal ? 'x' : '#'))
            return false;
        p = end + 1;
        return true;
    }

    /// Between elements there is text; outside of them the parser gives up where there is any.
    bool skip_text()
    {
        const char* const start = p;
        skip_space();
        const bool is_text = p != start || *p != '<';
        result.nodes += depth > 0 && is_text ? 1 : 0;
        if (*p == '<')
            return true;
        return depth > 0 && (skip_long_text(start) || skip_characters('<'));
    }

    /// False, without a step, where the text from `start` to the next "<" is none.
    bool skip_long_text(const char* start)
    {
        const char* const end = std::strchr(p, '<');
        if (end == nullptr || static_cast<std::size_t>(end - start) < limits.text || !is_plain(start, end))
            return false;
        result.long_texts.push_back({static_cast<std::size_t>(start - begin), static_cast<std::size_t>(end - begin)});
        p = end;
        return true;
    }

    bool skip_markup()
    {
        if (depth > 0 && begins_with(p, "</"))
            return skip_end_tag();
        ++result.nodes;
        if (begins_with(p, "<!--"))
            return skip_section("<!--", "-->");
        if (begins_with(p, "<![CDATA["))
            return skip_section("<![CDATA[", "]]>");
        if (is_letter(p[1]) || p[1] == '_')
            return skip_start_tag();
        return begins_with_letters(p, "<?xml") ? skip_declaration() : skip_past(">");
    }

    bool skip_declaration()
    {
        p += std::strlen("<?xml");
        for (skip_space(); *p != '\0'; skip_space())
        {
            if (*p == '>')
            {
                ++p;
                return true;
            }
            if (begins_with_letters(p, "version") || begins_with_letters(p, "encoding") ||
                begins_with_letters(p, "standalone"))
            {
                if (!skip_attribute())
                    return false;
                continue;
            }
            while (*p != '\0' && *p != '>' && !is_space(*p))
                ++p;
        }
        return false;
    }

    bool skip_end_tag()
    {
        --depth;
        return skip_past(">");
    }

    bool skip_start_tag()
    {
        ++p;
        skip_name();
        if (++depth > limits.levels)
        {
            result.is_too_deep = true;
            return false;
        }
        std::size_t attributes = 0;
        for (skip_space(); *p != '\0'; skip_space())
        {
            if (*p == '>')
            {
                ++p;
                return true;
            }
            if (*p == '/')
            {
                --depth;
                return *++p == '>' && *++p != '\0';
            }
            ++result.nodes;
            result.has_too_many_attributes = ++attributes > limits.attributes;
            if (result.has_too_many_attributes || !skip_attribute())
                return false;
        }
        return false;
    }

    void skip_name()
    {
        while (continues_name(*p))
            ++p;
    }

    bool skip_attribute()
    {
        skip_name();
        skip_space();
        if (*p != '=')
            return false;
        ++p;
        skip_space();
        if (*p == '"' || *p == '\'')
        {
            const char quote = *p++;
            return skip_characters(quote) && *++p != '\0';
        }
        while (*p != '\0' && !is_space(*p) && *p != '/' && *p != '>' && *p != '"' && *p != '\'')
            ++p;
        return *p != '\0' && *p != '"' && *p != '\'';
    }

    const char* begin;
    const char* p;
    ScanLimits limits;
    std::size_t depth = 0;
    Scan result;
};

}

Scan scan(const char* text, const ScanLimits& limits)
{
    return Scanner(text, limits).scan();
}

}

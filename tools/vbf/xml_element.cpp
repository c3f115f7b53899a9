// A cursor that runs once through the text. Elements that are open are on a stack, so that depth costs no recursion but
// in the destructor; `max_depth` bounds that.
#include "xml_element.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace {

constexpr std::size_t max_depth = 100;
constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view ends_of_names = " \t\r\n/>=<\"'&";

[[noreturn]] void refuse()
{
    throw std::runtime_error("The document is no XML.");
}

std::string utf8(std::uint32_t point)
{
    const auto tail = [](std::uint32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
    if (point == 0 || (point >= 0xD800 && point < 0xE000) || point > 0x10FFFF)
        refuse();
    if (point < 0x80)
        return {static_cast<char>(point)};
    if (point < 0x800)
        return {static_cast<char>(0xC0 | (point >> 6)), tail(point)};
    if (point < 0x10000)
        return {static_cast<char>(0xE0 | (point >> 12)), tail(point >> 6), tail(point)};
    return {static_cast<char>(0xF0 | (point >> 18)), tail(point >> 12), tail(point >> 6), tail(point)};
}

/// What stands for `&name;`.
std::string entity(std::string_view name)
{
    if (name == "lt")
        return "<";
    if (name == "gt")
        return ">";
    if (name == "amp")
        return "&";
    if (name == "quot")
        return "\"";
    if (name == "apos")
        return "'";
    if (name.size() < 2 || name[0] != '#')
        refuse();
    const bool hexadecimal = name[1] == 'x';
    const std::string_view digits = name.substr(hexadecimal ? 2 : 1);
    std::uint32_t point = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), point, hexadecimal ? 16 : 10);
    if (result.ec != std::errc() || result.ptr != digits.data() + digits.size())
        refuse();
    return utf8(point);
}

std::string without_entities(std::string_view raw)
{
    std::string result;
    while (!raw.empty())
    {
        const std::size_t sign = raw.find('&');
        result += raw.substr(0, sign);
        if (sign == std::string_view::npos)
            break;
        const std::size_t end = raw.find(';', sign);
        if (end == std::string_view::npos)
            refuse();
        result += entity(raw.substr(sign + 1, end - sign - 1));
        raw.remove_prefix(end + 1);
    }
    return result;
}

class Parser
{
public:
    explicit Parser(std::string_view in_text) : text(in_text)
    {
        constexpr std::string_view mark = "\xEF\xBB\xBF"; // of UTF-8
        if (text.substr(0, mark.size()) == mark)
            pos = mark.size();
    }

    XmlElement parse()
    {
        while (!root)
        {
            read_text();
            read_markup();
        }
        return std::move(*root);
    }

private:
    std::string_view rest() const { return text.substr(pos); }
    bool is_at(std::string_view mark) const { return rest().substr(0, mark.size()) == mark; }
    void skip_blanks() { pos = std::min(text.find_first_not_of(blanks, pos), text.size()); }

    /// Goes behind the next `mark` and gives what lies before it.
    std::string_view read_to(std::string_view mark)
    {
        const std::size_t found = text.find(mark, pos);
        if (found == std::string_view::npos)
            refuse();
        const std::string_view result = text.substr(pos, found - pos);
        pos = found + mark.size();
        return result;
    }

    void expect(std::string_view mark)
    {
        if (!is_at(mark))
            refuse();
        pos += mark.size();
    }

    std::string_view read_name()
    {
        const std::size_t end = std::min(text.find_first_of(ends_of_names, pos), text.size());
        if (end == pos)
            refuse();
        const std::string_view result = text.substr(pos, end - pos);
        pos = end;
        return result;
    }

    void read_text()
    {
        const std::size_t end = text.find('<', pos);
        if (end == std::string_view::npos)
            refuse();
        if (!open.empty())
            open.back().text += without_entities(text.substr(pos, end - pos));
        pos = end;
    }

    void read_markup()
    {
        if (is_at("<!--"))
            read_to("-->");
        else if (is_at("<?"))
            read_to("?>");
        else if (is_at("<![CDATA[") && !open.empty())
        {
            expect("<![CDATA[");
            open.back().text += read_to("]]>");
        }
        else if (is_at("</"))
            read_end_tag();
        else
            read_start_tag();
    }

    void read_start_tag()
    {
        expect("<");
        XmlElement element;
        const std::string_view name = read_name();
        element.name = name.substr(name.find(':') + 1);
        if (name[0] == '!' || open.size() == max_depth)
            refuse();
        while (read_attribute(element))
            ;
        open.push_back(std::move(element));
        names.emplace_back(name);
        if (is_at("/"))
        {
            expect("/>");
            finish();
        }
        else
            expect(">");
    }

    bool read_attribute(XmlElement& element)
    {
        const std::size_t begin = pos;
        skip_blanks();
        if (is_at("/") || is_at(">"))
            return false;
        const std::string name(read_name());
        skip_blanks();
        expect("=");
        skip_blanks();
        if (!is_at("\"") && !is_at("'"))
            refuse();
        const std::string_view quote = text.substr(pos, 1);
        expect(quote);
        std::string value = without_entities(read_to(quote));
        element.attributes.push_back({name, std::move(value), begin, pos});
        return true;
    }

    void read_end_tag()
    {
        expect("</");
        const std::string_view name = read_name();
        skip_blanks();
        expect(">");
        if (names.empty() || names.back() != name)
            refuse();
        finish();
    }

    /// Hands the innermost element to the one around it.
    void finish()
    {
        XmlElement element = std::move(open.back());
        open.pop_back();
        names.pop_back();
        if (open.empty())
            root = std::move(element);
        else
            open.back().children.push_back(std::move(element));
    }

    const std::string_view text;
    std::size_t pos = 0;
    std::vector<XmlElement> open;        ///< the innermost one is last
    std::vector<std::string_view> names; ///< of these, with prefix
    std::optional<XmlElement> root;
};

} // namespace

const std::string* XmlElement::find_attribute(const std::string& wanted) const
{
    for (const XmlAttribute& attribute : attributes)
    {
        if (attribute.name == wanted)
            return &attribute.text;
    }
    return nullptr;
}

const XmlElement* XmlElement::find_child(const std::string& wanted) const
{
    for (const XmlElement& child : children)
    {
        if (child.name == wanted)
            return &child;
    }
    return nullptr;
}

XmlElement parse_xml(const std::string& document)
{
    return Parser(document).parse();
}

#include "sources/propsxml/ticpp.h"

#include "sources/propsxml/xml_scan.h"

#include <tinyxml.h>

#include <utility>
#include <vector>

namespace ticpp {

namespace {

constexpr const char* missing_text = "Text does not exists in the current element";

/// The text that comes first in an element, or null.
const TiXmlText* first_text(const TiXmlElement& element)
{
    const TiXmlNode* const child = element.FirstChild();
    return child ? child->ToText() : nullptr;
}

/// What stands in the place of a long text while the document is parsed: a byte that no text can have otherwise if the
/// document is without it, since references to characters give UTF-8.
constexpr char long_text_mark = '\xff';

std::string cut_long_texts(const std::string& text, const std::vector<Place>& places)
{
    std::string cut;
    std::size_t rest = 0;
    for (const Place& place : places)
    {
        cut.append(text, rest, place.begin - rest);
        cut += long_text_mark;
        rest = place.end;
    }
    return cut.append(text, rest);
}

/// The node behind this one in the text of its document, or null.
TiXmlNode* next_node(TiXmlNode* node)
{
    if (node->FirstChild())
        return node->FirstChild();
    while (node && node->NextSibling() == nullptr)
        node = node->Parent();
    return node ? node->NextSibling() : nullptr;
}

void put_back_long_texts(TiXmlDocument& document, const std::string& text, const std::vector<Place>& places)
{
    const std::string mark(1, long_text_mark);
    auto place = places.begin();
    for (TiXmlNode* node = &document; node && place != places.end(); node = next_node(node))
        if (node->ToText() && node->ValueStr() == mark)
        {
            node->SetValue(text.substr(place->begin, place->end - place->begin));
            ++place;
        }
}

/// False if it is not well-formed. Without the places of errors this is twice as fast.
bool parse(TiXmlDocument& document, const std::string& text)
{
    document.SetTabSize(0);
    document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
    return !document.Error();
}

/// What is wrong with `text`, and where.
std::string describe_error(const std::string& text)
{
    TiXmlDocument document;
    document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
    std::string description = document.ErrorDesc();
    if (document.ErrorRow() > 0)
        description +=
            " Line " + std::to_string(document.ErrorRow()) + ", column " + std::to_string(document.ErrorCol());
    return description;
}

/// The parser skips a character of several bytes whole, also where the text ends in it.
std::string with_room_behind(const std::string& xml)
{
    constexpr std::size_t longest_character = 4;
    std::string text(xml.c_str()); // to the parser the text ends with the first NUL
    text.append(longest_character, '\0');
    return text;
}

Scan scan_within_limits(const std::string& text)
{
    constexpr std::size_t shortest_long_text = 1024;
    Scan found = scan(text.c_str(), {deepest_level, most_attributes, shortest_long_text});
    if (found.is_too_deep)
        throw Exception("Elements are nested deeper than " + std::to_string(deepest_level) + " levels");
    if (found.has_too_many_attributes)
        throw Exception("An element has more than " + std::to_string(most_attributes) + " attributes");
    if (text.find(long_text_mark) != std::string::npos)
        found.long_texts.clear();
    return found;
}

}

std::size_t count_nodes(const std::string& xml)
{
    constexpr std::size_t no_text_is_long = static_cast<std::size_t>(-1);
    return scan(with_room_behind(xml).c_str(), {deepest_level, most_attributes, no_text_is_long}).nodes;
}

Element::Element() : Element("DefaultValueCausedByCreatingAnElementWithNoParameters") {}
Element::Element(const std::string& name) : element(std::make_unique<TiXmlElement>(name)) {}
Element::Element(Element&& other) noexcept = default;
Element& Element::operator=(Element&& other) noexcept = default;
Element::~Element() = default;

void Element::set_name(const std::string& name)
{
    element->SetValue(name);
}

void Element::set_attribute(const std::string& name, const std::string& value)
{
    element->SetAttribute(name, value);
}

void Element::set_text(const std::string& text)
{
    TiXmlNode* const first = element->FirstChild();
    if (first && first->ToText())
        first->SetValue(text);
    else
        element->LinkEndChild(new TiXmlText(text));
}

std::string Element::get_text() const
{
    return Node(element.get()).text();
}

void Element::link_end_child(Element&& child)
{
    element->LinkEndChild(child.element.release());
}

std::string Node::name() const
{
    return element->ValueStr();
}

const std::string* Node::attribute(const std::string& name) const
{
    return element->Attribute(name);
}

const std::string* Node::text_or_null() const
{
    const TiXmlText* const text = first_text(*element);
    return text ? &text->ValueStr() : nullptr;
}

const std::string& Node::text() const
{
    const std::string* const text = text_or_null();
    if (text == nullptr)
        throw Exception(missing_text);
    return *text;
}

Node Node::first_child() const
{
    return Node(element->FirstChildElement());
}

Node Node::next_sibling() const
{
    return Node(element->NextSiblingElement());
}

std::size_t Node::count_children() const
{
    std::size_t count = 0;
    for (Node child = first_child(); child; child = child.next_sibling())
        ++count;
    return count;
}

Node Node::parent() const
{
    const TiXmlNode* const parent = element->Parent();
    return Node(parent ? parent->ToElement() : nullptr);
}

Document::Document() : document(std::make_unique<TiXmlDocument>()) {}

Document::Document(const std::string& xml) : Document()
{
    const std::string text = with_room_behind(xml);
    const std::vector<Place> long_texts = scan_within_limits(text).long_texts;
    TiXmlBase::SetCondenseWhiteSpace(false);
    if (!parse(*document, long_texts.empty() ? text : cut_long_texts(text, long_texts)))
        throw Exception(describe_error(text));
    put_back_long_texts(*document, text, long_texts);
}

Document::~Document() = default;

Node Document::first_element() const
{
    const Node first(document->FirstChildElement());
    if (!first)
        throw Exception("Element not found");
    return first;
}

void Document::link_declaration(const std::string& version, const std::string& standalone)
{
    document->LinkEndChild(new TiXmlDeclaration(version, "", standalone));
}

void Document::link_end_child(Element&& child)
{
    document->LinkEndChild(child.element.release());
}

std::string Document::print() const
{
    TiXmlPrinter printer;
    document->Accept(&printer);
    return printer.Str();
}

}

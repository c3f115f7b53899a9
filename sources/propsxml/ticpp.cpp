#include "sources/propsxml/ticpp.h"

#include "sources/propsxml/xml_depth.h"

#include <tinyxml.h>

#include <utility>

namespace ticpp {

namespace {

constexpr const char* missing_text = "Text does not exists in the current element";

/// The text that comes first in an element, or null.
const TiXmlText* first_text(const TiXmlElement& element)
{
    const TiXmlNode* const child = element.FirstChild();
    return child ? child->ToText() : nullptr;
}

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
    if (!text.empty())
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
    // The parser skips a character of several bytes whole, also where the text ends in it.
    constexpr std::size_t longest_character = 4;
    std::string text(xml.c_str()); // and to it the text ends with the first NUL
    text.append(longest_character, '\0');
    if (is_nested_deeper(text.c_str(), deepest_level))
        throw Exception("Elements are nested deeper than " + std::to_string(deepest_level) + " levels");
    TiXmlBase::SetCondenseWhiteSpace(false);
    document->Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
    if (!document->Error())
        return;
    std::string message = document->ErrorDesc();
    if (document->ErrorRow() > 0)
        message += " Line " + std::to_string(document->ErrorRow()) + ", column " + std::to_string(document->ErrorCol());
    throw Exception(message);
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

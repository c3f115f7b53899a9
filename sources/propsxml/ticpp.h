/// What the property XML needs of the XML library: elements with attributes and text, reading and printing.
///
/// The only place that knows that library.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>

class TiXmlDocument;
class TiXmlElement;

namespace ticpp {

class Exception : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// An element that is being written. Elements are moved, not copied.
class Element
{
public:
    /// With the name that nobody gave it.
    Element();
    explicit Element(const std::string& name);
    Element(Element&& other) noexcept;
    Element& operator=(Element&& other) noexcept;
    ~Element();

    void set_name(const std::string& name);
    /// Puts it behind the others, or replaces the one of that name.
    void set_attribute(const std::string& name, const std::string& value);
    /// For an element without children. Also an empty text makes it one with a text: it is printed with an end tag.
    void set_text(const std::string& text);
    /// @throws Exception "Text does not exists in the current element"
    std::string get_text() const;
    /// Puts `child` behind the other children.
    void link_end_child(Element&& child);

private:
    friend class Document;
    std::unique_ptr<TiXmlElement> element;
};

/// An element that was read: a pointer into its document, or nothing.
class Node
{
public:
    Node() = default;
    explicit Node(const TiXmlElement* pointed_to) : element(pointed_to) {}

    explicit operator bool() const { return element != nullptr; }

    std::string name() const;
    /// Null without such an attribute. The text lives as long as the document.
    const std::string* attribute(const std::string& name) const;
    /// Null if no text comes first in the element. It lives as long as the document.
    const std::string* text_or_null() const;
    /// @throws Exception "Text does not exists in the current element"
    const std::string& text() const;

    Node first_child() const;
    Node next_sibling() const;
    std::size_t count_children() const;
    /// Nothing if this is no child of an element.
    Node parent() const;

private:
    const TiXmlElement* element = nullptr;
};

class Document
{
public:
    /// Without elements.
    Document();
    /// Reads UTF-8 text. White space is kept, which is a setting of the whole process. Where memory ends while the
    /// library parses, it leaves behind what it has parsed.
    /// @throws Exception that says what is wrong, and where
    explicit Document(const std::string& xml);
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    ~Document();

    /// @throws Exception "Element not found": there is none
    Node first_element() const;

    /// Puts a declaration behind what is there, with an empty encoding.
    void link_declaration(const std::string& version, const std::string& standalone);
    void link_end_child(Element&& child);

    /// Four blanks for each level, and a line for each element.
    std::string print() const;

private:
    std::unique_ptr<TiXmlDocument> document;
};

/// What a document would be made of: elements, attributes, texts and comments, each of which takes up to 256 bytes and
/// may stand for two bytes of its text. Counts up to where the parser would give up.
std::size_t count_nodes(const std::string& xml);

/// Elements that lie deeper than this are refused: reading and printing recurse.
constexpr std::size_t deepest_level = 512;
/// Elements with more are refused: the parser holds each against all others.
constexpr std::size_t most_attributes = 256;

}

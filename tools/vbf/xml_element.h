/// XML documents as trees of text.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct XmlAttribute
{
    std::string name; ///< with its prefix
    std::string text;
    std::size_t begin; ///< in the document, of the blanks before it
    std::size_t end;
};

/// An element, with all that it says as it stands in the document: "007" stays what it is, and children stay in order.
struct XmlElement
{
    std::string name; ///< without prefix
    std::vector<XmlAttribute> attributes;
    std::vector<XmlElement> children;
    std::string text; ///< of the element itself, what lies between its children in one

    /// Null where there is none.
    const std::string* find_attribute(const std::string& wanted) const;
    /// The first one; null where there is none.
    const XmlElement* find_child(const std::string& wanted) const;
};

/// The root of a document in UTF-8. Nothing is known of namespaces and of document types.
///
/// @throws std::runtime_error: it is no XML, has a document type, or is nested too deeply.
XmlElement parse_xml(const std::string& document);

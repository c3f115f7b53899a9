/// XML documents as trees of text.
#pragma once

#include <string>
#include <vector>

struct XmlAttribute
{
    std::string name; ///< with its prefix
    std::string text;
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

/// The root of a document in UTF-8. What follows it is not looked at. Prefixes are part of names, and need not be declared.
///
/// @throws std::runtime_error "The document is no XML.": also if it has a document type, or is nested deeper than 100
XmlElement parse_xml(const std::string& document);

/// The document with one attribute of its root left out, if it is there, and else as it stands.
///
/// @throws std::runtime_error "The document is no XML.": up to the first tag
std::string without_root_attribute(const std::string& document, const std::string& name);

#include "xml_element.h"

#include <QRegularExpression>
#include <QString>
#include <QXmlStreamReader>

#include <cstddef>
#include <stdexcept>
#include <utility>

namespace {

constexpr std::size_t max_depth = 100;

[[noreturn]] void refuse()
{
    throw std::runtime_error("The document is no XML.");
}

std::string utf8(QStringView text)
{
    return text.toUtf8().toStdString();
}

XmlElement element_at(const QXmlStreamReader& reader)
{
    XmlElement element;
    const QStringView name = reader.qualifiedName();
    element.name = utf8(name.mid(name.indexOf(QLatin1Char(':')) + 1));
    for (const QXmlStreamAttribute& attribute : reader.attributes())
        element.attributes.push_back({utf8(attribute.qualifiedName()), utf8(attribute.value())});
    return element;
}

/// Begins to read, up to the tag of the root. Whatever encoding the document says: it comes from UTF-8.
void read_to_root(QXmlStreamReader& reader, const QString& document)
{
    reader.setNamespaceProcessing(false);
    reader.addData(document);
    while (reader.readNext() != QXmlStreamReader::StartElement)
    {
        if (reader.atEnd() || reader.isDTD())
            refuse();
    }
}

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
    const QString text = QString::fromStdString(document);
    QXmlStreamReader reader;
    read_to_root(reader, text);
    std::vector<XmlElement> open{element_at(reader)}; // the innermost one is last
    while (true)
    {
        reader.readNext();
        if (reader.hasError())
            refuse();
        if (reader.isCharacters())
            open.back().text += utf8(reader.text());
        else if (reader.isStartElement() && open.size() == max_depth)
            refuse();
        else if (reader.isStartElement())
            open.push_back(element_at(reader));
        else if (reader.isEndElement())
        {
            XmlElement element = std::move(open.back());
            open.pop_back();
            if (open.empty())
                return element;
            open.back().children.push_back(std::move(element));
        }
    }
}

std::string without_root_attribute(const std::string& document, const std::string& name)
{
    const QString text = QString::fromStdString(document);
    QXmlStreamReader reader;
    read_to_root(reader, text);
    if (!reader.attributes().hasAttribute(QString::fromStdString(name)))
        return document;
    if (text.toStdString() != document)
        refuse(); // bytes that are no UTF-8 would be lost
    const qsizetype behind_tag = reader.characterOffset();
    const QString begin_of_tag = QLatin1Char('<') + reader.qualifiedName().toString();
    const qsizetype tag = text.lastIndexOf(begin_of_tag, behind_tag - 1);
    const QRegularExpression values(QStringLiteral("\\s+([^\\s=]+)\\s*=\\s*(\"[^\"]*\"|'[^']*')"));
    QRegularExpressionMatchIterator found = values.globalMatch(text.mid(tag, behind_tag - tag));
    while (found.hasNext())
    {
        const QRegularExpressionMatch match = found.next();
        if (match.captured(1).toStdString() == name)
            return text.left(tag + match.capturedStart()).toStdString() +
                   text.mid(tag + match.capturedEnd()).toStdString();
    }
    return document;
}

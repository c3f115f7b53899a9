#include "sources/props/value_types.h"
#include "sources/propsxml/VPropValueCodec.h"
#include "sources/propsxml/VPropXmlExport.h"
#include "sources/propsxml/VPropXmlParser.h"
#include "sources/propsxml/ticpp.h"

#include <VelaBase/VelaError.h>
#include <VelaProps/property_xml.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

namespace {

constexpr int schema_version = 1;

enum Format : int
{
    detect = 0,
    lv_data = 1,
    native = 2,
    bare_text = 3,
};

/// The flag for "no header" is among these bits, so a format with it is none of the known ones: this is wanted.
int format_of(int format)
{
    return format & 0xffff;
}

std::string export_text(const VProp& prop, int format)
{
    VPropXmlExport exporter(format, schema_version);
    exporter.process(prop);
    ticpp::Element& top = exporter.get_top();
    if (format == bare_text)
        return top.get_text();
    ticpp::Document document;
    if (format == native)
    {
        top.set_name("root");
        top.set_attribute("vprop_version", "1");
        document.link_end_child(std::move(top));
    }
    else if (format == lv_data)
    {
        ticpp::Element version("Version");
        version.set_text("8.2.1");
        ticpp::Element wrapper("LVData");
        wrapper.link_end_child(std::move(version));
        wrapper.link_end_child(std::move(top));
        document.link_declaration("1.0", "yes");
        document.link_end_child(std::move(wrapper));
    }
    return document.print();
}

/// Where the tree stands in a document.
struct Top
{
    ticpp::Node node;
    int format = detect;
};

/// -1 without one.
std::int64_t read_version(const ticpp::Node& node)
{
    constexpr std::int64_t newest = std::numeric_limits<std::int64_t>::max();
    const VPropValueCodec codec;
    const std::string* const text = node.attribute("vprop_version");
    std::int64_t version = -1;
    double large = 0;
    if (text && !codec.read_value(*text, version) && codec.read_value(*text, large) && large > 1)
        return newest; // a number that is larger than any integer
    return version;
}

ticpp::Node need(const ticpp::Node& node)
{
    if (!node)
        throw ticpp::Exception("Element not found");
    return node;
}

/// The form that the document itself says it has; `detect` if it says nothing.
Top recognise(const ticpp::Node& first)
{
    const std::int64_t version = read_version(first);
    if (version > schema_version)
        throw VelaError("vela_import_xml", __FILE__, __LINE__)("Xml input of newer version than library!")(-1);
    if (version > 0)
        return {first, native};
    const std::string* const older_version = first.attribute("xml_tb_version");
    if (older_version != nullptr && !older_version->empty())
        return {first, native};
    if (first.name() != "LVData")
        return {first};
    const ticpp::Node child = need(first.first_child());
    if (child.name() != "Version")
        return {child};
    static_cast<void>(child.text()); // has to be there
    return {need(child.next_sibling()), lv_data};
}

Top find_top(const ticpp::Document& document, int wanted_format)
{
    Top top = recognise(document.first_element());
    if (top.format == detect)
        top.format = wanted_format;
    if (top.format == detect)
        throw VelaError("vela_import_xml", __FILE__, __LINE__)("Could not determine xml format!")(-1);
    if (wanted_format != detect && wanted_format != top.format)
        throw VelaError("vela_import_xml", __FILE__, __LINE__)("Specified format does not match the xml string!")(-1);
    return top;
}

}

void vela_export_xml(std::string& xml, const VProp& prop, int format)
{
    try
    {
        xml = export_text(prop, format_of(format));
    }
    catch (const VelaError&)
    {
        throw;
    }
    catch (const std::exception& failure)
    {
        throw VelaError("vela_export_xml", __FILE__, __LINE__)("Error writing XML properties to string:\n%s",
                                                               failure.what())(-1);
    }
}

void vela_import_xml(const std::string& xml, VProp& prop, int format)
{
    std::optional<ticpp::Document> document;
    Top top;
    try
    {
        document.emplace(xml);
        top = find_top(*document, format_of(format));
    }
    catch (const VelaError&)
    {
        throw;
    }
    catch (const std::exception& failure)
    {
        throw VelaError("vela_import_xml", __FILE__, __LINE__)("Error parsing XML properties:\n%s", failure.what())(-1);
    }
    VPropXmlParser parser(top.format, schema_version, xml.size());
    try
    {
        parser.import_xml(top.node, prop);
    }
    catch (const std::exception& failure)
    {
        throw VelaError("vela_import_xml", __FILE__, __LINE__)("%s\nLocation:\n%s", failure.what(),
                                                               parser.location().c_str())(-1);
    }
}

std::string vela_val2string(const VProp& prop)
{
    std::string text;
    if (!VPropValueCodec().append_value(text, prop))
        throw VelaError("vela_val2string", __FILE__, __LINE__)("Conversion of unknown type to string!")(-1);
    return text;
}

VProp vela_string2val(const std::string& text, int type)
{
    if (type == vela_dt_char)
        return VPropstring(text, VPropstring::enc_utf8);
    VProp value;
    const bool is_known = vela_prop::with_scalar_type(type, [&]<class T>(vela_prop::Type<T>)
                                                      { VPropValueCodec().read_value(text, value.ensure<T>()); });
    if (!is_known)
        throw VelaError("vela_string2val", __FILE__, __LINE__)("Conversion of string to invalid type!")(-1);
    return value;
}

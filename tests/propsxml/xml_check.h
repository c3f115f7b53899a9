/// What the tests of property XML share: documents of one element, and failures inside an element.
#pragma once

#include "support/expect_vela_error.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <utility>

namespace xml_test {

inline std::string exported(const VProp& prop, int format)
{
    std::string xml = "what was there before";
    vela_export_xml(xml, prop, format);
    return xml;
}

inline VProp imported(const std::string& xml, int format = 0)
{
    VProp prop;
    vela_import_xml(xml, prop, format);
    return prop;
}

/// An element "root" of the native form.
inline std::string native(const std::string& attributes, const std::string& content)
{
    return "<root " + attributes + " vprop_version=\"1\">" + content + "</root>";
}

/// The tree that a native element gives.
inline VProp read(const std::string& attributes, const std::string& content)
{
    return imported(native(attributes, content));
}

inline std::vector<std::size_t> sizes_of(const VProp& prop)
{
    return prop.get_arr(true)->get_size(true);
}

template <class T>
VProparray<T> array_of(std::initializer_list<T> values)
{
    VProparray<T> made;
    for (const T& value : values)
        made.push_back(value);
    return made;
}

/// "SOURCE(LINE): ERROR\n    in function 'FUNCTION':\n    MESSAGE", with any file of `folder` and any line.
inline void expect_report(const std::string& report, const std::string& folder, const std::string& function,
                          const std::string& message)
{
    const std::size_t line_begin = report.find(".cpp(");
    ASSERT_NE(line_begin, std::string::npos) << report;
    EXPECT_EQ(report.rfind(folder + "/", 0), 0u) << report;
    std::size_t at = line_begin + 5;
    const std::size_t digits_begin = at;
    while (at < report.size() && std::isdigit(static_cast<unsigned char>(report[at])) != 0)
        ++at;
    EXPECT_GT(at, digits_begin) << report;
    EXPECT_EQ(report.substr(at), "): ERROR\n    in function '" + function + "':\n    " + message);
}

/// What a failed import reports: the whole message, from vela_import_xml.
inline std::string import_failure(const std::string& xml, VProp& prop, int format = 0)
{
    try
    {
        vela_import_xml(xml, prop, format);
    }
    catch (const VelaError& error)
    {
        EXPECT_STREQ(error.get_func(), "vela_import_xml");
        EXPECT_EQ(error.get_id(), -1);
        return error.get_msg();
    }
    ADD_FAILURE() << "nothing was thrown for " << xml;
    return std::string();
}

/// A failure of the library inside an element: the report of that failure, then the location.
inline void expect_failure_at(const std::string& xml, VProp& prop, const std::string& folder,
                              const std::string& function, const std::string& message, const std::string& location)
{
    SCOPED_TRACE(xml.substr(0, 2000));
    const std::string report = import_failure(xml, prop);
    const std::string tail = "\nLocation:\n" + location;
    ASSERT_GE(report.size(), tail.size());
    EXPECT_EQ(report.substr(report.size() - tail.size()), tail);
    expect_report(report.substr(0, report.size() - tail.size()), folder, function, message);
}

inline void expect_failure_at(const std::string& xml, const std::string& folder, const std::string& function,
                              const std::string& message, const std::string& location)
{
    VProp prop;
    expect_failure_at(xml, prop, folder, function, message, location);
}

inline void expect_invalid_size_at(const std::string& xml, const std::string& location)
{
    expect_failure_at(xml, "sources/proparr", "VProparrayBase::set_size", "Invalid size set!", location);
}

/// True if it was read, and then it can be written. Otherwise it was refused by a VelaError of vela_import_xml; what
/// was read before that is whole: it can be copied and compared.
inline bool survives(const std::string& xml, int format)
{
    VProp prop;
    try
    {
        vela_import_xml(xml, prop, format);
    }
    catch (const VelaError& error)
    {
        EXPECT_STREQ(error.get_func(), "vela_import_xml");
        EXPECT_EQ(error.get_id(), -1);
        EXPECT_FALSE(error.get_msg().empty());
        VProp copy(prop);
        copy.own();
        EXPECT_EQ(copy.get_id(), prop.get_id());
        return false;
    }
    EXPECT_NO_THROW(exported(prop, 2));
    return true;
}

}

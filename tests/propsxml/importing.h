/// What the tests of reading property XML share.
#pragma once

#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>

#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <string>

inline VProp imported(const std::string& xml, int format = 0)
{
    VProp prop;
    vela_import_xml(xml, prop, format);
    return prop;
}

/// An element "root" with these attributes and this content, in the native form.
inline std::string root(const std::string& attributes, const std::string& content = "")
{
    return "<root vprop_version=\"1\" " + attributes + ">" + content + "</root>";
}

/// `import` fails, with a message that has `text` in it and ends in `location`.
inline void expect_failure_at(const std::string& xml, const std::string& text, const std::string& location)
{
    try
    {
        VProp prop;
        vela_import_xml(xml, prop, 0);
        ADD_FAILURE() << "read: " << xml;
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_id(), -1);
        EXPECT_STREQ(error.get_func(), "vela_import_xml");
        const std::string& message = error.get_msg();
        EXPECT_NE(message.find(text), std::string::npos) << message;
        const std::string end = "\nLocation:\n" + location;
        ASSERT_GE(message.size(), end.size());
        EXPECT_EQ(message.substr(message.size() - end.size()), end);
    }
}

// Trees of 100000 levels through the bridge and the writers: done, or a clear failure, and never out of stack.
#include "json/property_kinds.h"

#include <Json/XmlReader.h>
#include <Json/property_bridge.h>
#include <Json/write.h>

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

using Json::Value;
using List = Value::List;
using Object = Value::Object;
using vela_test::array_of;
using vela_test::structure;

namespace {

constexpr int levels = 100000;

/// A structure with the member "a" of a structure with the member "a" ..., and so on with arrays in turn.
VProp deep_property(const VProp& innermost, bool with_arrays)
{
    VProp made(innermost);
    for (int level = 0; level < levels; ++level)
    {
        if (with_arrays && level % 3 == 1)
            made = array_of<VProp>({}, {made});
        else if (with_arrays && level % 3 == 2)
            made = array_of<VPropstruct>({}, {structure({{"a", made}})});
        else
            made = VProp(structure({{"a", made}}));
    }
    return made;
}

Value deep_value(Value innermost)
{
    for (int level = 0; level < levels; ++level)
    {
        Object object;
        object["a"] = std::move(innermost);
        innermost = Value(std::move(object));
    }
    return innermost;
}

std::string repeated(const std::string& text, int count)
{
    std::string made;
    made.reserve(text.size() * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        made += text;
    return made;
}

TEST(DeepTrees, ComeBackFromValues)
{
    for (const bool with_arrays : {false, true})
    {
        const VProp original = deep_property(VProp(5), with_arrays);
        VProp copy = deep_property(VProp(6), with_arrays);
        const Value value = Json::get_value(original);
        EXPECT_FALSE(Json::set_value(value, copy));
        EXPECT_TRUE(copy == original);
    }
}

TEST(DeepTrees, AreTheObjectOfAStructure)
{
    const VProp property = deep_property(VProp(5), false);
    EXPECT_TRUE(Value(Json::get_parameters(property)) == deep_value(Value(5)));
}

TEST(DeepTrees, HaveNoValueWhereTheInnermostHasNone)
{
    const VProp property = deep_property(VProp(), true);
    EXPECT_THROW(Json::get_value(property), std::invalid_argument);
}

TEST(DeepTrees, TellAFailureWithAllLevels)
{
    VProp property = deep_property(VProp(5), false);
    try
    {
        Json::set_value(deep_value(Value("x")), property);
        ADD_FAILURE();
    }
    catch (const std::invalid_argument& error)
    {
        EXPECT_TRUE(error.what() == repeated("Invalid argument for property 'a'\n", levels) +
                                        "Property has 32 bit signed integer type");
    }
}

TEST(DeepTrees, AreFoundByAPathOfAllLevels)
{
    VProp property = deep_property(VProp(5), false);
    const std::string path = repeated("a/", levels - 1) + "a";
    const auto found = Json::find_property(property, path);
    ASSERT_NE(found.first, nullptr);
    EXPECT_EQ(found.second, "");
    EXPECT_TRUE(*found.first == VProp(5));
    EXPECT_EQ(Json::find_property(property, path + "/a").first, nullptr);
}

TEST(DeepTrees, AreFoundThroughArraysOfAllKinds)
{
    VProp property = deep_property(VProp(5), true);
    // Levels are built from the inside: structure, array of properties, array of structures, and again.
    std::string path;
    for (int level = levels - 1; level >= 0; --level)
        path += level % 3 == 1 ? "0/" : level % 3 == 2 ? "0/a/" : "a/";
    path.pop_back();
    const auto found = Json::find_property(property, path);
    ASSERT_NE(found.first, nullptr);
    EXPECT_TRUE(*found.first == VProp(5));
}

TEST(DeepTrees, AreMergedToTheInnermost)
{
    Value from = deep_value(Value(Object{{"x", Value(1)}}));
    Value into = deep_value(Value(Object{{"y", Value(2)}}));
    Json::merge(from.as_object(), into.as_object());
    EXPECT_TRUE(into == deep_value(Value(Object{{"x", Value(1)}, {"y", Value(2)}})));
}

TEST(DeepTrees, AreCopiedWhereTheyAreMissing)
{
    Value from = deep_value(Value(1));
    Object into;
    Json::merge(from.as_object(), into);
    EXPECT_TRUE(Value(std::move(into)) == from);
}

TEST(DeepTrees, AreWrittenAsJson)
{
    std::ostringstream out;
    out << deep_value(Value(5));
    EXPECT_TRUE(out.str() == repeated(R"({"a":)", levels) + "5" + repeated("}", levels));

    Value list(5);
    for (int level = 0; level < levels; ++level)
    {
        List around;
        around.push_back(std::move(list));
        list = Value(std::move(around));
    }
    std::ostringstream list_out;
    list_out << list;
    EXPECT_TRUE(list_out.str() == repeated("[", levels) + "5" + repeated("]", levels));
}

TEST(DeepTrees, AreWrittenAsXml)
{
    Value value(5);
    for (int level = 0; level < levels; ++level)
    {
        Object element;
        element["a"] = std::move(value);
        if (level + 1 == levels)
        {
            value = Value(std::move(element));
            break;
        }
        Object content;
        content[""] = Value(std::move(element));
        value = Value(std::move(content));
    }
    std::ostringstream out;
    Json::write_xml(value, out);
    EXPECT_TRUE(out.str() ==
                R"(<?xml version="1.0" encoding="UTF-8"?>)" + repeated("<a>", levels) + "5" + repeated("</a>", levels));

    const std::string document = out.str();
    const char* p = document.data();
    Value read;
    EXPECT_TRUE(Json::XmlReader(read).read(p, document.data() + document.size()));
    EXPECT_TRUE(read == value);
}

}

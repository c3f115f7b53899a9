// What is written and read again is what it was, where the text forms can hold it.
#include "json/random_document.h"
#include "json/read_json.h"
#include "json/read_xml.h"
#include "json/value_text.h"

#include <Json/Value.h>
#include <Json/write.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using Json::Value;
using json_test::RandomText;
using json_test::value_text;

Value random_scalar(RandomText& random)
{
    static const char* const texts[] = {"", "text", "a b", "x\"\\", "\n", "</a>", "it's & more", "5", "true", " 7 "};
    switch (random.below(5))
    {
    case 0:
        return Value();
    case 1:
        return Value(random.below(2) == 0);
    case 2:
        return Value(static_cast<std::int64_t>(random.below(2000)) - 1000);
    case 3:
        return Value((static_cast<double>(random.below(1000)) - 500.0) / 8.0); // at most seven digits
    default:
        return Value(random.one_of(texts));
    }
}

Value random_tree(RandomText& random, std::size_t depth)
{
    static const char* const keys[] = {"", "a", "b", "quo\"te", "back\\slash", "line\nbreak"};
    const std::size_t kind = depth == 0 ? 2 : random.below(3);
    if (kind == 2)
        return random_scalar(random);
    Value tree = kind == 0 ? Value(Value::List()) : Value(Value::Object());
    for (std::size_t members = random.below(4); members > 0; --members)
    {
        if (kind == 0)
            tree.if_list()->push_back(random_tree(random, depth - 1));
        else
            tree.at(random.one_of(keys)) = random_tree(random, depth - 1);
    }
    return tree;
}

TEST(WriteAndRead, JsonGivesTheSameTree)
{
    for (unsigned seed = 0; seed < 500; ++seed)
    {
        RandomText random(seed);
        Value::Object object;
        object["root"] = random_tree(random, 4);
        object["other"] = random_tree(random, 3);
        std::ostringstream out;
        out << object;
        EXPECT_EQ(json_test::json_read(out.str()), json_test::object_text(object)) << out.str();
    }
}

/// A text that the reader takes for nothing but text. It escapes no "&" that comes first.
std::string random_plain_text(RandomText& random)
{
    static const char* const texts[] = {"text", "a < b", "x&y", "it's", "say \"a\"", "two\nlines ", "5 m", "x&lt;"};
    return random.one_of(texts);
}

Value random_xml_scalar(RandomText& random)
{
    switch (random.below(4))
    {
    case 0:
        return Value(random.below(2) == 0);
    case 1:
        return Value(static_cast<std::int64_t>(random.below(2000)) - 1000);
    case 2:
        return Value((static_cast<double>(random.below(1000)) - 500.0) / 8.0);
    default:
        return Value(random_plain_text(random));
    }
}

Value random_element(RandomText& random, std::size_t depth);

Value random_content(RandomText& random, std::size_t depth)
{
    static const char* const names[] = {"a", "b", "c:d", "e_1"};
    Value content{Value::Object()};
    const std::size_t children = 1 + random.below(3);
    for (std::size_t child = 0; child < children; ++child)
    {
        Value& place = content.at(names[child]);
        if (random.below(3) != 0)
        {
            place = random_element(random, depth - 1);
            continue;
        }
        for (std::size_t index = 0; index < 2 + random.below(2); ++index)
            place.at(index) = random_element(random, depth - 1);
    }
    return content;
}

/// An element that writing and reading leave as it is: filled, and with attributes or a text that says its kind.
Value random_element(RandomText& random, std::size_t depth)
{
    static const char* const attributes[] = {"p", "q", "r"};
    Value element;
    for (const char* const attribute : attributes)
        if (random.below(2) == 0)
            element.at(attribute) = random.below(4) == 0 ? Value("") : random_xml_scalar(random);
    if (depth > 0 && random.below(2) == 0)
        element.at("") = random_content(random, depth);
    else if (element.is_null())
        return random_xml_scalar(random);
    else if (random.below(2) == 0)
        element.at("") = random_xml_scalar(random);
    return element;
}

TEST(WriteAndRead, XmlGivesTheSameTree)
{
    std::size_t compared = 0;
    for (unsigned seed = 0; seed < 400; ++seed)
    {
        RandomText random(seed);
        Value root;
        root.at("root").at("") = random_content(random, 3);
        root.at("root").at("x") = Value(1);
        std::ostringstream out;
        Json::write_xml(root, out);
        if (out.str().size() > 400) // it is read once for every byte
            continue;
        ++compared;
        EXPECT_EQ(json_test::xml_read(out.str()), "{encoding = 'UTF-8', version = d:0x1p+0} " + value_text(root))
            << out.str();
    }
    EXPECT_GT(compared, 100u);
}

TEST(WriteAndRead, XmlThatEndsInAnEmptyElementWithoutAttributesIsNotComplete)
{
    Value root;
    root.at("a").as_object();
    std::ostringstream out;
    Json::write_xml(root, out);
    EXPECT_EQ(json_test::xml_so_far(out.str()), "{encoding = 'UTF-8', version = d:0x1p+0} {a = null}");
}

}

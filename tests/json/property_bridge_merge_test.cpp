// Merging adds, and never overwrites.
#include "json/counting_source.h"
#include "json/property_trees.h"

#include <Json/property_bridge.h>

#include <initializer_list>
#include <string>

namespace {

using Json::Value;
using json_test::list;
using json_test::object;

Value merged(Value from, Value into)
{
    const Value from_before(from);
    Json::merge(from.as_object(), into.as_object());
    EXPECT_EQ(from, from_before);
    return into;
}

TEST(Merge, CopiesWhatIsMissing)
{
    EXPECT_EQ(merged(object({{"a", 1}, {"b", list({1, 2})}, {"c", Value()}}), object({})),
              object({{"a", 1}, {"b", list({1, 2})}, {"c", Value()}}));
    EXPECT_EQ(merged(object({{"b", 2}, {"d", object({{"x", 4}})}}), object({{"a", 1}, {"c", 3}})),
              object({{"a", 1}, {"b", 2}, {"c", 3}, {"d", object({{"x", 4}})}}));
    EXPECT_EQ(merged(object({}), object({{"a", 1}})), object({{"a", 1}}));
    EXPECT_EQ(merged(object({}), object({})), object({}));
}

TEST(Merge, OverwritesNothing)
{
    for (const Value& kept : {Value(), Value(false), Value(1), Value(2.5), Value(""), list({}), list({1})})
        for (const Value& from :
             {Value(), Value(true), Value(7), Value(7.5), Value("x"), list({1, 2}), object({}), object({{"x", 1}})})
            EXPECT_EQ(merged(object({{"a", from}}), object({{"a", kept}})), object({{"a", kept}}));
    for (const Value& from : {Value(), Value(7), Value("x"), list({1, 2})})
        EXPECT_EQ(merged(object({{"a", from}}), object({{"a", object({{"x", 1}})}})),
                  object({{"a", object({{"x", 1}})}}));
}

TEST(Merge, AnObjectAgainstANumberKeepsTheNumber)
{
    EXPECT_EQ(merged(object({{"a", object({{"b", 1}})}}), object({{"a", 5}})), object({{"a", 5}}));
}

TEST(Merge, GoesOnInObjectsThatBothHave)
{
    EXPECT_EQ(merged(object({{"a", object({{"x", 1}, {"y", object({{"p", 1}, {"q", 2}})}})}, {"b", 9}}),
                     object({{"a", object({{"y", object({{"p", 7}})}, {"z", 3}})}})),
              object({{"a", object({{"x", 1}, {"y", object({{"p", 7}, {"q", 2}})}, {"z", 3}})}, {"b", 9}}));
}

TEST(Merge, DoesNotLookIntoLists)
{
    EXPECT_EQ(merged(object({{"a", list({object({{"x", 1}})})}}), object({{"a", list({object({})})}})),
              object({{"a", list({object({})})}}));
}

TEST(Merge, CopiesAreIndependent)
{
    Value from = object({{"a", object({{"x", 1}})}});
    Value into = object({});
    Json::merge(from.as_object(), into.as_object());
    into.at("a").at("x") = 2;
    EXPECT_EQ(from, object({{"a", object({{"x", 1}})}}));
}

TEST(Merge, ATreeWithItselfStaysAsItIs)
{
    Value tree = object({{"a", object({{"x", object({})}})}, {"b", 1}});
    const Value before(tree);
    Json::merge(tree.as_object(), tree.as_object());
    EXPECT_EQ(tree, before);
}

TEST(Merge, ATreeIntoAPartOfItself)
{
    Value tree = object({{"a", object({{"x", 1}})}, {"b", 2}});
    Json::merge(tree.as_object(), tree.at("a").as_object());
    EXPECT_EQ(tree, object({{"a", object({{"a", object({{"x", 1}})}, {"b", 2}, {"x", 1}})}, {"b", 2}}));
}

TEST(Merge, APartIntoItsTree)
{
    Value tree = object({{"a", object({{"x", 1}, {"b", 3}})}, {"b", 2}});
    Json::merge(tree.at("a").as_object(), tree.as_object());
    EXPECT_EQ(tree, object({{"a", object({{"x", 1}, {"b", 3}})}, {"b", 2}, {"x", 1}}));
}

TEST(Merge, DoesNotFillListsThatFillThemselves)
{
    const auto source = json_test::counting_source(1000000);
    Value from = object({{"new", Value(boost::shared_ptr<const Json::ListSource>(source))},
                         {"old", Value(boost::shared_ptr<const Json::ListSource>(source))}});
    Value into = object({{"old", 1}});
    Json::merge(from.as_object(), into.as_object());
    EXPECT_EQ(source->made, 0u);
    EXPECT_EQ(into.at("new").count(), 1000000u);
    EXPECT_EQ(into.at("old"), Value(1));
}

}

// The payload stands in the value: what needs no room of its own asks for none.
#include "support/allocation_watch.h"

#include <Json/ListSource.h>
#include <Json/Value.h>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <list>
#include <utility>

namespace {

using Json::Value;
using vela_test::AllocationWatch;

static_assert(sizeof(Value) == alignof(Value) + sizeof(Value::Object));

TEST(ValueMemory, ScalarsAndShortTextsAskForNone)
{
    const AllocationWatch watch;
    {
        Value null;
        const Value boolean(true);
        Value integer(5);
        const Value decimal(2.5);
        const Value text("short");
        const Value copy(text);
        null = integer;
        integer = text;
        integer.at(0);
    }
    EXPECT_GT(watch.peak_extra_bytes(), 0u); // for the one element of the last line
    EXPECT_EQ(watch.extra_bytes(), 0u);

    const AllocationWatch without_the_list;
    {
        Value null;
        const Value boolean(true);
        Value integer(5);
        const Value decimal(2.5);
        const Value text("short");
        const Value copy(text);
        null = integer;
        integer = text;
        integer.as_string() += "er";
        null.as_decimal() = 1.5;
    }
    EXPECT_EQ(without_the_list.peak_extra_bytes(), 0u);
}

TEST(ValueMemory, EmptyListsAndObjectsAskForNone)
{
    const AllocationWatch watch;
    {
        const Value list{Value::List()};
        const Value object{Value::Object()};
        const Value list_copy(list);
        const Value object_copy(object);
        Value null_as_list;
        null_as_list.as_list();
        Value null_as_object;
        null_as_object.as_object();
        Value null_as_text;
        null_as_text.as_string();
        null_as_list = object;
        null_as_object = list;
    }
    EXPECT_EQ(watch.peak_extra_bytes(), 0u);
}

TEST(ValueMemory, OneElementIsOneNode)
{
    const AllocationWatch watch;
    Value::List list;
    list.emplace_back(5);
    const std::size_t bytes_of_a_node = watch.extra_bytes();
    Value value;
    value.at(0) = Value(5);
    EXPECT_EQ(watch.extra_bytes(), 2 * bytes_of_a_node);
    EXPECT_EQ(watch.peak_extra_bytes(), 2 * bytes_of_a_node);
}

TEST(ValueMemory, MovesAskForNone)
{
    Value list;
    for (std::size_t i = 0; i < 100; ++i)
        list.at(i).at("a") = Value(std::string(100, 'x'));
    const AllocationWatch watch;
    Value moved(std::move(list));
    Value assigned;
    assigned = std::move(moved);
    EXPECT_EQ(watch.peak_extra_bytes(), 0u);
    EXPECT_EQ(assigned.count(), 100u);
}

TEST(ValueMemory, EverythingIsGivenBack)
{
    const AllocationWatch watch;
    {
        Value tree;
        for (std::size_t i = 0; i < 50; ++i)
            tree.at(i).at("key " + std::to_string(i)).at(3) = Value(std::string(100, 'x'));
        Value copy(tree);
        copy = copy.at(7);
        tree = copy;
        tree.as_list();
        EXPECT_GT(watch.extra_bytes(), 100u);
    }
    EXPECT_EQ(watch.extra_bytes(), 0u);
}

/// A million integers, of which nobody may ask for.
class Million : public Json::ListSource
{
public:
    std::size_t count() const override { return 1000000; }
    void fill(std::list<Value>& list, std::size_t end) const override
    {
        while (list.size() < end)
            list.emplace_back(list.size());
    }
};

TEST(ValueMemory, UnfilledListOfAMillionTakesNoMoreThanAPointerToItsSource)
{
    const boost::shared_ptr<const Json::ListSource> source = boost::make_shared<Million>();
    const AllocationWatch watch;
    const Value list(source);
    const Value copy(list);
    EXPECT_EQ(list.count() + copy.count(), 2000000u);
    // A shared pointer for each of both: it does not lie in the value, which is small for all the others.
    EXPECT_LE(watch.peak_extra_bytes(), 2 * (sizeof source + sizeof(void*)));
}

}

// Memory that fails at the n-th request: nothing leaks, what was there stays whole, and destruction needs none.
#include "support/failing_memory.h"
#include "json/counting_source.h"
#include "json/deep_values.h"

#include <Json/Reader.h>
#include <Json/Value.h>
#include <Json/XmlReader.h>

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <utility>

namespace {

using Json::Value;
using json_test::deep_value;
using json_test::Levels;
using vela_test::blocks_taken;
using vela_test::MemoryFailsAfter;

/// Does `action` with 0, 1, 2 ... requests that succeed, until it goes through, and `check`s after each failure.
/// Gives the number of failures.
template <class Action, class Check>
std::size_t failures_of(Action action, Check check)
{
    for (std::size_t requests = 0; requests < 100000; ++requests)
    {
        try
        {
            const MemoryFailsAfter failing(requests);
            action();
            return requests;
        }
        catch (const std::bad_alloc&)
        {
        }
        check();
    }
    ADD_FAILURE() << "it never went through";
    return 0;
}

Value sample_tree()
{
    Value tree;
    tree.at("a").at(2) = Value(std::string(100, 'x'));
    tree.at("a").at(0).at("inner").at("text") = Value(std::string(50, 'y'));
    tree.at("b").at("list").at(1).at(1) = Value(2.5);
    tree.at("c") = Value(1);
    tree.at("lazy") = Value(boost::shared_ptr<const Json::ListSource>(json_test::counting_source(5)));
    tree.at("lazy").at(1);
    return tree;
}

TEST(ValueWithoutMemory, IsDestroyed)
{
    for (const Levels levels : {Levels::lists, Levels::objects, Levels::mixed})
    {
        const std::size_t blocks_before = blocks_taken();
        {
            Value deep = deep_value(100000, levels);
            Value wide = sample_tree();
            const MemoryFailsAfter failing(0);
            deep = Value();
            const Value moved(std::move(wide));
        }
        {
            const Value other = deep_value(1000, levels);
            vela_test::allow_requests(0); // also while the value goes out of scope
        }
        vela_test::allow_requests(SIZE_MAX);
        EXPECT_EQ(blocks_taken(), blocks_before);
    }
}

TEST(ValueWithoutMemory, CopyLeavesNothingBehind)
{
    const Value original = sample_tree();
    const Value same = sample_tree();
    const std::size_t blocks_before = blocks_taken();
    const std::size_t failures =
        failures_of([&] { const Value copy(original); }, [&] { EXPECT_EQ(blocks_taken(), blocks_before); });
    EXPECT_GT(failures, 10u);
    EXPECT_EQ(blocks_taken(), blocks_before);
    EXPECT_TRUE(original == same);
}

TEST(ValueWithoutMemory, CopyOfADeepTreeLeavesNothingBehind)
{
    for (const Levels levels : {Levels::lists, Levels::objects, Levels::mixed})
    {
        const Value original = deep_value(200, levels);
        const std::size_t blocks_before = blocks_taken();
        EXPECT_GE(failures_of([&] { const Value copy(original); }, [&] { EXPECT_EQ(blocks_taken(), blocks_before); }),
                  200u);
    }
}

TEST(ValueWithoutMemory, AssignmentThatFailsLeavesAUsableTarget)
{
    const Value original = sample_tree();
    EXPECT_TRUE(original == sample_tree()); // fills its list, which takes memory
    const std::size_t blocks_before = blocks_taken();
    {
        Value target;
        failures_of(
            [&]
            {
                target = Value();
                target = original;
            },
            [&]
            {
                const Value copy(target);
                target = Value("short");
                EXPECT_EQ(*target.if_string(), "short");
            });
        EXPECT_TRUE(target == original);
    }
    EXPECT_EQ(blocks_taken(), blocks_before);
}

TEST(ValueWithoutMemory, AssignmentThatFailsLeavesTheTargetAsItWas)
{
    const Value original = sample_tree();
    const Value text(std::string(200, 'z'));
    const Value befores[] = {Value(1), Value("short"), Value(Value::List{Value("a"), Value(2)}),
                             Value(Value::Object{{"a", Value("b")}})};
    for (const Value* source : {&original, &text})
        for (const Value& before : befores)
        {
            Value target = before;
            EXPECT_GT(failures_of([&] { target = *source; }, [&] { EXPECT_TRUE(target == before); }), 0u);
            EXPECT_TRUE(target == *source);
        }
}

TEST(ValueWithoutMemory, AssignmentOfAChildThatFailsLeavesAUsableTree)
{
    const std::size_t blocks_before = blocks_taken();
    {
        Value tree = sample_tree();
        failures_of([&] { tree = std::as_const(tree).if_object()->at("a"); },
                    [&]
                    {
                        const Value copy(tree);
                        tree = sample_tree();
                    });
        EXPECT_EQ(tree.count(), 3u);
    }
    EXPECT_EQ(blocks_taken(), blocks_before);
}

TEST(ValueWithoutMemory, ComparisonLeavesBothSides)
{
    const Value left = deep_value(300, Levels::mixed);
    const Value right = deep_value(300, Levels::mixed);
    const std::size_t blocks_before = blocks_taken();
    bool equal = false;
    failures_of([&] { equal = left == right; }, [&] { EXPECT_EQ(blocks_taken(), blocks_before); });
    EXPECT_TRUE(equal);
    EXPECT_EQ(blocks_taken(), blocks_before);
}

TEST(ValueWithoutMemory, AccessAsListThatFailsLeavesTheValueAsItWas)
{
    Value value = sample_tree();
    const Value before = sample_tree();
    const std::size_t failures = failures_of([&] { value.as_list(); },
                                             [&]
                                             {
                                                 EXPECT_TRUE(value.is_object());
                                                 EXPECT_TRUE(value == before);
                                             });
    EXPECT_GT(failures, 0u);
    EXPECT_EQ(value.count(), 1u);
    EXPECT_TRUE(value.at(0) == before);
}

TEST(ValueWithoutMemory, LookupByKeyThatFailsAddsNoEntry)
{
    Value value(Value::Object{{"a", Value(1)}});
    const std::string key(100, 'k');
    const std::size_t failures = failures_of([&] { value.at(key); }, [&] { EXPECT_EQ(value.if_object()->size(), 1u); });
    EXPECT_GT(failures, 0u);
    EXPECT_EQ(value.if_object()->size(), 2u);
}

TEST(ValueWithoutMemory, LookupByIndexThatFailsLeavesTheElementsThatWereThere)
{
    Value value(Value::List{Value("first")});
    const std::size_t failures = failures_of([&] { value.at(9); },
                                             [&]
                                             {
                                                 EXPECT_LE(value.count(), 10u);
                                                 EXPECT_EQ(*value.at(0).if_string(), "first");
                                             });
    EXPECT_GT(failures, 0u);
    EXPECT_EQ(value.count(), 10u);
}

TEST(ValueWithoutMemory, ListThatFillsItselfGoesOnWhereMemoryFailed)
{
    Value list(boost::shared_ptr<const Json::ListSource>(json_test::counting_source(20)));
    const std::size_t failures = failures_of([&] { list.as_list(); }, [&] { EXPECT_EQ(list.count(), 20u); });
    EXPECT_GT(failures, 0u);
    std::int64_t expected = 0;
    for (const Value& element : list.as_list())
        EXPECT_EQ(*element.if_integer(), expected++);
    EXPECT_EQ(expected, 20);
}

TEST(ReaderWithoutMemory, LeavesNothingBehind)
{
    const std::string document =
        R"({"key number one":[1,2.5,{"a":"a text that is longer than a short one"}],"b":[[]]})";
    const std::size_t blocks_before = blocks_taken();
    bool complete = false;
    const std::size_t failures = failures_of(
        [&]
        {
            Json::Reader reader;
            const char* p = document.data();
            complete = reader.read(p, document.data() + document.size());
        },
        [&] { EXPECT_EQ(blocks_taken(), blocks_before); });
    EXPECT_TRUE(complete);
    EXPECT_GT(failures, 5u);
}

TEST(XmlReaderWithoutMemory, LeavesNothingBehindButWhatWasRead)
{
    const std::string document =
        "<?xml version='1.0'?><root><a name='a text that is longer than a short one'/>"
        "<a><b>1</b><b>x&lt;y</b></a><long_name_of_an_element>2.5</long_name_of_an_element></root>";
    const std::size_t blocks_before = blocks_taken();
    {
        Value target;
        bool complete = false;
        const std::size_t failures = failures_of(
            [&]
            {
                Json::XmlReader reader(target);
                const char* p = document.data();
                complete = reader.read(p, document.data() + document.size());
            },
            [&]
            {
                // What was read is whole: it can be copied.
                EXPECT_TRUE(Value(target) == target);
                target = Value();
                EXPECT_EQ(blocks_taken(), blocks_before);
            });
        EXPECT_TRUE(complete);
        EXPECT_GT(failures, 5u);
        EXPECT_EQ(target.at("root").at("").at("a").count(), 2u);
    }
    EXPECT_EQ(blocks_taken(), blocks_before);
}

} // namespace

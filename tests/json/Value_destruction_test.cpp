#include <Json/Value.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <utility>

namespace {

using Json::Value;

TEST(ValueDestruction, ListsWithinObjectsWithinListsGoWithTheirRoot)
{
    Value object_outside;
    object_outside.at("a").at(std::size_t{0}).at("b") = 1;
    object_outside.at("a").at(1).at(std::size_t{0}) = 2;
    object_outside.at("c").at("d").at(std::size_t{0}) = 3;
    Value list_outside;
    list_outside.at(std::size_t{0}) = object_outside;
    list_outside.at(1) = std::move(object_outside);
    Value copy(list_outside);
    EXPECT_EQ(copy, list_outside);
    copy = Value();
    EXPECT_TRUE(copy.is_null());
}

TEST(ValueDestruction, AMillionContainersOfBothKindsGoWithTheirRoot)
{
    Value root;
    Value* innermost = &root;
    for (int depth = 0; depth < 1000000; depth += 2)
    {
        innermost->at("sibling") = 1;
        innermost = &innermost->at("value").at(1);
    }
    *innermost = 5;
    EXPECT_EQ(root.count(), 1u);
}

}

// The order of virtual operations and of fields, which other compiled code counts on, and copies and moves.
#include "propvisitor/recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using testing::ElementsAre;
using visitor_test::array_of;
using visitor_test::numbers;
using visitor_test::Recorder;
using visitor_test::structure;

namespace {

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// A visitor whose protected parts can be seen.
class Open : public VPropVisitor
{
public:
    using VPropVisitor::containers;
    using VPropVisitor::indices;
    using VPropVisitor::keys;
    using VPropVisitor::process;
    using VPropVisitor::string_idx;
    using VPropVisitor::visit;
    using VPropVisitor::visit_exit;
};

class OpenPos : public VPropPos
{
public:
    using VPropPos::indices;
    using VPropPos::keys;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

#if defined(__x86_64__) && defined(__GXX_ABI_VERSION)

/// Slot of a virtual function in the virtual table, from its member pointer (Itanium C++ ABI, 2.3).
template <class Function>
std::ptrdiff_t slot_of(Function function)
{
    struct MemberPointer
    {
        std::ptrdiff_t one_above_offset;
        std::ptrdiff_t adjustment;
    };
    return (std::bit_cast<MemberPointer>(function).one_above_offset - 1) / 8;
}

TEST(VisitorTables, BeginWithTheMovesOfAPosition)
{
    EXPECT_EQ(slot_of(&VPropPos::reset), 0);
    EXPECT_EQ(slot_of(static_cast<bool (VPropPos::*)(const std::string&)>(&VPropPos::decend)), 1);
    EXPECT_EQ(slot_of(static_cast<bool (VPropPos::*)(std::size_t)>(&VPropPos::decend)), 2);
    EXPECT_EQ(slot_of(&VPropPos::set_key), 3);
    EXPECT_EQ(slot_of(&VPropPos::ascend), 4);
}

TEST(VisitorTables, GoOnWithTheVisits)
{
    EXPECT_EQ(slot_of(static_cast<bool (Open::*)(const VPropstring&)>(&Open::visit)), 5);
    EXPECT_EQ(slot_of(static_cast<int (Open::*)(const VPropstruct&)>(&Open::visit)), 6);
    EXPECT_EQ(slot_of(static_cast<int (Open::*)(const VProp&)>(&Open::visit)), 7);
    EXPECT_EQ(slot_of(static_cast<int (Open::*)(const VPropstruct&)>(&Open::visit_exit)), 8);
    EXPECT_EQ(slot_of(static_cast<bool (Open::*)(const VProp&)>(&Open::visit_exit)), 9);
}

template <class Object>
std::ptrdiff_t offset_in(const Object& object, const void* field)
{
    return static_cast<const char*>(field) - static_cast<const char*>(static_cast<const void*>(&object));
}

TEST(VisitorTables, AreFollowedByTheFieldsInTheirOrder)
{
    const OpenPos pos;
    EXPECT_EQ(offset_in(pos, &pos.keys), 8);
    EXPECT_EQ(offset_in(pos, &pos.indices), 32);
    EXPECT_EQ(sizeof(VPropPos), 56u);
    const Open visitor;
    EXPECT_EQ(offset_in(visitor, &visitor.keys), 8);
    EXPECT_EQ(offset_in(visitor, &visitor.indices), 32);
    EXPECT_EQ(offset_in(visitor, &visitor.string_idx), 56);
    EXPECT_EQ(offset_in(visitor, &visitor.containers), 64);
    EXPECT_EQ(sizeof(VPropVisitor), 88u);
}

#endif

TEST(VisitorTypes, CanBeCopiedAndMoved)
{
    static_assert(std::is_default_constructible_v<VPropPos> && std::is_default_constructible_v<VPropVisitor>);
    static_assert(std::is_copy_constructible_v<VPropPos> && std::is_copy_constructible_v<VPropVisitor>);
    static_assert(std::is_copy_assignable_v<VPropPos> && std::is_copy_assignable_v<VPropVisitor>);
    static_assert(std::is_nothrow_move_constructible_v<VPropPos> && std::is_nothrow_move_constructible_v<VPropVisitor>);
    static_assert(std::is_nothrow_move_assignable_v<VPropPos> && std::is_nothrow_move_assignable_v<VPropVisitor>);
    const Open fresh;
    EXPECT_EQ(fresh.string_idx, VPropPos::no_index);
    EXPECT_TRUE(fresh.keys.empty() && fresh.indices.empty() && fresh.containers.empty());
}

TEST(VisitorPositions, HaveDefaultAnswersAtTheTop)
{
    VPropPos pos;
    EXPECT_FALSE(pos.set_key("a"));
    EXPECT_EQ(pos.get_cur_idx(), static_cast<std::size_t>(-1));
    EXPECT_EQ(pos.get_cur_key(), "");
    EXPECT_FALSE(pos.set_key("a")) << "the first left no level behind";
}

TEST(VisitorPositions, KeepAKeyAndAnIndexForEachLevel)
{
    OpenPos pos;
    EXPECT_TRUE(pos.decend("a"));
    EXPECT_TRUE(pos.decend(std::size_t(7)));
    EXPECT_THAT(pos.keys, ElementsAre("a", ""));
    EXPECT_THAT(pos.indices, ElementsAre(VPropPos::no_index, 7u));
    EXPECT_EQ(pos.get_cur_idx(), 7u);
    EXPECT_EQ(pos.get_cur_key(), "");
    EXPECT_TRUE(pos.set_key("b"));
    EXPECT_EQ(pos.get_cur_idx(), 7u);
    EXPECT_EQ(pos.get_cur_key(), "b");
    pos.ascend();
    EXPECT_EQ(pos.get_cur_key(), "a");
    EXPECT_EQ(pos.get_cur_idx(), VPropPos::no_index);
    pos.ascend();
    EXPECT_TRUE(pos.keys.empty() && pos.indices.empty());
}

TEST(VisitorPositions, AreEmptiedByResetAndTheContainersAreNot)
{
    const VProp first;
    Open visitor;
    visitor.decend("a");
    visitor.containers.push_back(&first);
    visitor.string_idx = 5;
    visitor.reset();
    EXPECT_TRUE(visitor.keys.empty() && visitor.indices.empty());
    EXPECT_THAT(visitor.containers, ElementsAre(&first));
    EXPECT_EQ(visitor.get_cur_idx(), VPropPos::no_index);
}

Open filled(const VProp& container)
{
    Open visitor;
    visitor.decend("a");
    visitor.decend(std::size_t(2));
    visitor.string_idx = 5;
    visitor.containers = {&container, &container};
    return visitor;
}

void expect_filled(const Open& visitor, const VProp& container)
{
    EXPECT_THAT(visitor.keys, ElementsAre("a", ""));
    EXPECT_THAT(visitor.indices, ElementsAre(VPropPos::no_index, 2u));
    EXPECT_EQ(visitor.string_idx, 5u);
    EXPECT_THAT(visitor.containers, ElementsAre(&container, &container));
}

TEST(VisitorCopies, HaveAllFields)
{
    const VProp container = array_of<VProp>({}, numbers(4));
    const Open visitor = filled(container);
    const Open copy(visitor);
    expect_filled(copy, container);
    Open assigned;
    assigned.decend("z");
    assigned = visitor;
    expect_filled(assigned, container);
    expect_filled(visitor, container);
    EXPECT_EQ(assigned.get_cur_path(), "a{2}");
}

TEST(VisitorCopies, ByMovingHaveAllFields)
{
    const VProp container = array_of<VProp>({}, numbers(4));
    Open visitor = filled(container);
    Open moved(std::move(visitor));
    expect_filled(moved, container);
    Open assigned;
    assigned.decend("z");
    assigned = std::move(moved);
    expect_filled(assigned, container);
}

TEST(VisitorCopies, OfPositionsHaveBothStacks)
{
    OpenPos pos;
    pos.decend("a");
    pos.decend(std::size_t(3));
    OpenPos copy(pos);
    OpenPos assigned;
    assigned = pos;
    OpenPos moved(std::move(copy));
    OpenPos move_assigned;
    move_assigned = std::move(assigned);
    for (const OpenPos* each : {&pos, &moved, &move_assigned})
    {
        EXPECT_THAT(each->keys, ElementsAre("a", ""));
        EXPECT_THAT(each->indices, ElementsAre(VPropPos::no_index, 3u));
    }
}

TEST(VisitorCopies, ThatAreMadeDuringAWalkStayWhereTheyWereMade)
{
    const VProp tree(structure({{"c", array_of<VProp>({2, 2}, numbers(4))}, {"d", VProp(1)}}));
    std::vector<Recorder> copies;
    Recorder visitor;
    visitor.on_value = [&](const std::string& path, const VProp&)
    {
        if (path == "c{1,1}")
            copies.push_back(visitor);
        return 1;
    };
    EXPECT_TRUE(visitor.process(tree));
    ASSERT_EQ(copies.size(), 1u);
    EXPECT_EQ(copies[0].get_cur_path(), "c{1,1}");
    EXPECT_EQ(copies[0].level_containers().size(), 2u);
    EXPECT_EQ(visitor.get_cur_path(), "");
}

}

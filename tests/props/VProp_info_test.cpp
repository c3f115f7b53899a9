// Where the attachment of a value goes, and where it is lost.
#include "props/attachment.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

namespace {

using prop_test::attachment;
using prop_test::number_of;

class VPropAttachment : public testing::Test
{
protected:
    VPropAttachment()
    {
        first.set_info(attachment(1));
        second.set_info(attachment(2));
    }

    VProp first = VProp(1.5);
    VProp second = VProp(L"two");
};

TEST_F(VPropAttachment, IsGivenAsItWasSet)
{
    const boost::shared_ptr<VPropInfo> info = attachment(7);
    const VProp constant(1);
    constant.set_info(info);
    EXPECT_EQ(constant.get_info().get(), info.get());
    constant.set_info(boost::shared_ptr<VPropInfo>());
    EXPECT_FALSE(constant.get_info());
    EXPECT_EQ(info.use_count(), 1);
}

TEST_F(VPropAttachment, MayBelongToAnEmptyValue)
{
    const VProp empty;
    empty.set_info(attachment(3));
    EXPECT_EQ(number_of(empty), 3);
    EXPECT_TRUE(empty.empty());
}

TEST_F(VPropAttachment, IsReleasedWithTheHandle)
{
    const boost::shared_ptr<VPropInfo> info = attachment(7);
    {
        VProp value(1);
        value.set_info(info);
        EXPECT_EQ(info.use_count(), 2);
    }
    EXPECT_EQ(info.use_count(), 1);
}

TEST_F(VPropAttachment, IsNotCopied)
{
    const VProp copy(first);
    EXPECT_EQ(number_of(copy), 0);
    EXPECT_EQ(number_of(first), 1);
}

TEST_F(VPropAttachment, IsNotSharedWithTheContainer)
{
    const VProp copy(first);
    copy.set_info(attachment(3));
    EXPECT_EQ(number_of(first), 1);
    EXPECT_EQ(number_of(copy), 3);
    EXPECT_EQ(copy.value_ptr(), static_cast<const VProp&>(first).value_ptr());
}

TEST_F(VPropAttachment, OfTheTargetGoesWhenAValueIsAssigned)
{
    EXPECT_EQ(&(first = second), &first);
    EXPECT_EQ(number_of(first), 0);
    EXPECT_EQ(number_of(second), 2);
    second = VProp();
    EXPECT_EQ(number_of(second), 0);
}

TEST_F(VPropAttachment, GoesWhenAValueIsAssignedToItself)
{
    const VProp& alias = first;
    first = alias;
    EXPECT_EQ(number_of(first), 0);
    EXPECT_EQ(first.get<double>(), 1.5);
}

TEST_F(VPropAttachment, StaysWhenANumberIsAssigned)
{
    first = 2.5;
    EXPECT_EQ(number_of(first), 1);
    first = 3;
    EXPECT_EQ(number_of(first), 1);
    EXPECT_EQ(first.get<int>(), 3);
}

TEST_F(VPropAttachment, StaysWhenATextStructOrArrayIsAssigned)
{
    first = "text";
    EXPECT_EQ(number_of(first), 1);
    first = std::string("text");
    EXPECT_EQ(number_of(first), 1);
    first = L"text";
    EXPECT_EQ(number_of(first), 1);
    first = VPropstring(L"text");
    EXPECT_EQ(number_of(first), 1);
    first = VPropstruct();
    EXPECT_EQ(number_of(first), 1);
    first = VProparray<VProp>();
    EXPECT_EQ(number_of(first), 1);
    first = _s_vela_RGB(1, 2, 3);
    EXPECT_EQ(number_of(first), 1);
}

TEST_F(VPropAttachment, IsExchangedBySwap)
{
    first.swap(second);
    EXPECT_EQ(number_of(first), 2);
    EXPECT_EQ(number_of(second), 1);
    EXPECT_EQ(second.get<double>(), 1.5);
}

TEST_F(VPropAttachment, StaysInSwapValueAndClear)
{
    first.swap_value(second);
    EXPECT_EQ(number_of(first), 1);
    EXPECT_EQ(number_of(second), 2);
    EXPECT_EQ(second.get<double>(), 1.5);
    first.clear();
    EXPECT_EQ(number_of(first), 1);
    EXPECT_TRUE(first.empty());
}

TEST_F(VPropAttachment, StaysWhenTheValueIsDetachedLockedOrWritten)
{
    const VProp copy(first);
    first.own();
    EXPECT_EQ(number_of(first), 1);
    EXPECT_TRUE(first.lock());
    EXPECT_EQ(number_of(first), 1);
    first.get<double>() = 7.0;
    EXPECT_EQ(number_of(first), 1);
}

TEST_F(VPropAttachment, StaysWhenEnsureFillsTheValue)
{
    VProp value;
    value.set_info(attachment(5));
    value.ensure<int>();
    EXPECT_EQ(number_of(value), 5);
    VProp array;
    array.set_info(attachment(6));
    array.ensure_array<int>(2);
    EXPECT_EQ(number_of(array), 6);
    VProp tree;
    tree.set_info(attachment(7));
    tree["a{1}"] = 1;
    EXPECT_EQ(number_of(tree), 7);
}

TEST_F(VPropAttachment, OfEveryMemberIsLostInAClone)
{
    VProp tree;
    tree["a"] = 1;
    tree["b"] = 2;
    tree["a"].set_info(attachment(3));
    VProp copy(tree);
    EXPECT_EQ(number_of(static_cast<const VProp&>(copy).get<VPropstruct>().begin()->second), 3) << "still shared";
    copy.own();
    EXPECT_EQ(number_of(copy["a"]), 0);
    EXPECT_EQ(number_of(tree["a"]), 3) << "the last owner keeps the container";
}

TEST_F(VPropAttachment, OfEveryMemberIsLostByWhoeverDetaches)
{
    VProp tree;
    tree["a"] = 1;
    tree["a"].set_info(attachment(3));
    const VProp copy(tree);
    EXPECT_EQ(number_of(tree["a"]), 0) << "the walk detached the tree";
    EXPECT_EQ(number_of(copy.get<VPropstruct>().begin()->second), 3);
}

TEST_F(VPropAttachment, OfEveryElementIsLostInACloneOfACellArray)
{
    VProp cells;
    cells(1) = 1;
    cells(1).set_info(attachment(3));
    EXPECT_TRUE(cells.lock());
    VProp copy(cells);
    EXPECT_EQ(number_of(copy(1)), 0);
    EXPECT_EQ(number_of(cells(1)), 3);
}

TEST_F(VPropAttachment, DoesNotCountInEquality)
{
    EXPECT_TRUE(first == VProp(1.5));
    const VProp empty;
    empty.set_info(attachment(3));
    EXPECT_TRUE(empty == VProp());
}

TEST_F(VPropAttachment, OfMembersStaysWhenMembersAreAdded)
{
    VProp tree;
    for (int i = 0; i < 50; ++i)
    {
        VProp& member = tree["m" + std::to_string(i)];
        member = i;
        member.set_info(attachment(i + 1));
    }
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(number_of(tree["m" + std::to_string(i)]), i + 1);
}

TEST_F(VPropAttachment, OfElementsStaysWhenACellArrayGrows)
{
    VProp tree;
    for (int i = 0; i < 50; ++i)
    {
        VProp& element = tree(static_cast<std::size_t>(i));
        element = i;
        element.set_info(attachment(i + 1));
    }
    tree["{60}"] = 60;
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(number_of(tree(static_cast<std::size_t>(i))), i + 1);
    EXPECT_EQ(number_of(tree(55)), 0);
}

TEST_F(VPropAttachment, OfMembersOfAStructArrayStaysWhenItGrows)
{
    VProp tree;
    tree["(0).a"] = 1;
    tree["(0).a"].set_info(attachment(3));
    tree["(9).a"] = 2;
    EXPECT_EQ(number_of(tree["(0).a"]), 3);
}

}

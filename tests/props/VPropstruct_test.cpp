// Named members: their order, their keys, and how they are found, made and removed.
#include "props/attachment.h"
#include "support/expect_vela_error.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

std::vector<std::string> keys_of(const VPropstruct& tree)
{
    std::vector<std::string> keys;
    for (const auto& member : tree)
        keys.push_back(member.first);
    return keys;
}

using Keys = std::vector<std::string>;

VPropstruct abc()
{
    VPropstruct tree;
    tree["a"] = 1;
    tree["b"] = 2;
    tree["c"] = 3;
    return tree;
}

TEST(VPropstructMembers, AreNoneAtFirst)
{
    const VPropstruct tree;
    EXPECT_TRUE(tree.empty());
    static_assert(std::is_base_of_v<std::vector<std::pair<std::string, VProp>>, VPropstruct>);
    EXPECT_EQ(sizeof(VPropstruct), sizeof(std::vector<std::pair<std::string, VProp>>)) << "it adds nothing";
}

TEST(VPropstructMembers, KeepTheOrderInWhichTheyCame)
{
    VPropstruct tree;
    tree["z"] = 1;
    tree["a"] = 2;
    tree["m"] = 3;
    tree["a"] = 4;
    EXPECT_EQ(keys_of(tree), (Keys{"z", "a", "m"}));
    EXPECT_EQ(tree.at(1).second.get<int>(), 4);
}

TEST(VPropstructMembers, AreFoundByTheirKeyByteForByte)
{
    VPropstruct tree = abc();
    tree.emplace_back(std::string("a\0b", 3), VProp(4));
    tree.emplace_back("", VProp(5));
    EXPECT_TRUE(tree.has_key("a"));
    EXPECT_FALSE(tree.has_key("A"));
    EXPECT_FALSE(tree.has_key("a "));
    EXPECT_TRUE(tree.has_key(std::string("a\0b", 3)));
    EXPECT_FALSE(tree.has_key(std::string("a\0c", 3)));
    EXPECT_TRUE(tree.has_key(""));
    EXPECT_EQ(tree.find("b"), tree.begin() + 1);
    EXPECT_EQ(tree.find("B"), tree.end());
    const VPropstruct& constant = tree;
    EXPECT_EQ(constant.find("c"), constant.begin() + 2);
    EXPECT_EQ(constant.find("d"), constant.end());
}

TEST(VPropstructMembers, WithACaseOfTheirOwnAreOthers)
{
    VPropstruct tree;
    tree["key"] = 1;
    tree["Key"] = 2;
    EXPECT_EQ(keys_of(tree), (Keys{"key", "Key"}));
}

TEST(VPropstructMembers, AreWrittenThroughFind)
{
    VPropstruct tree = abc();
    tree.find("b")->second = 7;
    EXPECT_EQ(tree["b"].get<int>(), 7);
}

TEST(VPropstructMembers, HideALaterDuplicate)
{
    VPropstruct tree = abc();
    tree.emplace_back("a", VProp(9));
    EXPECT_EQ(tree.find("a"), tree.begin());
    EXPECT_EQ(tree["a"].get<int>(), 1);
    EXPECT_TRUE(tree.erase("a"));
    EXPECT_EQ(keys_of(tree), (Keys{"b", "c", "a"}));
    EXPECT_EQ(tree["a"].get<int>(), 9);
}

TEST(VPropstructMembers, AreNeverDuplicatedByTheStructItself)
{
    VPropstruct tree = abc();
    for (int i = 0; i < 3; ++i)
    {
        tree["a"];
        tree.getp("b", true);
        tree["c"].clear();
        tree["c.d"];
    }
    EXPECT_EQ(keys_of(tree), (Keys{"a", "b", "c"}));
}

TEST(VPropstructErase, KeepsTheOthersInOrder)
{
    VPropstruct tree = abc();
    EXPECT_TRUE(tree.erase("b"));
    EXPECT_EQ(keys_of(tree), (Keys{"a", "c"}));
    EXPECT_EQ(tree["c"].get<int>(), 3);
    EXPECT_FALSE(tree.erase("b"));
    EXPECT_FALSE(tree.erase("A"));
    EXPECT_EQ(tree.size(), 2u);
    EXPECT_TRUE(tree.erase("c"));
    EXPECT_TRUE(tree.erase("a"));
    EXPECT_TRUE(tree.empty());
    EXPECT_FALSE(tree.erase("a"));
}

TEST(VPropstructErase, TakesAKeyAndNoPath)
{
    VPropstruct tree;
    tree["a.b"] = 1;
    EXPECT_FALSE(tree.erase("a.b"));
    EXPECT_EQ(tree["a.b"].get<int>(), 1);
}

TEST(VPropstructErase, ReleasesTheValue)
{
    VPropstruct tree = abc();
    const VProp copy(tree["b"]);
    EXPECT_FALSE(copy.lock());
    EXPECT_TRUE(tree.erase("b"));
    EXPECT_TRUE(copy.lock());
}

TEST(VPropstructErase, MovesTheOthersWithTheirAttachmentsAndLocks)
{
    VPropstruct tree = abc();
    tree["c"].set_info(prop_test::attachment(5));
    EXPECT_TRUE(tree["c"].lock());
    const void* const address = tree["c"].value_ptr();
    EXPECT_TRUE(tree.erase("a"));
    EXPECT_EQ(tree["c"].value_ptr(), address);
    EXPECT_EQ(prop_test::number_of(tree["c"]), 5);
    EXPECT_NE(VProp(tree["c"]).value_ptr(), address) << "still locked";
}

TEST(VPropstructErase, ByIteratorIsThatOfTheVector)
{
    VPropstruct tree = abc();
    tree.erase(tree.begin());
    EXPECT_EQ(keys_of(tree), (Keys{"b", "c"}));
}

TEST(VPropstructKey, IsNoPath)
{
    VPropstruct tree;
    tree["a.b"] = 1;
    EXPECT_FALSE(tree.has_key("a.b"));
    EXPECT_EQ(tree.find("a.b"), tree.end());
    tree.emplace_back("a.b", VProp(2));
    EXPECT_TRUE(tree.has_key("a.b"));
    EXPECT_EQ(tree["a.b"].get<int>(), 1) << "a path does not see it";
}

TEST(VPropstructCopy, SharesTheValuesAndDropsAttachments)
{
    VPropstruct tree = abc();
    tree["a"].set_info(prop_test::attachment(1));
    const VPropstruct copy(tree);
    EXPECT_EQ(keys_of(copy), (Keys{"a", "b", "c"}));
    EXPECT_EQ(copy.at(0).second.value_ptr(), static_cast<const VPropstruct&>(tree).at(0).second.value_ptr());
    EXPECT_EQ(prop_test::number_of(copy.at(0).second), 0);
    tree["a"].get<int>() = 7;
    EXPECT_EQ(copy.at(0).second.get<int>(), 1);
}

TEST(VPropstructCopy, ClonesLockedValues)
{
    VPropstruct tree = abc();
    EXPECT_TRUE(tree["a"].lock());
    VPropstruct copy;
    copy["old"] = 1;
    copy = tree;
    EXPECT_EQ(keys_of(copy), (Keys{"a", "b", "c"}));
    EXPECT_NE(copy["a"].value_ptr(), tree["a"].value_ptr());
    EXPECT_EQ(copy["a"].get<int>(), 1);
}

TEST(VPropstructCopy, OfItselfChangesNothing)
{
    VPropstruct tree = abc();
    const VPropstruct& alias = tree;
    tree = alias;
    EXPECT_EQ(keys_of(tree), (Keys{"a", "b", "c"}));
    EXPECT_EQ(tree["b"].get<int>(), 2);
}

TEST(VPropstructMove, TakesTheMembersAsTheyAre)
{
    VPropstruct tree = abc();
    tree["a"].set_info(prop_test::attachment(1));
    EXPECT_TRUE(tree["a"].lock());
    const void* const address = tree["a"].value_ptr();
    VPropstruct moved(std::move(tree));
    EXPECT_EQ(moved["a"].value_ptr(), address);
    EXPECT_EQ(prop_test::number_of(moved["a"]), 1);
    VPropstruct assigned = abc();
    assigned = std::move(moved);
    EXPECT_EQ(assigned["a"].value_ptr(), address);
    EXPECT_EQ(prop_test::number_of(assigned["a"]), 1);
    EXPECT_EQ(keys_of(assigned), (Keys{"a", "b", "c"}));
}

TEST(VPropstructAccess, WritesMakeAndReadsDoNot)
{
    VPropstruct tree;
    EXPECT_TRUE(tree["new"].empty());
    EXPECT_TRUE(tree.has_key("new"));
    const VPropstruct& constant = tree;
    EXPECT_VELA_ERROR_IN(constant["missing"], "VPropstruct::getp", "sources/props", -1,
                         "Struct member 'missing' does not exist!");
    EXPECT_VELA_ERROR(constant.getp("missing"), -1, "Struct member 'missing' does not exist!");
    EXPECT_VELA_ERROR(tree.getp("missing", false), -1, "Struct member 'missing' does not exist!");
    EXPECT_EQ(tree.size(), 1u);
    EXPECT_TRUE(tree.getp("made", true).empty());
    EXPECT_EQ(tree.size(), 2u);
    EXPECT_EQ(&constant["made"], &tree.at(1).second);
    EXPECT_EQ(&constant.getp("made"), &tree.at(1).second);
}

TEST(VPropstructAccess, WalksIntoItsMembers)
{
    VPropstruct tree;
    tree["a.b{1}(2).c"] = 7;
    const VPropstruct& constant = tree;
    EXPECT_EQ(constant["a.b{1}(2).c"].get<int>(), 7);
    EXPECT_EQ(constant.getp("a").getp("b{1}").getp("(2).c").get<int>(), 7);
}

TEST(VPropstructAccess, StartsWithAMember)
{
    VPropstruct tree = abc();
    EXPECT_VELA_ERROR_IN(tree["{1}"], "VPropstruct::getp", "sources/props", -1,
                         "Expected path ...'{1}' to start with struct member!");
    EXPECT_VELA_ERROR_IN(tree.getp("(1).a", true), "VPropstruct::getp", "sources/props", -1,
                         "Expected path ...'(1).a' to start with struct member!");
    EXPECT_VELA_ERROR_IN(tree.getp("{0}{1}.a", false), "VPropstruct::getp", "sources/props", -1,
                         "Expected path ...'{0}{1}.a' to start with struct member!");
    EXPECT_EQ(tree.size(), 3u);
}

TEST(VPropstructAccess, NeedsAPath)
{
    VPropstruct tree = abc();
    EXPECT_VELA_ERROR_IN(tree[""], "_s_split", "sources/props", -1, "Error parsing prop path: empty path!");
    EXPECT_VELA_ERROR_IN(static_cast<const VPropstruct&>(tree).getp(""), "_s_split", "sources/props", -1,
                         "Error parsing prop path: empty path!");
    EXPECT_VELA_ERROR_IN(tree["{-1}"], "_s_getpos", "sources/props", -1,
                         "Invalid index '-1' specified in segment '{-1}'!");
    EXPECT_EQ(tree.size(), 3u);
}

TEST(VPropstructAccess, OfManyMembersFindsEachOfThem)
{
    VPropstruct tree;
    for (int i = 0; i < 500; ++i)
        tree["m" + std::to_string(i)] = i;
    ASSERT_EQ(tree.size(), 500u);
    for (int i = 0; i < 500; ++i)
        EXPECT_EQ(tree["m" + std::to_string(i)].get<int>(), i);
}

}

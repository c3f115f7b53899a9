#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

/// Looks at a value when it ends.
struct VPropInfo
{
    explicit VPropInfo(const VProp& value) : watched(value) {}
    ~VPropInfo()
    {
        const VProp copy(watched);
        was_empty = copy.empty();
    }
    VPropInfo(const VPropInfo&) = delete;
    VPropInfo& operator=(const VPropInfo&) = delete;

    const VProp& watched;
    static bool was_empty;
};
bool VPropInfo::was_empty = false;

namespace {

VProp tree_with_inner_struct()
{
    VProp tree;
    tree["a.x"] = 1;
    tree["a.y"] = 2;
    tree["b"] = 3;
    return tree;
}

VProp inner_struct()
{
    VProp inner;
    inner["x"] = 1;
    inner["y"] = 2;
    return inner;
}

TEST(PropAliasing, AValueTakesItsOwnMember)
{
    VProp tree = tree_with_inner_struct();
    tree = tree["a"];
    EXPECT_EQ(tree, inner_struct());
}

TEST(PropAliasing, AStructTakesTheStructOfItsOwnMember)
{
    VProp tree = tree_with_inner_struct();
    tree.get<VPropstruct>() = tree["a"].get<VPropstruct>();
    EXPECT_EQ(tree, inner_struct());
    tree = tree_with_inner_struct();
    tree.get<VPropstruct>() = std::move(tree["a"].get<VPropstruct>());
    EXPECT_EQ(tree, inner_struct());
}

TEST(PropAliasing, AnArrayTakesTheArrayOfItsOwnElement)
{
    VProp cells;
    cells["{0}{1}"] = 5;
    cells["{1}"] = 6;
    auto& array = cells.get<VProparray<VProp>>();
    array = array[0].get<VProparray<VProp>>();
    EXPECT_EQ(array.get_size(true), (std::vector<std::size_t>{1, 2}));
    EXPECT_EQ(cells["{1}"].get<int>(), 5);

    VProp structs;
    structs["(0).a(1).b"] = 7;
    structs["(1).c"] = 8;
    auto& elements = structs.get<VProparray<VPropstruct>>();
    elements = elements[0]["a"].get<VProparray<VPropstruct>>();
    EXPECT_EQ(structs["(1).b"].get<int>(), 7);
}

TEST(PropAliasing, AStructTakesItself)
{
    VProp tree = inner_struct();
    auto& members = tree.get<VPropstruct>();
    const auto& same = members;
    members = same;
    EXPECT_EQ(tree, inner_struct());
}

TEST(PropAliasing, AValueTakesACopyOfItself)
{
    VProp tree = inner_struct();
    tree["x"] = VProp(tree);
    EXPECT_EQ(tree["x"], inner_struct());
    EXPECT_EQ(tree["x.x"].get<int>(), 1);
}

TEST(PropAliasing, AValueThatIsClearedIsEmptyForTheEndOfItsMembers)
{
    VProp tree = inner_struct();
    tree["x"].set_info(boost::make_shared<VPropInfo>(tree));
    tree.clear();
    EXPECT_TRUE(VPropInfo::was_empty);
}

template <class T, class = void>
constexpr bool has_subscript_by_number = false;
template <class T>
constexpr bool has_subscript_by_number<T, std::void_t<decltype(std::declval<T&>()[0])>> = true;

TEST(PropAliasing, TheNumber0IsNoPath)
{
    EXPECT_FALSE(has_subscript_by_number<VProp>);
    EXPECT_FALSE(has_subscript_by_number<VPropstruct>);
}

} // namespace

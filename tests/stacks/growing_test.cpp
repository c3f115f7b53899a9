// Stacks that grow while somebody looks at their planes.
#include <VelaStacks/VStackInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stacks/open_info.h"
#include "support/expect_bad_cast.h"

#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <typeinfo>
#include <utility>

using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;

namespace {

using Image = Ome::Image<Json::SignalingReference>;

Json::Value& plane_list(OpenInfo& info)
{
    return info.meta_data().pixels_content.slot().at("ome:Plane");
}

TEST(GrowingStack, KeepsWhatIsWrittenIntoItsPlanes)
{
    OpenInfo info({4, 5, 1, 0});
    Image& image = info.meta_data();
    for (std::uint64_t frame = 0; frame < 20; ++frame)
    {
        info.set_variable_size(frame + 1);
        image.planes[frame]->delta_t = static_cast<double>(frame + 1);
    }
    ASSERT_EQ(image.planes.size(), 20U);
    for (std::uint64_t frame = 0; frame < 20; ++frame)
    {
        EXPECT_EQ(image.planes[frame]->delta_t.get(), static_cast<double>(frame + 1));
        EXPECT_EQ(image.planes[frame]->the_t.get(), static_cast<std::int64_t>(frame));
    }
    EXPECT_EQ(plane_list(info).count(), 20U);
}

TEST(GrowingStack, PutsPlanesThatWereLookedAtBackIntoTheirPlaces)
{
    OpenInfo info({4, 5, 3});
    Image& image = info.meta_data();
    image.planes[1]->the_z = 7;
    image.planes[2]->structure.get().erase("PositionX");
    info.set_variable_size(4);
    EXPECT_EQ(image.planes[1]->the_z.get(), 1);
    EXPECT_TRUE(image.planes[2]->structure.get().contains("PositionX"));
    image.planes[1]->the_z.slot() = "text";
    EXPECT_BAD_CAST(info.set_variable_size(5));
    EXPECT_EQ(image.planes.size(), 1U) << "the planes before the one that fails";
}

TEST(GrowingStack, MovesPlanesBehindOthersThatGrow)
{
    OpenInfo info({4, 5, 2, 1});
    Image& image = info.meta_data();
    EXPECT_EQ(image.planes[1]->the_z.get(), 1);
    info.set_variable_size(2);
    EXPECT_EQ(image.planes[1]->the_z.get(), 0);
    EXPECT_EQ(image.planes[1]->the_t.get(), 1);
}

/// One reads what is not set, for which the tree then has the empty text.
void read_unset_texts(Image& image)
{
    image.planes[0]->delta_t_unit.get();
    image.channels[0]->acquisition_mode.get();
    image.channels[0]->light_source_settings.add()->wavelength_unit.get();
}

TEST(GrowingStack, DoesNotMindUnsetTextsThatWereRead)
{
    OpenInfo info({4, 5, 2});
    Image& image = info.meta_data();
    read_unset_texts(image);
    info.set_variable_size(3);
    ASSERT_EQ(image.planes.size(), 3U);
    EXPECT_TRUE(image.planes[0]->delta_t_unit.is_null());
    EXPECT_TRUE(image.channels[0]->acquisition_mode.is_null());
    EXPECT_TRUE(image.channels[0]->light_source_settings[0]->wavelength_unit.is_null());
    EXPECT_EQ(plane_list(info).filled_count(), 1U) << "planes that nobody has seen are not made for it";
}

TEST(GrowingStack, LaysOutAllPlanesOnlyOnceSomebodyHasGotTheirList)
{
    OpenInfo info({4, 5, 1, 0});
    for (std::uint64_t frame = 0; frame < 6; ++frame)
    {
        info.set_variable_size(frame + 1);
        info.meta_data().planes[frame]->delta_t = 1.5;
    }
    info.set_variable_size(6);
    plane_list(info).at(2).at("TheT") = 77;
    info.set_variable_size(7);
    EXPECT_EQ(plane_list(info).at(2).at("TheT"), Json::Value(77)) << "nobody has looked at this plane";
    plane_list(info).as_list();
    info.set_variable_size(8);
    EXPECT_EQ(plane_list(info).at(2).at("TheT"), Json::Value(2));
    plane_list(info).at(2).at("TheT") = 77;
    info.set_variable_size(9);
    EXPECT_EQ(plane_list(info).at(2).at("TheT"), Json::Value(2));
}

/// Puts an element of its own in the place of one in the middle.
void replace_in_the_middle(Json::Value::List& list)
{
    if (list.size() < 3)
        return;
    const auto middle = std::next(list.begin(), static_cast<std::ptrdiff_t>(list.size() / 2));
    list.emplace(list.erase(middle));
}

/// Whether every plane is found, and in its place.
bool has_all_planes(OpenInfo& info)
{
    Image& image = info.meta_data();
    for (std::size_t plane = 0; plane < image.planes.size(); ++plane)
        if (image.planes[plane]->the_t.get() != static_cast<std::int64_t>(plane) ||
            &image.planes[plane]->structure.slot() != &plane_list(info).at(plane))
            return false;
    return image.planes.size() == info.get_sizes().back();
}

TEST(GrowingStack, FindsItsPlanesWhereTheTreeHasOthersInTheMiddle)
{
    OpenInfo info({4, 5, 1, 0});
    info.set_variable_size(6);
    replace_in_the_middle(plane_list(info).as_list());
    info.set_variable_size(7);
    EXPECT_TRUE(has_all_planes(info));
}

TEST(GrowingStack, FindsItsPlanesWhereSomebodyHoldsTheirList)
{
    OpenInfo info({4, 5, 1, 0});
    info.set_variable_size(6);
    Json::Value::List& list = *plane_list(info).if_list();
    for (std::uint64_t size = 7; size < 10; ++size)
    {
        info.set_variable_size(size);
        EXPECT_TRUE(has_all_planes(info)) << size;
        replace_in_the_middle(list);
    }
    info.set_variable_size(10);
    EXPECT_TRUE(has_all_planes(info));
    replace_in_the_middle(plane_list(info).fill_list(10));
    info.set_variable_size(11);
    EXPECT_TRUE(has_all_planes(info));
}

TEST(GrowingStack, FindsItsPlanesWhereTheTreeHasAnotherList)
{
    OpenInfo info({4, 5, 1, 0});
    info.set_variable_size(6);
    EXPECT_TRUE(has_all_planes(info));
    const Json::Value planes(plane_list(info));
    plane_list(info) = Json::Value();
    plane_list(info) = planes;
    info.set_variable_size(7);
    EXPECT_TRUE(has_all_planes(info));
    Json::Value moved(std::move(plane_list(info)));
    plane_list(info) = std::move(moved);
    info.set_variable_size(8);
    EXPECT_TRUE(has_all_planes(info));
}

TEST(CreatedStack, DoesNotMindUnsetTextsThatWereRead)
{
    OpenInfo info({4, 5, 2});
    read_unset_texts(info.meta_data());
    info.create(Sizes{4, 5, 3}, vela_dt_uint8);
    EXPECT_EQ(info.meta_data().planes.size(), 3U);
    read_unset_texts(info.meta_data());
    const OpenInfo source({4, 5, 7});
    info.create(&source, 0);
    EXPECT_EQ(info.meta_data().planes.size(), 7U);
    EXPECT_TRUE(info.meta_data().planes[0]->delta_t_unit.is_null());
}

/// One stack that grows and one that gets all its sizes anew, and what is done to both.
class Pair
{
public:
    explicit Pair(unsigned seed) : random(seed)
    {
        const std::vector<Sizes> starts{{2, 2, 0}, {2, 2, 1, 0}, {2, 2, 3, 0}, {2, 2, 1, 2, 0}, {2, 0}};
        const Sizes& start = starts[below(starts.size())];
        growing.create(start, vela_dt_uint8);
        anew.create(start, vela_dt_uint8);
    }

    std::string step()
    {
        const std::uint64_t choice = below(20);
        if (choice < 9)
            return grow(below(6) == 0 ? below(12) : growing.get_sizes().back() + below(3));
        if (choice < 15)
            return change_plane();
        if (choice < 18)
            return change_image();
        return below(2) == 0 ? change_tree() : replace_in_tree();
    }

    bool is_same()
    {
        return growing.meta_data().planes.size() == anew.meta_data().planes.size() &&
               Json::Value(growing.meta_data().structure.value()) == Json::Value(anew.meta_data().structure.value());
    }

private:
    std::uint64_t below(std::uint64_t end) { return std::uniform_int_distribution<std::uint64_t>(0, end - 1)(random); }

    template <class Change>
    std::string both(const std::string& what, Change change)
    {
        EXPECT_EQ(fails([&] { change(growing); }), fails([&] { change(anew); })) << what;
        return what;
    }

    template <class Call>
    static bool fails(Call call)
    {
        try
        {
            call();
        }
        catch (const std::bad_cast&)
        {
            return true;
        }
        return false;
    }

    std::string grow(std::uint64_t size)
    {
        Sizes sizes = anew.get_sizes();
        sizes.back() = size;
        const bool failed = fails([&] { growing.set_variable_size(size); });
        EXPECT_EQ(failed, fails([&] { anew.set_sizes(sizes); }));
        return "grow to " + std::to_string(size);
    }

    std::string change_plane()
    {
        if (growing.meta_data().planes.empty())
            return "";
        const std::uint64_t index = below(growing.meta_data().planes.size());
        const auto change = [this, index](const std::string& what, auto write)
        {
            return both("planes[" + std::to_string(index) + "] " + what,
                        [&](OpenInfo& info) { write(*info.meta_data().planes[index]); });
        };
        switch (below(6))
        {
        case 0:
            return change("look", [](auto& plane) { plane.the_z.value(); });
        case 1:
            return change("place", [](auto& plane) { plane.the_z = plane.the_t = 5; });
        case 2:
            return change("unit", [](auto& plane) { plane.position_x_unit.get(); });
        case 3:
            return change("erase", [](auto& plane) { plane.structure.get().erase("ExposureTime"); });
        case 4:
            return change("spoil", [](auto& plane) { plane.the_c.slot() = "text"; });
        default:
            return change("write", [](auto& plane) { plane.position_y = 2.0; });
        }
    }

    std::string change_image()
    {
        switch (below(5))
        {
        case 0:
            return both("add", [](OpenInfo& info) { info.meta_data().planes.add(); });
        case 1:
            return both("clear", [](OpenInfo& info) { info.meta_data().planes.clear(); });
        case 2:
            return both("order", [](OpenInfo& info) { info.meta_data().dimension_order = Ome::DimensionOrder::XYTCZ; });
        case 3:
            return both("offset", [](OpenInfo& info) { info.set_off(0, 3.0); });
        default:
            return both("sizes", [](OpenInfo& info) { info.meta_data().set_sizes({2, 2, 2, 2}); });
        }
    }

    std::string change_tree()
    {
        switch (below(3))
        {
        case 0:
            return both("look", [](OpenInfo& info) { plane_list(info).as_list(); });
        case 1:
            return both("reverse", [](OpenInfo& info) { plane_list(info).as_list().reverse(); });
        default:
            return both("insert", [](OpenInfo& info) { plane_list(info).as_list().emplace_front(); });
        }
    }

    /// Records of planes that are gone must not be asked before the planes are laid out again.
    std::string replace_in_tree()
    {
        const std::string what =
            below(2) == 0 ? both("middle", [](OpenInfo& info) { replace_in_the_middle(plane_list(info).as_list()); })
                          : both("list", [](OpenInfo& info) { plane_list(info) = Json::Value(plane_list(info)); });
        return what + "; " + grow(1 + below(12));
    }

    std::mt19937 random;
    OpenInfo growing;
    OpenInfo anew;
};

TEST(GrowingStack, IsWhatOneIsThatGetsItsSizesAnew)
{
    for (unsigned seed = 0; seed < 1000; ++seed)
    {
        Pair pair(seed);
        std::string history;
        for (int i = 0; i < 30; ++i)
        {
            history += pair.step() + "; ";
            ASSERT_TRUE(pair.is_same()) << "seed " << seed << ": " << history;
            ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << ": " << history;
        }
    }
}

}

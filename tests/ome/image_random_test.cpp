// Images that make planes and channels when somebody looks, held against one that makes them at once, through random
// calls of all kinds in random order.

#include "ome/eager_model.h"
#include "ome/record_fields.h"
#include "support/rounds.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <typeinfo>
#include <vector>

namespace {

using vela_test::EagerImage;
using vela_test::Image;
using vela_test::In;
using vela_test::Value;

/// Both images, and what is done to both.
class Pair
{
public:
    explicit Pair(unsigned seed) : random(seed) {}

    std::string step()
    {
        switch (below(14))
        {
        case 0:
        case 1:
        case 2:
            return set_sizes();
        case 3:
            return set_len();
        case 4:
        case 5:
        case 6:
            return set_off();
        case 7:
            return look_at_record();
        case 8:
            return look_at_tree();
        case 9:
            return write_plane();
        case 10:
            return set_pixels();
        case 11:
            return add();
        case 12:
            return clear();
        default:
            return lay_over_again();
        }
    }

    /// Copies are compared, so that nothing is filled.
    testing::AssertionResult is_same() const
    {
        if (image->planes.size() != model->planes.size() || image->channels.size() != model->channels.size())
            return testing::AssertionFailure() << image->planes.size() << " planes, expected " << model->planes.size();
        const Value copy(tree);
        return vela_test::same_tree(copy, model_tree);
    }

private:
    std::size_t below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(random); }

    template <class T>
    const T& one_of(const std::vector<T>& list)
    {
        return list[below(list.size())];
    }

    /// What both did: it has to fail in both or in none.
    template <class Library, class Model>
    std::string both(const std::string& what, Library library, Model eager)
    {
        const bool library_failed = fails(library);
        EXPECT_EQ(library_failed, fails(eager)) << what;
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

    std::string set_sizes()
    {
        const std::vector<std::size_t> sizes{4, 3, below(4) + 1, below(4) + 1, below(3) + 1};
        return both(
            "set_sizes " + std::to_string(sizes[2]) + " " + std::to_string(sizes[3]) + " " + std::to_string(sizes[4]),
            [&] { image->set_sizes(sizes); }, [&] { model->set_sizes(sizes); });
    }

    std::string set_len()
    {
        const std::size_t d = below(5);
        const double len = one_of<double>({0, 1, 0.005, 3, 12.5});
        if (is_channel(d))
            return "";
        return both(
            "set_len " + std::to_string(d) + " " + std::to_string(len), [&] { image->set_len(d, len); },
            [&] { model->set_len(d, len); });
    }

    std::string set_off()
    {
        const std::size_t d = below(5);
        const double off = one_of<double>({0.0, -0.0, 1, 2.5, -3, 100});
        if (is_channel(d))
            return "";
        return both(
            "set_off " + std::to_string(d) + " " + std::to_string(off), [&] { image->set_off(d, off); },
            [&] { model->set_off(d, off); });
    }

    bool is_channel(std::size_t d) const
    {
        const std::string* const order = image->dimension_order.value().if_string();
        return (order == nullptr ? std::string("XYZTC") : *order)[d] == 'C';
    }

    std::string look_at_record()
    {
        if (image->planes.empty())
            return "";
        const std::size_t index = below(image->planes.size());
        EXPECT_TREE(image->planes[index]->the_z.value(), model->planes[index]->slot(plane_row("TheZ")));
        return "planes[" + std::to_string(index) + "]";
    }

    std::string look_at_tree()
    {
        const std::size_t count = planes_of(tree).count();
        EXPECT_EQ(count, planes_of(model_tree).count());
        if (count == 0)
            return "";
        const std::size_t index = below(count);
        EXPECT_TREE(planes_of(tree).at(index), planes_of(model_tree).at(index));
        return "element " + std::to_string(index);
    }

    std::string write_plane()
    {
        if (image->planes.empty())
            return "";
        const std::size_t index = below(image->planes.size());
        const Value number = one_of<Value>({Value(), 0.0, -0.0, 7});
        return both(
            "planes[" + std::to_string(index) + "]->position_x", [&] { image->planes[index]->position_x = number; },
            [&] { model->planes[index]->assign(plane_row("PositionX"), number); });
    }

    /// An order, or through the tree what a size, an increment or a unit has to be.
    std::string set_pixels()
    {
        if (below(2) == 0)
        {
            const Value order = one_of<Value>({"XYZCT", "XYTCZ", "XYCZT"});
            return both(
                "order", [&] { image->dimension_order = order; },
                [&] { model->assign(vela_test::image_table().row(In::pixels, "DimensionOrder"), order); });
        }
        static const std::vector<std::pair<std::string, std::vector<Value>>> slots{
            {"PhysicalSizeXUnit", {"m", "nm", Value(), 5}},
            {"PhysicalSizeZUnit", {"m", Value(), "light year"}},
            {"TimeIncrement", {Value(), 0.5, -0.5, -2, 10}},
            {"TimeIncrementUnit", {Value(), "s", "min", "m"}},
            {"PhysicalSizeZ", {1, 0.25, -1.5}},
        };
        const auto& [key, values] = one_of(slots);
        const Value value = one_of(values);
        pixels_of(tree).at(key) = value;
        pixels_of(model_tree).at(key) = value;
        return key + " " + vela_test::show(value);
    }

    std::string add()
    {
        const Value element = below(2) == 0 ? Value() : Value(Value::Object{{"TheZ", 9}});
        if (below(2) == 0)
            return both(
                "planes.add", [&] { image->planes.add(element); }, [&] { model->planes.add(element); });
        return both(
            "channels.add", [&] { image->channels.add(); }, [&] { model->channels.add(); });
    }

    std::string clear()
    {
        image->planes.clear();
        model->planes.clear();
        return "planes.clear";
    }

    /// New records over the same trees, or over copies of them.
    std::string lay_over_again()
    {
        const bool copied = below(2) == 0;
        image.reset();
        model.reset();
        if (copied)
        {
            Value copy(tree);
            tree = std::move(copy);
        }
        const bool refused = fails([&] { image = std::make_unique<Image>(tree); });
        EXPECT_EQ(refused, fails([&] { model = std::make_unique<EagerImage>(model_tree); }));
        if (refused)
        {
            tree = Value();
            model_tree = Value();
            image = std::make_unique<Image>(tree);
            model = std::make_unique<EagerImage>(model_tree);
        }
        return copied ? "laid over a copy" : "laid over again";
    }

    static Value& pixels_of(Value& root) { return root.at("").at("ome:Pixels"); }
    static Value& planes_of(Value& root) { return pixels_of(root).at("").at("ome:Plane"); }
    static std::size_t plane_row(const std::string& key) { return vela_test::plane_table().row(In::own, key); }

    std::mt19937 random;
    Value tree;
    Value model_tree;
    std::unique_ptr<Image> image = std::make_unique<Image>(tree);
    std::unique_ptr<EagerImage> model = std::make_unique<EagerImage>(model_tree);
};

TEST(OmeImageRandom, CallsInAnyOrderGiveWhatMakingEverythingAtOnceGives)
{
    for (unsigned seed = 0; seed < vela_test::rounds(1500); ++seed)
    {
        Pair pair(seed);
        std::string history;
        for (int i = 0; i < 20; ++i)
        {
            history += pair.step() + "; ";
            ASSERT_TRUE(pair.is_same()) << "seed " << seed << ": " << history;
            ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << ": " << history;
        }
    }
}

} // namespace

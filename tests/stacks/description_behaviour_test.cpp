/// What can be seen of a description: creation, sizes, types, lock and axis checks.
#include "open_info.h"
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"
#include "support/slot_of.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>

namespace {

using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;
using vela_test::Texts;

constexpr const char* folder = "sources/stacks";

TEST(DescriptionBehaviour, InterfaceIsAVirtualBaseSoOneObjectHasOne)
{
    struct Other : virtual VStackInfoInterface
    {
    };
    struct Both : Other, VStackInfoImp
    {
    };
    static_assert(std::is_abstract_v<VStackInfoInterface>);
    static_assert(std::has_virtual_destructor_v<VStackInfoImp>);
    static_assert(std::is_convertible_v<Both*, VStackInfoInterface*>);
    static_assert(sizeof(VStackInfoInterface) == sizeof(void*), "it holds no data");
}

#ifdef VELA_TEST_HAS_SLOTS
TEST(DescriptionBehaviour, OperationsKeepTheirOrder)
{
    using I = VStackInfoInterface;
    using S = const Sizes&;
    using D = const Doubles&;
    using std::uint64_t;
    const std::ptrdiff_t slots[] = {
        slot_of(static_cast<void (I::*)(S, vela_dt)>(&I::create)),
        slot_of(static_cast<void (I::*)(const I*, vela_dt)>(&I::create)),
        slot_of(static_cast<void (I::*)(const I*, const VStackRegion&)>(&I::create)),
        slot_of(&I::set_info),
        slot_of(&I::set_name),
        slot_of(&I::set_acquisition_date),
        slot_of(&I::set_description),
        slot_of(static_cast<void (I::*)(uint64_t, double)>(&I::set_len)),
        slot_of(static_cast<void (I::*)(D)>(&I::set_len)),
        slot_of(static_cast<void (I::*)(uint64_t, double)>(&I::set_off)),
        slot_of(static_cast<void (I::*)(D)>(&I::set_off)),
        slot_of(&I::set_labels),
        slot_of(&I::set_stack_position),
        slot_of(&I::set_col_labels),
        slot_of(&I::set_col_positions),
        slot_of(&I::set_label),
        slot_of(&I::set_units),
        slot_of(&I::set_data_units),
        slot_of(&I::get_size),
        slot_of(&I::get_number_of_elements),
        slot_of(&I::get_rank),
        slot_of(&I::get_sizes),
        slot_of(&I::get_dt),
        slot_of(&I::get_description),
        slot_of(&I::get_name),
        slot_of(&I::get_lengths),
        slot_of(&I::get_offsets),
        slot_of(&I::get_labels),
        slot_of(&I::get_col_labels),
        slot_of(&I::get_col_positions),
        slot_of(&I::get_col_position),
        slot_of(&I::is_equidistant),
        slot_of(&I::get_stack_position),
        slot_of(&I::get_dimension_size),
        slot_of(&I::get_length),
        slot_of(&I::get_offset),
        slot_of(&I::get_label),
        slot_of(&I::get_units),
        slot_of(&I::get_data_units),
        slot_of(&I::get_meta_data_string),
        slot_of(&I::meta_data),
    };
    for (std::size_t i = 0; i < std::size(slots); ++i)
        EXPECT_EQ(slots[i], static_cast<std::ptrdiff_t>(i));
    EXPECT_EQ(std::size(slots), 41u) << "and the destructor";
}
#endif

TEST(DescriptionBehaviour, FreshOneHasNoAxesAndOneElement)
{
    VStackInfoImp info;
    EXPECT_EQ(info.get_rank(), 0u);
    EXPECT_EQ(info.get_number_of_elements(), 1u);
    EXPECT_EQ(info.get_size(0), 0u);
    EXPECT_EQ(info.get_dt(), 0);
    EXPECT_EQ(info.get_name(), "");
    EXPECT_EQ(info.get_description(), "");
    EXPECT_EQ(info.get_meta_data_string(), "");
    EXPECT_TRUE(info.get_sizes().empty());
    EXPECT_EQ(info.get_data_units(), si::value());
    EXPECT_TRUE(info.get_data_units().is_dimensionless());
    EXPECT_FALSE(OpenInfo().locked);
}

TEST(DescriptionBehaviour, OneOfARankHasAxesOfSizeZeroWithDefaults)
{
    for (const std::uint64_t rank : {1u, 3u, 5u, 6u, 20u})
    {
        const VStackInfoImp info(rank);
        EXPECT_EQ(info.get_rank(), rank);
        EXPECT_EQ(info.get_number_of_elements(), 0u);
        EXPECT_EQ(info.get_sizes(), Sizes(rank, 0));
        EXPECT_EQ(info.get_lengths(), Doubles(rank, 1.0));
        EXPECT_EQ(info.get_offsets(), Doubles(rank, 0.0));
        EXPECT_EQ(info.get_labels(), Texts(rank));
        EXPECT_EQ(info.get_dt(), 0);
        for (std::uint64_t axis = 0; axis < rank; ++axis)
        {
            EXPECT_TRUE(info.is_equidistant(axis));
            EXPECT_TRUE(info.get_col_labels(axis).empty());
            EXPECT_TRUE(info.get_col_positions(axis).empty());
            EXPECT_EQ(info.get_units(axis), si::value());
        }
    }
}

TEST(DescriptionBehaviour, ConstructorWithATypeReversesTheTableOfTypes)
{
    const std::pair<Ome::Type, vela_dt> types[] = {
        {Ome::Type::uint8, 1},
        {Ome::Type::int8, 2},
        {Ome::Type::uint16, 4},
        {Ome::Type::int16, 8},
        {Ome::Type::uint32, 16},
        {Ome::Type::int32, 32},
        {Ome::Type::float32, 64},
        {Ome::Type::float64, 128},
        {Ome::Type::complex64, 0x40000040},
        {Ome::Type::complex128, 0x40000080},
    };
    for (const auto& [type, dt] : types)
    {
        VStackInfoImp info(type, Sizes{3, 2}, Ome::DimensionOrder::XYCZT);
        EXPECT_EQ(info.get_dt(), dt);
        EXPECT_EQ(info.get_number_of_elements(), 6u);
        EXPECT_EQ(info.meta_data().type.get(), type);
        EXPECT_EQ(info.meta_data().dimension_order.get(), Ome::DimensionOrder::XYCZT);
        VStackInfoImp created;
        created.create(Sizes{3, 2}, dt);
        EXPECT_EQ(created.get_dt(), dt);
        EXPECT_EQ(created.meta_data().type.get(), type);
    }
    EXPECT_THROW_TEXT(VStackInfoImp(Ome::Type::bit, Sizes{1}, Ome::DimensionOrder::XYZTC), std::invalid_argument,
                      "Unsupported stack type");
    EXPECT_THROW_TEXT(VStackInfoImp(Ome::Type::uint8, Sizes(6, 1), Ome::DimensionOrder::XYZTC), std::invalid_argument,
                      "Unsupported number of sizes");
}

TEST(DescriptionBehaviour, UnsupportedTypeIsStoredAndThenRefused)
{
    for (const vela_dt dt : {vela_dt_uint64, vela_dt_int64, vela_dt_logical, vela_dt_rgb, vela_dt_packed_color,
                             vela_dt_char, vela_dt_cell, vela_dt_complex | vela_dt_uint8, vela_dt_array | 1, 3, -1})
    {
        OpenInfo info(Sizes{4, 3});
        EXPECT_THROW_TEXT(info.create(Sizes{7}, dt), std::invalid_argument, "Unsupported data type");
        EXPECT_EQ(info.get_dt(), dt);
        EXPECT_EQ(info.get_sizes(), (Sizes{4, 3}));
        EXPECT_EQ(info.meta_data().type.get(), Ome::Type::uint8);
        OpenInfo other(2);
        EXPECT_THROW_TEXT(other.set_type(dt), std::invalid_argument, "Unsupported data type");
        EXPECT_EQ(other.get_dt(), dt);
        EXPECT_TRUE(other.meta_data().type.is_null());
    }
}

TEST(DescriptionBehaviour, TypeZeroIsStoredAndLeavesTheRecord)
{
    OpenInfo info(Sizes{4});
    info.create(Sizes{3}, 0);
    EXPECT_EQ(info.get_dt(), 0);
    EXPECT_EQ(info.get_sizes(), Sizes{3});
    EXPECT_EQ(info.meta_data().type.get(), Ome::Type::uint8);
}

TEST(DescriptionBehaviour, VariableTypeIsSetOnce)
{
    OpenInfo info(1);
    info.set_variable_type(0);
    info.set_variable_type(vela_dt_int16);
    EXPECT_EQ(info.get_dt(), 8);
    EXPECT_EQ(info.meta_data().type.get(), Ome::Type::int16);
    for (const vela_dt dt : {vela_dt_int16, vela_dt_double, 0})
        EXPECT_VELA_ERROR_IN(info.set_variable_type(dt), "VStackInfoImp::set_variable_type", folder, -1,
                             "The type is already set to 8.");
    EXPECT_EQ(info.get_dt(), 8);
    info.set_type(0x40000080);
    EXPECT_VELA_ERROR(info.set_variable_type(1), -1, "The type is already set to 1073741952.");
    OpenInfo other(1);
    EXPECT_THROW_TEXT(other.set_variable_type(vela_dt_int64), std::invalid_argument, "Unsupported data type");
    EXPECT_VELA_ERROR(other.set_variable_type(1), -1, "The type is already set to 8192.");
}

TEST(DescriptionBehaviour, VariableSizeReplacesTheLastOne)
{
    OpenInfo info(3);
    info.set_sizes({4, 3, 0});
    info.set_variable_size(5);
    EXPECT_EQ(info.get_sizes(), (Sizes{4, 3, 5}));
    EXPECT_EQ(info.get_number_of_elements(), 60u);
    EXPECT_VELA_ERROR(info.set_variable_size(UINT64_MAX), -1, "The product exceeds the maximum size.");
    EXPECT_EQ(info.get_sizes(), (Sizes{4, 3, 5}));
}

TEST(DescriptionBehaviour, ProductsOfSizesAreCountedUpToTheLast)
{
    constexpr std::uint64_t k32 = std::uint64_t{1} << 32;
    struct Case
    {
        Sizes sizes;
        bool fits;
        std::uint64_t product;
    };
    const Case cases[] = {
        {{}, true, 1},
        {{0}, true, 0},
        {{7}, true, 7},
        {{k32, k32 - 1}, true, k32 * (k32 - 1)},
        {{k32 + 1, k32 - 1}, true, UINT64_MAX},
        {{k32, k32}, false, 0},
        {{0, UINT64_MAX, UINT64_MAX}, true, 0},
        {{UINT64_MAX, 0, UINT64_MAX}, true, 0},
        {{UINT64_MAX, 2, 0}, false, 0},
        {{UINT64_MAX, 1, 0}, true, 0},
        {{2, 3, 5, 7, 11, 0, 13}, true, 0},
    };
    for (const Case& c : cases)
    {
        OpenInfo info(Sizes{9, 9});
        if (c.fits)
        {
            info.set_sizes(c.sizes);
            EXPECT_EQ(info.get_number_of_elements(), c.product);
            EXPECT_EQ(info.get_sizes(), c.sizes);
            EXPECT_EQ(info.get_rank(), c.sizes.size());
            continue;
        }
        EXPECT_VELA_ERROR_IN(info.create(c.sizes, vela_dt_double), "`anonymous-namespace'::get_product", folder, -1,
                             "The product exceeds the maximum size.");
        EXPECT_EQ(info.get_sizes(), (Sizes{9, 9}));
        EXPECT_EQ(info.get_number_of_elements(), 81u);
        EXPECT_EQ(info.get_dt(), vela_dt_double);
    }
}

TEST(DescriptionBehaviour, SixSizesFailUnlessOneIsZero)
{
    OpenInfo info(Sizes{4, 3});
    EXPECT_THROW_TEXT(info.create(Sizes{1, 2, 1, 3, 1, 1}, vela_dt_int8), std::invalid_argument,
                      "Unsupported number of sizes");
    EXPECT_EQ(info.get_rank(), 6u);
    EXPECT_EQ(info.get_number_of_elements(), 6u);
    EXPECT_EQ(info.get_lengths(), Doubles(6, 1.0));
    EXPECT_EQ(info.meta_data().size_x.get(), 4);
    info.create(Sizes{1, 2, 1, 3, 1, 0}, vela_dt_int8);
    EXPECT_EQ(info.get_number_of_elements(), 0u);
    EXPECT_EQ(info.get_rank(), 6u);
}

TEST(DescriptionBehaviour, SizeThatTheRecordCannotHoldIsSetAndThenRefused)
{
    OpenInfo info(Sizes{4, 3});
    EXPECT_BAD_CAST(info.create(Sizes{std::uint64_t{1} << 63}, vela_dt_int8));
    EXPECT_EQ(info.get_sizes(), Sizes{std::uint64_t{1} << 63});
    EXPECT_EQ(info.get_number_of_elements(), std::uint64_t{1} << 63);
    EXPECT_EQ(info.get_dt(), vela_dt_int8);
    EXPECT_EQ(info.get_length(0), 1.0);
}

TEST(DescriptionBehaviour, BytesFollowFromTypeAndElements)
{
    const OpenInfo info(Sizes{4, 3});
    const std::pair<vela_dt, std::uint64_t> sizes[] = {{0, 12},
                                                       {vela_dt_uint8, 12},
                                                       {vela_dt_int16, 24},
                                                       {vela_dt_rgb, 36},
                                                       {vela_dt_double, 96},
                                                       {vela_dt_uint64, 96},
                                                       {vela_dt_complex | vela_dt_double, 192},
                                                       {vela_dt_char, 0},
                                                       {vela_dt_array | vela_dt_uint8, 0},
                                                       {3, 0}};
    for (const auto& [dt, bytes] : sizes)
        EXPECT_EQ(info.get_size(dt), bytes) << dt;
    EXPECT_EQ(VStackInfoImp(3).get_size(vela_dt_double), 0u);
    EXPECT_EQ(VStackInfoImp().get_size(vela_dt_double), 8u);
}

TEST(DescriptionBehaviour, AxesThatStayKeepWhatIsKnownOfThem)
{
    OpenInfo info(Sizes{4, 3});
    info.set_len({8.0, 6.0});
    info.set_off({1.0, 2.0});
    info.set_labels({"X", "Y"});
    info.set_units(1, si::value("K"));
    info.set_col_labels(0, {"a", "b", "c", "d"});
    info.set_sizes({5, 3, 2});
    EXPECT_EQ(info.get_lengths(), (Doubles{8.0, 6.0, 1.0}));
    EXPECT_EQ(info.get_offsets(), (Doubles{1.0, 2.0, 0.0}));
    EXPECT_EQ(info.get_labels(), (Texts{"X", "Y", ""}));
    EXPECT_EQ(info.get_units(1), si::value("K"));
    EXPECT_EQ(info.get_col_labels(0), (Texts{"a", "b", "c", "d"}));
    EXPECT_TRUE(info.is_equidistant(2));
    info.set_sizes({5});
    info.set_sizes({5, 3});
    EXPECT_EQ(info.get_lengths(), (Doubles{8.0, 1.0}));
    EXPECT_EQ(info.get_labels(), (Texts{"X", ""}));
    EXPECT_EQ(info.get_units(1), si::value());
}

TEST(DescriptionBehaviour, VectorFormsTakeTheSmallerOfBothCounts)
{
    OpenInfo info(Sizes{4, 3, 2});
    info.set_len(Doubles{8.0});
    info.set_off(Doubles{1.0, 2.0});
    info.set_labels({"a", "b", "c", "d"});
    EXPECT_EQ(info.get_lengths(), (Doubles{8.0, 1.0, 1.0}));
    EXPECT_EQ(info.get_offsets(), (Doubles{1.0, 2.0, 0.0}));
    EXPECT_EQ(info.get_labels(), (Texts{"a", "b", "c"}));
    info.set_labels({"z"});
    EXPECT_EQ(info.get_labels(), (Texts{"z", "b", "c"}));
    info.set_len(Doubles{});
    EXPECT_EQ(info.get_lengths(), (Doubles{8.0, 1.0, 1.0}));
}

} // namespace

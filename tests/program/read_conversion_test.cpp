#include "build_vbf.h"
#include "run_vbf.h"

using namespace vela_test;

namespace {

class ReadConversionTest : public ProgramTest
{
protected:
    template <class T>
    std::vector<T> read_as(const StackRecipe& stack, const std::string& type) const
    {
        const Bytes bytes = bytes_of({"read", put(build_vbf(stack)), "0", "--type", type});
        EXPECT_EQ(bytes.size() % sizeof(T), 0u);
        std::vector<T> samples(bytes.size() / sizeof(T));
        std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(T));
        return samples;
    }

    void expect_refused(const StackRecipe& stack, const std::string& type, const std::string& from,
                        const std::string& to) const
    {
        expect_failure({"read", put(build_vbf(stack)), "0", "--type", type, "--out", path("out")}, 1,
                       "Invalid on-the-fly conversion from '" + from + "' to '" + to + "'!");
        EXPECT_FALSE(std::filesystem::exists(path("out")));
    }
};

constexpr std::int32_t type_uint8 = 0x1;
constexpr std::int32_t type_int32 = 0x20;
constexpr std::int32_t type_single = 0x40;
constexpr std::int32_t type_colour = 0x400;
constexpr std::int32_t type_cell = 0x4000;
constexpr std::int32_t type_logical = 0x10000;
constexpr std::int32_t complex_bit = 0x40000000;

} // namespace

TEST_F(ReadConversionTest, IntegersKeepTheirLowBits)
{
    const StackRecipe stack = plain_stack<std::int32_t>({3}, type_int32, {300, -1, 7});
    EXPECT_EQ(read_as<std::uint8_t>(stack, "uint8"), (std::vector<std::uint8_t>{44, 255, 7}));
    EXPECT_EQ(read_as<std::int64_t>(stack, "int64"), (std::vector<std::int64_t>{300, -1, 7}));
}

TEST_F(ReadConversionTest, FloatsAreTruncated)
{
    const StackRecipe stack = plain_stack<float>({2}, type_single, {3.9f, -3.9f});
    EXPECT_EQ(read_as<std::int32_t>(stack, "int32"), (std::vector<std::int32_t>{3, -3}));
}

TEST_F(ReadConversionTest, ScalarsBecomeRealParts)
{
    const StackRecipe stack = plain_stack<std::uint8_t>({2}, type_uint8, {4, 5});
    EXPECT_EQ(read_as<float>(stack, "cplx_single"), (std::vector<float>{4, 0, 5, 0}));
}

TEST_F(ReadConversionTest, ComplexPartsAreConvertedEach)
{
    const StackRecipe stack = plain_stack<float>({1}, complex_bit | type_single, {1.5f, 2.5f});
    EXPECT_EQ(read_as<std::int16_t>(stack, "cplx_int16"), (std::vector<std::int16_t>{1, 2}));
}

TEST_F(ReadConversionTest, RunsOfManyChunksAreComplete)
{
    StackRecipe stack;
    stack.sizes = {1500001};
    stack.data_type = type_uint8;
    stack.segment = Bytes(1500001);
    std::vector<double> expected;
    for (std::size_t i = 0; i < stack.segment.size(); ++i)
    {
        stack.segment[i] = static_cast<unsigned char>(i % 241);
        expected.push_back(static_cast<double>(i % 241));
    }
    EXPECT_TRUE(read_as<double>(stack, "double") == expected);
}

TEST_F(ReadConversionTest, RunIsCountedInSamplesOfTheStack)
{
    const StackRecipe stack = plain_stack<std::uint8_t>({3}, type_uint8, {1, 2, 3});
    const std::string name = put(build_vbf(stack));
    EXPECT_EQ(bytes_of({"read", name, "0", "--type", "uint16", "--from", "1", "--count", "1"}), (Bytes{2, 0}));
}

TEST_F(ReadConversionTest, EmptyStackIsZerosOfTheTypeAskedFor)
{
    EXPECT_EQ(read_as<double>(plain_stack<std::uint8_t>({2}, type_uint8, {}), "double"), (std::vector<double>{0, 0}));
}

TEST_F(ReadConversionTest, TypesThatNothingConvertsAreReadAsTheyAre)
{
    const StackRecipe logical = plain_stack<std::uint8_t>({2}, type_logical, {0, 1});
    EXPECT_EQ(bytes_of({"read", put(build_vbf(logical)), "0"}), (Bytes{0, 1}));
    EXPECT_EQ(read_as<std::uint8_t>(logical, "logical"), (std::vector<std::uint8_t>{0, 1}));
    const StackRecipe colour = plain_stack<std::uint8_t>({2}, type_colour, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(bytes_of({"read", put(build_vbf(colour)), "0", "--from", "1"}), (Bytes{4, 5, 6}));
}

TEST_F(ReadConversionTest, ComplexToRealIsRefused)
{
    expect_refused(plain_stack<float>({1}, complex_bit | type_single, {1, 2}), "single", "cplx_single", "single");
}

TEST_F(ReadConversionTest, LogicalToNumberIsRefused)
{
    expect_refused(plain_stack<std::uint8_t>({1}, type_logical, {1}), "uint8", "logical", "uint8");
}

TEST_F(ReadConversionTest, TypesWithoutSizeAreRefused)
{
    expect_refused(plain_stack<std::uint8_t>({1}, type_uint8, {1}), "cell", "uint8", "cell");
    expect_refused(plain_stack<std::uint8_t>({1}, type_uint8, {}), "cplx_logical", "uint8", "cplx_logical");
    expect_refused(plain_stack<std::uint8_t>({1}, type_cell, {1}), "uint8", "cell", "uint8");
    const StackRecipe unknown = plain_stack<std::uint8_t>({1}, 0x300, {1});
    expect_failure({"read", put(build_vbf(unknown)), "0"}, 1, "Invalid on-the-fly conversion from 'none' to 'none'!");
}

TEST_F(ReadConversionTest, UnknownTypeIsWrongUsage)
{
    for (const std::string type : {"none", "float", "UINT8", ""})
        expect_failure({"read", VELA_GOLGI_FILE, "0", "--type", type}, 2,
                       "There is no sample type '" + type +
                           "'. Types are uint8, int8, uint16, int16, uint32, int32, uint64, int64, single, double, and "
                           "each of them with cplx_ before it.");
}

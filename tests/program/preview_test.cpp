#include "build_vbf.h"
#include "run_vbf.h"

#include <png.h>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace vela_test;

namespace {

struct Picture
{
    unsigned width = 0;
    unsigned height = 0;
    bool colour = false;
    Bytes pixels;
};

/// Decodes an image in the form in which it was stored.
Picture decode(const std::string& path)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0)
        throw std::runtime_error(image.message);
    if (image.format != PNG_FORMAT_GRAY && image.format != PNG_FORMAT_RGB)
        throw std::runtime_error("neither grey nor RGB of 8 bits");
    Picture picture{image.width, image.height, image.format == PNG_FORMAT_RGB, Bytes(PNG_IMAGE_SIZE(image))};
    if (png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr) == 0)
        throw std::runtime_error(image.message);
    return picture;
}

class PreviewTest : public ProgramTest
{
protected:
    Picture preview(const std::string& file, const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> arguments = {"preview", file, "0", "--out", path("out.png")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(output_of(arguments), "");
        return decode(path("out.png"));
    }

    Picture preview(const StackRecipe& stack, const std::vector<std::string>& options = {}) const
    {
        return preview(put(build_vbf(stack)), options);
    }

    void expect_preview_failure(const StackRecipe& stack, const std::vector<std::string>& options,
                                const std::string& message) const
    {
        std::vector<std::string> arguments = {"preview", put(build_vbf(stack)), "0", "--out", path("none.png")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        expect_failure(arguments, 1, message);
        EXPECT_FALSE(std::filesystem::exists(path("none.png")));
    }
};

/// The levels of a plane, reckoned over sorted samples.
Bytes expected_levels(const std::vector<double>& samples)
{
    std::vector<double> sorted = samples;
    std::sort(sorted.begin(), sorted.end());
    const double last = static_cast<double>(sorted.size() - 1);
    const double low = sorted[static_cast<std::size_t>(std::floor(last * 0.001))];
    const double high = sorted[static_cast<std::size_t>(std::ceil(last * 0.999))];
    Bytes levels;
    for (const double sample : samples)
        levels.push_back(
            static_cast<unsigned char>(std::floor(std::clamp((sample - low) / (high - low), 0.0, 1.0) * 255 + 0.5)));
    return levels;
}

std::vector<double> golgi_plane(std::size_t number)
{
    const Bytes bytes = golgi_samples();
    constexpr std::size_t count = 147 * 137;
    std::vector<double> samples;
    for (std::size_t i = number * count; i < (number + 1) * count; ++i)
        samples.push_back(bytes[2 * i] + 256 * bytes[2 * i + 1]);
    return samples;
}

const double nan_value = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t type_double = 0x80;

} // namespace

TEST_F(PreviewTest, GolgiShowsItsMiddlePlane)
{
    const Picture picture = preview(VELA_GOLGI_FILE);
    EXPECT_EQ(picture.width, 147u);
    EXPECT_EQ(picture.height, 137u);
    EXPECT_FALSE(picture.colour);
    EXPECT_TRUE(picture.pixels == expected_levels(golgi_plane(12)));
}

TEST_F(PreviewTest, PlaneIsChosenByItsNumber)
{
    EXPECT_TRUE(preview(VELA_GOLGI_FILE, {"--plane", "0"}).pixels == expected_levels(golgi_plane(0)));
    EXPECT_TRUE(preview(VELA_GOLGI_FILE, {"--plane", "24"}).pixels == expected_levels(golgi_plane(24)));
}

TEST_F(PreviewTest, SmallPlaneSpreadsItsWholeRange)
{
    const Picture picture = preview(plain_stack<std::uint8_t>({3, 2}, 1, {10, 20, 30, 60, 109, 110}));
    EXPECT_EQ(picture.width, 3u);
    EXPECT_EQ(picture.height, 2u);
    // 255 * (0, 10, 20, 50, 99, 100) / 100, halves upwards
    EXPECT_EQ(picture.pixels, (Bytes{0, 26, 51, 128, 252, 255}));
}

TEST_F(PreviewTest, PlanesAreCountedThroughAllFurtherAxes)
{
    const StackRecipe stack =
        plain_stack<std::uint8_t>({2, 1, 2, 2}, 1, {1, 2, /*1*/ 2, 1, /*2*/ 5, 4, /*3: the last*/ 7, 9});
    EXPECT_EQ(preview(stack).pixels, (Bytes{255, 0}));
    EXPECT_EQ(preview(stack, {"--plane", "0"}).pixels, (Bytes{0, 255}));
    EXPECT_EQ(preview(stack, {"--plane", "1"}).pixels, (Bytes{255, 0}));
    EXPECT_EQ(preview(stack, {"--plane", "3"}).pixels, (Bytes{0, 255}));
    expect_preview_failure(stack, {"--plane", "4"}, "There is no plane 4, the stack has 4 counted from 0.");
    expect_preview_failure(stack, {"--plane", "18446744073709551615"},
                           "There is no plane 18446744073709551615, the stack has 4 counted from 0.");
}

TEST_F(PreviewTest, RankOneIsOneRow)
{
    const Picture picture = preview(plain_stack<std::int16_t>({3}, 8, {-100, 0, 100}));
    EXPECT_EQ(picture.width, 3u);
    EXPECT_EQ(picture.height, 1u);
    EXPECT_EQ(picture.pixels, (Bytes{0, 128, 255}));
}

TEST_F(PreviewTest, RankZeroIsOnePixel)
{
    const Picture picture = preview(plain_stack<std::uint8_t>({}, 1, {200}));
    EXPECT_EQ(picture.width, 1u);
    EXPECT_EQ(picture.height, 1u);
    EXPECT_EQ(picture.pixels, Bytes{128});
}

TEST_F(PreviewTest, PlaneWithoutContrastIsMiddleGrey)
{
    EXPECT_EQ(preview(plain_stack<std::uint8_t>({2, 2}, 1, {9, 9, 9, 9})).pixels, Bytes(4, 128));
    EXPECT_EQ(preview(plain_stack<std::uint8_t>({2, 2}, 1, {})).pixels, Bytes(4, 128));
}

TEST_F(PreviewTest, FewExtremeSamplesDoNotDarkenTheRest)
{
    StackRecipe stack;
    stack.sizes = {100, 50};
    stack.data_type = 4;
    ByteWriter writer;
    for (std::uint16_t i = 0; i < 5000; ++i)
        writer.put<std::uint16_t>(i == 17 ? 65535 : i == 18 ? 0 : i % 2 == 0 ? 1000 : 1100);
    stack.segment = writer.bytes;
    const Picture picture = preview(stack);
    EXPECT_EQ(Bytes(picture.pixels.begin() + 14, picture.pixels.begin() + 22), (Bytes{0, 255, 0, 255, 0, 255, 0, 255}));
}

TEST_F(PreviewTest, FewBrightSamplesOnAConstantGroundAreSeen)
{
    StackRecipe stack;
    stack.sizes = {100, 50};
    stack.segment = Bytes(5000);
    stack.segment[4000] = 40;
    stack.segment[4001] = 80;
    Bytes expected(5000);
    expected[4000] = 128;
    expected[4001] = 255;
    EXPECT_EQ(preview(stack).pixels, expected);
}

TEST_F(PreviewTest, NotANumberIsBlackAndInfinityTheEnds)
{
    const StackRecipe stack = plain_stack<double>({6}, type_double, {nan_value, -infinity, infinity, 1.0, 2.0, 1.5});
    EXPECT_EQ(preview(stack).pixels, (Bytes{0, 0, 255, 0, 255, 128}));
}

TEST_F(PreviewTest, PlaneWithoutAnyFiniteSampleIsDrawn)
{
    EXPECT_EQ(preview(plain_stack<double>({3}, type_double, {nan_value, -infinity, infinity})).pixels,
              (Bytes{0, 0, 255}));
    EXPECT_EQ(preview(plain_stack<double>({2}, type_double, {nan_value, nan_value})).pixels, (Bytes{0, 0}));
}

TEST_F(PreviewTest, OneFiniteValueAmongOthersIsMiddleGrey)
{
    EXPECT_EQ(preview(plain_stack<double>({3}, type_double, {nan_value, 5.0, infinity})).pixels, (Bytes{0, 128, 255}));
}

TEST_F(PreviewTest, RangeThatOverflowsIsSpread)
{
    const double huge = std::numeric_limits<double>::max();
    EXPECT_EQ(preview(plain_stack<double>({3}, type_double, {-huge, 0.0, huge})).pixels, (Bytes{0, 128, 255}));
}

TEST_F(PreviewTest, RangeOfTheSmallestNumbersIsSpread)
{
    const double tiny = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(preview(plain_stack<double>({3}, type_double, {-tiny, 0.0, tiny})).pixels, (Bytes{0, 128, 255}));
}

TEST_F(PreviewTest, ComplexSamplesAreDrawnByMagnitude)
{
    constexpr std::int32_t cplx_single = 0x40000040;
    EXPECT_EQ(preview(plain_stack<float>({3}, cplx_single, {0, 0, -3, 4, 0, -10})).pixels, (Bytes{0, 128, 255}));
}

TEST_F(PreviewTest, LogicalSamplesAreBlackAndWhite)
{
    EXPECT_EQ(preview(plain_stack<std::uint8_t>({3}, 0x10000, {0, 1, 0})).pixels, (Bytes{0, 255, 0}));
}

TEST_F(PreviewTest, ColoursAreDrawnAsTheyAre)
{
    const Picture picture = preview(plain_stack<std::uint8_t>({2, 1}, 0x400, {1, 2, 3, 250, 4, 0}));
    EXPECT_TRUE(picture.colour);
    EXPECT_EQ(picture.width, 2u);
    EXPECT_EQ(picture.pixels, (Bytes{1, 2, 3, 250, 4, 0}));
}

TEST_F(PreviewTest, PackedColoursHaveRedAboveGreenAboveBlue)
{
    const Picture picture = preview(plain_stack<std::uint32_t>({1, 2}, 0x800, {0x00112233, 0xff445566}));
    EXPECT_TRUE(picture.colour);
    EXPECT_EQ(picture.pixels, (Bytes{0x11, 0x22, 0x33, 0x44, 0x55, 0x66}));
}

TEST_F(PreviewTest, CompressedPlaneBehindOthersIsFound)
{
    StackRecipe stack;
    stack.sizes = {1000, 1000, 6};
    Bytes samples(6000000);
    samples[5999999] = 1;
    stack.segment = deflated(samples);
    stack.compression_type = 1;
    stack.compression_level = 1;
    Bytes expected(1000000);
    expected[999999] = 255;
    EXPECT_TRUE(preview(stack, {"--plane", "5"}).pixels == expected);
}

TEST_F(PreviewTest, PlaneOfMoreThanAMillionSamplesIsStretched)
{
    StackRecipe stack;
    stack.sizes = {2048, 1024};
    stack.segment = Bytes(2048 * 1024);
    for (std::size_t i = 0; i < stack.segment.size(); ++i)
        stack.segment[i] = static_cast<unsigned char>(50 + i % 101);
    const Picture picture = preview(stack);
    EXPECT_EQ(picture.pixels[0], 0);
    EXPECT_EQ(picture.pixels[50], 128);
    EXPECT_EQ(picture.pixels[100], 255);
}

TEST_F(PreviewTest, TooLargePlanesAreRefused)
{
    const std::string limits = " samples. At most 33554432 samples are drawn, and 1000000 in a row or column.";
    expect_preview_failure(plain_stack<std::uint8_t>({0xffffffff, 0xffffffff}, 1, {1}), {},
                           "The plane is too large for a preview: 4294967295 x 4294967295" + limits);
    expect_preview_failure(plain_stack<std::uint8_t>({1000001}, 1, {1}), {},
                           "The plane is too large for a preview: 1000001 x 1" + limits);
    expect_preview_failure(plain_stack<std::uint8_t>({65536, 513}, 1, {1}), {},
                           "The plane is too large for a preview: 65536 x 513" + limits);
}

TEST_F(PreviewTest, LongestRowIsDrawn)
{
    EXPECT_EQ(preview(plain_stack<std::uint8_t>({1000000}, 1, {})).width, 1000000u);
}

TEST_F(PreviewTest, StackWithoutSamplesIsRefused)
{
    expect_preview_failure(plain_stack<std::uint8_t>({0, 5}, 1, {}), {}, "The stack has no samples.");
    expect_preview_failure(plain_stack<std::uint8_t>({5, 5, 0}, 1, {}), {}, "The stack has no samples.");
}

TEST_F(PreviewTest, TypesWithoutSizeAreRefused)
{
    expect_preview_failure(plain_stack<std::uint8_t>({1}, 0x4000, {1}), {},
                           "Invalid on-the-fly conversion from 'cell' to 'double'!");
    expect_preview_failure(plain_stack<std::uint8_t>({1}, 0x40010000, {1}), {},
                           "Invalid on-the-fly conversion from 'cplx_logical' to 'cplx_double'!");
}

TEST_F(PreviewTest, SizesWhoseProductOverflowsFail)
{
    expect_preview_failure(plain_stack<std::uint8_t>({2, 2, 0xffffffff, 0xffffffff}, 1, {1}), {},
                           "The product exceeds the maximum size.");
}

TEST_F(PreviewTest, PlaneThatTheFileDoesNotHaveFails)
{
    expect_preview_failure(plain_stack<std::uint8_t>({1000, 1000}, 1, {1, 2, 3}), {},
                           "Failed reading 524288 bytes from file!");
}

#include "build_vbf.h"
#include "run_vbf.h"

using namespace vela_test;

namespace {

/// 4 x 3 x 2 samples, each its own index.
Bytes box_file()
{
    StackRecipe stack;
    stack.sizes = {4, 3, 2};
    for (unsigned char i = 0; i < 24; ++i)
        stack.segment.push_back(i);
    return build_vbf(stack);
}

class ReadRegionTest : public ProgramTest
{
protected:
    Bytes region(const std::string& text) const { return bytes_of({"read", put(box_file()), "0", "--region", text}); }
};

} // namespace

TEST_F(ReadRegionTest, BoxIsReadInStorageOrder)
{
    EXPECT_EQ(region("1:3,0:2,0:2"), (Bytes{1, 2, 5, 6, 13, 14, 17, 18}));
    EXPECT_EQ(region("1:3"), (Bytes{1, 2, 5, 6, 9, 10, 13, 14, 17, 18, 21, 22}));
    EXPECT_EQ(region("3,2,1"), (Bytes{23}));
}

TEST_F(ReadRegionTest, BoundsThatAreLeftOutAreThoseOfTheStack)
{
    EXPECT_EQ(region("2:,:1,1:"), (Bytes{14, 15}));
    EXPECT_EQ(region(",,1"), (Bytes{12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23}));
    EXPECT_EQ(region(",1:2"), (Bytes{4, 5, 6, 7, 16, 17, 18, 19}));
    EXPECT_EQ(region(":"), bytes_of({"read", put(box_file()), "0"}));
    EXPECT_EQ(region(":").size(), 24u);
    EXPECT_EQ(region("2:2"), Bytes());
}

TEST_F(ReadRegionTest, CompressedStackGivesTheSameBox)
{
    const Bytes all = golgi_samples();
    const auto sample = [&](std::size_t x, std::size_t y, std::size_t z) { return 2 * (x + 147 * (y + 137 * z)); };
    Bytes expected;
    for (const std::size_t z : {7u, 8u})
    {
        for (const std::size_t y : {130u, 131u, 132u})
            expected.insert(expected.end(), all.begin() + static_cast<std::ptrdiff_t>(sample(10, y, z)),
                            all.begin() + static_cast<std::ptrdiff_t>(sample(60, y, z)));
    }
    EXPECT_EQ(bytes_of({"read", VELA_GOLGI_FILE, "0", "--region", "10:60,130:133,7:9"}), expected);
}

TEST_F(ReadRegionTest, PlaneIsARun)
{
    EXPECT_EQ(bytes_of({"read", put(box_file()), "0", "--plane", "1"}), region(",,1"));
    EXPECT_EQ(output_of({"read", VELA_GOLGI_FILE, "0", "--plane", "12", "--type", "double"}).size(), 147u * 137 * 8);
    expect_failure({"read", put(box_file()), "0", "--plane", "2"}, 1,
                   "There is no plane 2, the stack has 2 counted from 0.");
}

TEST_F(ReadRegionTest, PlaneInTheMiddleNeedsNothingBeforeItsFlushPoint)
{
    Bytes damaged = get_bytes(VELA_GOLGI_FILE);
    std::fill(damaged.begin() + 1000, damaged.begin() + 1100, std::uint8_t{0xff}); // the first of the blocks
    const std::string file = put(damaged);
    EXPECT_EQ(run({"read", file, "0", "--plane", "0"}).status, 1);
    EXPECT_EQ(bytes_of({"read", file, "0", "--plane", "12"}),
              bytes_of({"read", VELA_GOLGI_FILE, "0", "--plane", "12"}));
}

TEST_F(ReadRegionTest, RegionsThatThereAreNotFail)
{
    const std::string file = put(box_file());
    expect_failure({"read", file, "0", "--region", "0:5"}, 1, "The region leaves dimension 0, which has 4 columns.");
    expect_failure({"read", file, "0", "--region", ",3"}, 1, "The region leaves dimension 1, which has 3 columns.");
    expect_failure({"read", file, "0", "--region", "3:2"}, 1, "The region leaves dimension 0, which has 4 columns.");
    for (const std::string text : {"x", "1:x", "1-2", "1:2:3", "-1"})
        expect_failure({"read", file, "0", "--region=" + text}, 2,
                       "--region: '" + text + "' is not of the form begin:end.");
    expect_failure({"read", file, "0", "--region", ",,,1"}, 2, "--region: the stack has 3 dimensions.");
}

TEST_F(ReadRegionTest, RunPlaneAndRegionExcludeEachOther)
{
    const std::string file = put(box_file());
    const std::string message = "A run (--from, --count), --plane and --region exclude each other.";
    expect_failure({"read", file, "0", "--plane", "0", "--count", "1"}, 2, message);
    expect_failure({"read", file, "0", "--plane", "0", "--region", "1"}, 2, message);
    expect_failure({"read", file, "0", "--from", "0", "--region", "1"}, 2, message);
}

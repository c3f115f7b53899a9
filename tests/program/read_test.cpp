#include "build_vbf.h"
#include "run_vbf.h"

using namespace vela_test;

namespace {

class ReadTest : public ProgramTest
{
protected:
    Bytes read(const StackRecipe& stack, const std::vector<std::string>& options = {}) const
    {
        return bytes_of(arguments(stack, options));
    }

    void expect_read_failure(const StackRecipe& stack, const std::vector<std::string>& options,
                             const std::string& message) const
    {
        expect_failure(arguments(stack, options), 1, message);
    }

private:
    std::vector<std::string> arguments(const StackRecipe& stack, const std::vector<std::string>& options) const
    {
        std::vector<std::string> result = {"read", put(build_vbf(stack)), "0"};
        result.insert(result.end(), options.begin(), options.end());
        return result;
    }
};

StackRecipe five_numbers()
{
    return plain_stack<std::uint16_t>({5}, 4, {0x0102, 0x0304, 0x0506, 0x0708, 0x090a});
}

StackRecipe five_compressed_numbers()
{
    StackRecipe stack = five_numbers();
    stack.segment = deflated(stack.segment);
    stack.compression_type = 1;
    stack.compression_level = 6;
    return stack;
}

Bytes part(const Bytes& bytes, std::size_t from, std::size_t count)
{
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(from);
    return Bytes(begin, begin + static_cast<std::ptrdiff_t>(count));
}

} // namespace

TEST_F(ReadTest, GolgiIsWhatItsSegmentInflatesTo)
{
    EXPECT_TRUE(bytes_of({"read", VELA_GOLGI_FILE, "0"}) == golgi_samples());
}

TEST_F(ReadTest, RunOfGolgiIsThatPartOfTheSegment)
{
    // Samples as an independent reader gives them.
    EXPECT_EQ(bytes_of({"read", VELA_GOLGI_FILE, "0", "--from", "250000", "--count", "6"}),
              (Bytes{102, 0, 6, 0, 103, 0, 245, 0, 231, 0, 135, 0}));
    EXPECT_TRUE(bytes_of({"read", VELA_GOLGI_FILE, "0", "--from", "167825", "--count", "20139"}) ==
                part(golgi_samples(), 2 * 167825, 2 * 20139));
}

TEST_F(ReadTest, PlainSamplesAreWrittenAsTheyLie)
{
    EXPECT_EQ(read(five_numbers()), (Bytes{2, 1, 4, 3, 6, 5, 8, 7, 10, 9}));
}

TEST_F(ReadTest, CompressedSamplesAreInflated)
{
    EXPECT_EQ(read(five_compressed_numbers()), (Bytes{2, 1, 4, 3, 6, 5, 8, 7, 10, 9}));
}

TEST_F(ReadTest, LevelZeroIsStoredPlain)
{
    StackRecipe stack = five_numbers();
    stack.compression_type = 1;
    stack.compression_level = 0;
    EXPECT_EQ(read(stack).size(), 10u);
}

TEST_F(ReadTest, LevelWithoutCompressionIsNotUsed)
{
    StackRecipe stack = five_numbers();
    stack.compression_level = 9;
    for (const std::int32_t type : {0, 2, -1})
    {
        stack.compression_type = type;
        EXPECT_EQ(read(stack), (Bytes{2, 1, 4, 3, 6, 5, 8, 7, 10, 9}));
    }
}

TEST_F(ReadTest, FromAndCountAreInSamples)
{
    for (const StackRecipe& stack : {five_numbers(), five_compressed_numbers()})
    {
        EXPECT_EQ(read(stack, {"--from", "1", "--count", "2"}), (Bytes{4, 3, 6, 5}));
        EXPECT_EQ(read(stack, {"--from", "3"}), (Bytes{8, 7, 10, 9}));
        EXPECT_EQ(read(stack, {"--count", "1"}), (Bytes{2, 1}));
    }
}

TEST_F(ReadTest, CountBeyondTheEndReadsToTheEnd)
{
    EXPECT_EQ(read(five_numbers(), {"--from", "4", "--count", "6"}), (Bytes{10, 9}));
    EXPECT_EQ(read(five_numbers(), {"--from", "4", "--count", "18446744073709551615"}), (Bytes{10, 9}));
}

TEST_F(ReadTest, CountZeroWritesNothing)
{
    EXPECT_EQ(read(five_numbers(), {"--from", "4", "--count", "0"}), Bytes());
}

TEST_F(ReadTest, PositionAtOrAboveTheCountFails)
{
    for (const StackRecipe& stack : {five_numbers(), five_compressed_numbers()})
    {
        expect_read_failure(stack, {"--from", "5"}, "Invalid position in segment!");
        expect_read_failure(stack, {"--from", "5", "--count", "0"}, "Invalid position in segment!");
        expect_read_failure(stack, {"--from", "6"}, "Invalid position in segment!");
        expect_read_failure(stack, {"--from", "18446744073709551615"}, "Invalid position in segment!");
    }
}

TEST_F(ReadTest, IndexChoosesTheStack)
{
    FileRecipe file;
    file.stacks = {plain_stack<std::uint8_t>({1}, 1, {1}), plain_stack<std::uint8_t>({2}, 1, {2, 3})};
    const std::string name = put(build_vbf(file));
    EXPECT_EQ(bytes_of({"read", name, "0"}), Bytes{1});
    EXPECT_EQ(bytes_of({"read", name, "1"}), (Bytes{2, 3}));
    expect_failure({"read", name, "2"}, 1, "Invalid stack index 2!");
}

TEST_F(ReadTest, IndexIsPrintedAsItsLow32Bits)
{
    const std::string name = put(build_vbf(five_numbers()));
    expect_failure({"read", name, "18446744073709551615"}, 1, "Invalid stack index -1!");
    expect_failure({"read", name, "4294967296"}, 1, "Invalid stack index 0!");
}

TEST_F(ReadTest, RankZeroIsOneSample)
{
    EXPECT_EQ(read(plain_stack<std::uint16_t>({}, 4, {0x0102})), (Bytes{2, 1}));
}

TEST_F(ReadTest, StackWithoutBytesOnDiskReadsAsZeros)
{
    const StackRecipe empty = plain_stack<std::uint16_t>({3, 2}, 4, {});
    EXPECT_EQ(read(empty), Bytes(12));
    EXPECT_EQ(read(empty, {"--from", "4"}), Bytes(4));
    EXPECT_EQ(read(empty, {"--count", "3"}), Bytes(6));
    EXPECT_EQ(read(empty, {"--from", "6"}), Bytes());
    expect_read_failure(empty, {"--from", "7"}, "Invalid position in segment!");
}

TEST_F(ReadTest, CompressedStackWithoutBytesOnDiskReadsAsZeros)
{
    StackRecipe empty = plain_stack<double>({2}, 0x80, {});
    empty.compression_type = 1;
    empty.compression_level = 1;
    EXPECT_EQ(read(empty), Bytes(16));
}

TEST_F(ReadTest, ZerosOfManyChunksAreComplete)
{
    const StackRecipe empty = plain_stack<std::uint8_t>({9 * 1024 * 1024 + 1}, 1, {});
    EXPECT_TRUE(read(empty) == Bytes(9 * 1024 * 1024 + 1));
}

TEST_F(ReadTest, SamplesOfManyChunksAreComplete)
{
    StackRecipe stack;
    stack.sizes = {3 * 1024 * 1024 + 1, 3};
    Bytes samples(9 * 1024 * 1024 + 3);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<unsigned char>(i % 251);
    stack.segment = deflated(samples);
    stack.compression_type = 1;
    stack.compression_level = 1;
    EXPECT_TRUE(read(stack) == samples);
    EXPECT_TRUE(read(stack, {"--from", "5000000", "--count", "4400000"}) == part(samples, 5000000, 4400000));
}

TEST_F(ReadTest, SizesWhoseProductOverflowsFail)
{
    expect_read_failure(plain_stack<std::uint8_t>({0xffffffff, 0xffffffff, 2}, 1, {1}), {},
                        "The product exceeds the maximum size.");
    expect_read_failure(plain_stack<std::uint8_t>({0xffffffff, 0xffffffff}, 4, {1}), {},
                        "The product exceeds the maximum size.");
}

TEST_F(ReadTest, SizeOfZeroEndsTheProduct)
{
    EXPECT_EQ(read(plain_stack<std::uint8_t>({0, 0xffffffff, 0xffffffff, 0xffffffff}, 1, {})), Bytes());
}

TEST_F(ReadTest, SamplesThatTheFileDoesNotHaveFail)
{
    const StackRecipe stack = plain_stack<std::uint8_t>({0xffffffff, 0xffffffff}, 1, {1, 2, 3});
    expect_read_failure(stack, {}, "Failed reading 4194304 bytes from file!");
}

TEST_F(ReadTest, CompressedSamplesThatTheStreamDoesNotHaveFail)
{
    StackRecipe stack = five_compressed_numbers();
    stack.sizes = {0xffffffff, 0x7fffffff};
    expect_read_failure(stack, {}, "Inconsistency in segment!");
}

TEST_F(ReadTest, DamagedStreamFails)
{
    StackRecipe stack = five_compressed_numbers();
    stack.segment[0] ^= 0xff;
    expect_read_failure(stack, {}, "Zip error (-3)!");
}

TEST_F(ReadTest, WrongTrailerFails)
{
    StackRecipe stack = five_compressed_numbers();
    stack.segment.back() ^= 0xff;
    expect_read_failure(stack, {}, "Zip error (-3)!");
}

TEST_F(ReadTest, MissingTrailerIsAWarningBesideAllSamples)
{
    StackRecipe stack = five_compressed_numbers();
    stack.segment.erase(stack.segment.end() - 4, stack.segment.end());
    const RunResult result = run({"read", put(build_vbf(stack)), "0"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "\x02\x01\x04\x03\x06\x05\x08\x07\x0a\x09");
    EXPECT_THAT(result.err, testing::HasSubstr("WARNING"));
    EXPECT_THAT(result.err, testing::HasSubstr("Inconsistency in segment!"));
}

TEST_F(ReadTest, FileThatWasNotClosedIsRead)
{
    FileRecipe file;
    file.closed = false;
    file.stacks = {five_numbers()};
    EXPECT_EQ(bytes_of({"read", put(build_vbf(file)), "0"}).size(), 10u);
}

TEST_F(ReadTest, DamagedFileFails)
{
    expect_failure({"read", put({}), "0"}, 1, "Failed reading 26 bytes from file!");
}

// Files cut at every byte, and headers with random damage.
#include <VelaBinaryIO/VBFHeaders.h>

#include "binary_io/plain_scan.h"
#include "binary_io/vbf_file_test.h"
#include "support/expect_vela_error.h"

#include <random>

using namespace vela_test;

namespace {

class DamagedHeadersTest : public VbfFileTest
{
};

/// Two stacks and a dictionary. The header areas are the bytes 0 to 421 and 434 to 815.
struct TwoStacks : VbfBytes
{
    TwoStacks()
    {
        file_header(2, "d\xc3\xa9j\xc3\xa0!");
        first = stack({.name = "ab", .description = "xyz"});
        second = stack({.name = "c", .description = "0123456789", .sizes = {2, 5, 1}});
        dictionary({{"key", "value"}});
    }

    std::uint64_t first;
    std::uint64_t second;
};

/// What the scan of a file that was cut to `size` bytes reads last, and how much of it.
std::string cut_outcome(std::size_t size)
{
    // End of each field in the order of reading, and its size.
    const std::pair<std::size_t, int> fields[] = {
        {26, 26},   // file header
        {33, 7},    // description
        {41, 8},    // meta_data_pos
        {409, 368}, // first stack header
        {411, 2},   // name
        {414, 3},   // description
        {794, 368}, // second stack header, behind 12 bytes of data
        {795, 1},   // name
        {805, 10},  // description
    };
    for (const auto& [end, field_size] : fields)
        if (size < end)
            return "error -3 Failed reading " + std::to_string(field_size) + " bytes from file!";
    return "ok";
}

TEST_F(DamagedHeadersTest, TextsThatShareTheBytesOfTheFileDoNotMultiplyIt)
{
    // Each header has all that follows it as its description: of 400 KiB, 100 MiB of text could be made.
    VbfBytes bytes;
    bytes.file_header(1);
    StackFields fields;
    fields.name = "";
    fields.data = {};
    std::vector<std::uint64_t> positions;
    for (int i = 0; i < 1000; ++i)
        positions.push_back(bytes.stack(fields));
    for (const std::uint64_t position : positions)
        bytes.set_u32_at(position + 340, static_cast<std::uint32_t>(bytes.size() - position - 368));
    vela_test::put_bytes(path("many.vbf"), bytes.bytes());
    VFile opened(vela_test::file_name(path("many.vbf")), VFile::read_mode);
    EXPECT_VELA_ERROR_IN(scan_chain(opened), "VBFFileImp::attach_imp", "sources/binary_io", -4,
                         "Invalid stack position specified in header!");
}

} // namespace

TEST_F(DamagedHeadersTest, AFileCutAtAnyByteFailsOnTheFieldThatIsCut)
{
    const TwoStacks whole;
    ASSERT_EQ(whole.first, 41u);
    ASSERT_EQ(whole.second, 426u);
    ASSERT_EQ(whole.size(), 805u + 12 + 20);
    const std::string whole_outcome = plain_scan(whole.bytes());
    for (std::size_t size = 0; size <= whole.size(); ++size)
    {
        SCOPED_TRACE(size);
        TwoStacks cut = whole;
        cut.cut_to(size);
        const std::string expected = cut_outcome(size);

        EXPECT_EQ(library_scan(reopen(cut)), expected == "ok" ? whole_outcome : expected);
        EXPECT_EQ(plain_scan(cut.bytes()), expected == "ok" ? whole_outcome : expected);
    }
}

TEST_F(DamagedHeadersTest, EveryFlippedBitOfTheHeadersHasTheOutcomeOfThePlainReader)
{
    const TwoStacks whole;
    std::mt19937 random(20240517);
    for (std::size_t position = 0; position < 805; ++position)
    {
        const unsigned bit = static_cast<unsigned>(random() % 8);
        SCOPED_TRACE(testing::Message() << "byte " << position << ", bit " << bit);
        TwoStacks damaged = whole;
        damaged.set_byte_at(position, static_cast<unsigned char>(whole.bytes()[position] ^ (1u << bit)));

        EXPECT_TRUE(agree(library_scan(reopen(damaged)), plain_scan(damaged.bytes())));
    }
}

TEST_F(DamagedHeadersTest, RandomBytesInTheHeadersHaveTheOutcomeOfThePlainReader)
{
    const TwoStacks whole;
    std::mt19937 random(77001);
    // Values at which something changes are more telling than any others.
    const unsigned char telling[] = {0x00, 0x01, 0x0f, 0x10, 0x7f, 0x80, 0xfe, 0xff};
    for (int round = 0; round < 3000; ++round)
    {
        TwoStacks damaged = whole;
        const std::size_t count = 1 + random() % 3;
        for (std::size_t i = 0; i < count; ++i)
        {
            const std::size_t position = random() % 805;
            const bool any = random() % 2 == 0;
            damaged.set_byte_at(position, any ? static_cast<unsigned char>(random()) : telling[random() % 8]);
        }
        SCOPED_TRACE(round);

        EXPECT_TRUE(agree(library_scan(reopen(damaged)), plain_scan(damaged.bytes())));
    }
}

TEST_F(DamagedHeadersTest, RandomPositionsHaveTheOutcomeOfThePlainReader)
{
    const TwoStacks whole;
    std::mt19937_64 random(31337);
    const std::uint64_t links[] = {whole.first_stack_pos_at(), whole.first + stack_next_at,
                                   whole.second + stack_next_at};
    for (int round = 0; round < 1000; ++round)
    {
        TwoStacks damaged = whole;
        for (const std::uint64_t link : links)
        {
            const std::uint64_t targets[] = {0, whole.first, whole.second, random() % 1000, random() | 1ull << 63};
            damaged.set_u64_at(link, targets[random() % 5]);
        }
        SCOPED_TRACE(round);

        EXPECT_TRUE(agree(library_scan(reopen(damaged)), plain_scan(damaged.bytes())));
    }
}

TEST_F(DamagedHeadersTest, NoiseBehindTheMagicsHasTheOutcomeOfThePlainReader)
{
    const TwoStacks whole;
    std::mt19937 random(4711);
    for (int round = 0; round < 500; ++round)
    {
        TwoStacks damaged = whole;
        for (std::uint64_t position = whole.second + 16; position < whole.second + 368; ++position)
            damaged.set_byte_at(position, static_cast<unsigned char>(random()));
        if (round % 2 == 0)
            damaged.set_u32_at(whole.second + stack_rank_at, random() % 16);
        SCOPED_TRACE(round);

        EXPECT_TRUE(agree(library_scan(reopen(damaged)), plain_scan(damaged.bytes())));
    }
}

TEST_F(DamagedHeadersTest, RandomBytesInADictionaryNeverCrash)
{
    Bytes whole;
    for (const char* text : {"first", "1", "second", "", "third", "a longer value of some bytes"})
        append_string(whole, text);
    append_u32(whole, 0);
    std::mt19937 random(99);
    int failures = 0;
    for (int round = 0; round < 1000; ++round)
    {
        Bytes damaged = whole;
        damaged[random() % damaged.size()] = static_cast<unsigned char>(random());
        VBFDictionary dictionary;
        try
        {
            read_dictionary(reopen(damaged), dictionary);
        }
        catch (const VelaError& error)
        {
            EXPECT_EQ(error.get_id(), -3);
            ++failures;
        }
        EXPECT_LE(dictionary.size(), damaged.size() / 8);
    }
    EXPECT_GT(failures, 100) << "the damage reaches the lengths";
}
